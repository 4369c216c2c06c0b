// The charts of a person, and of all persons together.

import uPlot from "uplot";
import { afterEach, beforeEach, describe, expect, test, vi } from "vitest";
import { addComparison, onOneAxis } from "../../report/comparison";
import { Recording } from "../../report/data";
import { barsIn, PersonView } from "../../report/personview";
import { ChartGroup, ChartOptions } from "../../shared/chartgroup";
import { doubles, floats, labelLine, rawPerson, recording, ribbon } from "./recordings";

interface Added {
  target: HTMLElement;
  options: ChartOptions;
  data: uPlot.AlignedData;
  chart: { setData: ReturnType<typeof vi.fn>; redraw: ReturnType<typeof vi.fn> };
}
let added: Added[];
const refreshed: unknown[] = [];

/** A group that writes down its charts. */
function groupOf(whole: Recording): ChartGroup {
  added = [];
  refreshed.length = 0;
  return {
    from: 0,
    to: whole.length,
    add(target: HTMLElement, options: ChartOptions, data: uPlot.AlignedData) {
      const chart = { setData: vi.fn(), redraw: vi.fn() };
      added.push({ target, options, data, chart });
      return chart;
    },
    refresh: (chart: unknown) => void refreshed.push(chart),
  } as unknown as ChartGroup;
}

const [estimates, details] = [document.createElement("div"), document.createElement("div")];
const select = vi.fn();
const save = vi.fn(async () => {});

function view(more: object = {}, persons?: object[], number = 0): PersonView {
  const whole = recording(more, persons);
  return new PersonView(whole, whole.persons[number], groupOf(whole), estimates, details, { select, save });
}

/** The lanes of a chart with lanes only: what its plugin draws is tested with the ribbons. */
function textsOf(card: HTMLElement): string[] {
  return [...card.querySelectorAll("h2, h3, .legend li, .note, .nodata")].map((node) => node.textContent ?? "");
}

beforeEach(() => {
  select.mockClear();
  save.mockClear();
});
afterEach(() => vi.restoreAllMocks());

test("Bars are 7 pixels wide, and 10 at least", () => {
  expect([barsIn(0), barsIn(70), barsIn(74), barsIn(700)]).toEqual([10, 10, 11, 100]);
});

describe("The view of a person", () => {
  const coded = { labels: { warnings: [], persons: [{ person: 3, ribbons: [ribbon()], lines: [labelLine(), labelLine({ quantity: "attention" })] }] } };

  test("has cards of the estimates and of what came in", () => {
    view();
    expect(estimates).toMatchSnapshot();
    expect(details).toMatchSnapshot();
  });

  test("has charts with the data of the person", () => {
    view();
    const data = added.map(({ data }) => data.map((values) => (values ? Array.from(values) : values)));
    expect(data).toMatchSnapshot();
    expect(added.map(({ options: { height, series } }) => [height, series.length])).toEqual([
      [190, 4], [140, 4], [3 * 27 + 30, 2], [104, 2], [2 * 27 + 30, 2], [130, 5], [148, 3],
    ]);
  });

  test("has every kind of reading that came in", () => {
    const names = [
      "smile", "joy", "sorrow", "anger", "surprise", "calm", "voiceJoy", "voiceSorrow", "voiceAnger", "voiceCalm", "headYaw", "gazeYaw", "headPitch",
      "gazePitch", "distance", "speaking", "speech", "touch", "context",
    ];
    view({}, [rawPerson({ inputs: Object.fromEntries(names.map((name) => [name, floats(0, 1, NaN, -1)])) })]);
    const card = details.querySelector('[data-figure="inputs"]') as HTMLElement;
    expect(textsOf(card)).toMatchSnapshot();
    const charts = added.filter(({ target }) => card.contains(target));
    expect(charts.map(({ options: { height, scales, axes, series } }) => ({ height, scales, unit: axes?.[1].splits ? "labels" : (axes?.[1].values as unknown as (chart: null, splits: number[]) => string[])(null, [-1])[0], series }))).toMatchSnapshot();
    const labels = charts[0].options.axes?.[1] as unknown as { splits(): number[]; values(chart: null, splits: number[]): string[] };
    expect(labels.values(null, labels.splits())).toEqual(["0", "0.5", "1"]);
    expect(charts[0].data.slice(0, 2).map((values) => Array.from(values as ArrayLike<number>))).toEqual([[0, 1, 2, 3], [0, 1, null, -1]]);
  });

  test("says that nothing came in, and that nothing pulled", () => {
    view({}, [rawPerson({ inputs: {}, valenceChanges: {}, attentionChanges: {} })]);
    expect(textsOf(details)).toMatchSnapshot();
  });

  test("says where a chart has no data", () => {
    view({}, [rawPerson({ valenceKnown: Buffer.from([0, 0, 0, 0]).toString("base64"), attentionKnown: Buffer.from([0, 0, 0, 1]).toString("base64") })]);
    expect([...estimates.querySelectorAll(".chart")].map((chart) => chart.textContent)).toEqual(["no data", "", ""]);
  });

  test("has the labels of coders", () => {
    view(coded);
    expect(textsOf(estimates)).toMatchSnapshot();
    expect(added.slice(0, 2).map(({ options }) => options.plugins?.length)).toEqual([1, 1]);
    expect(added.length).toBe(8);
  });

  test("holds a value for a second, or for two stretches of a long recording", () => {
    const times = { time: doubles(0, 1.5, 3, 4.5) };
    const gapsIn = (stretch: number) => {
      view({ stretch }, [rawPerson(times)]);
      const gaps = added[0].options.series[3].gaps as unknown as (...values: unknown[]) => unknown[];
      return gaps({ data: added[0].data, valToPos: (value: number) => value }, 3, 0, 3).length;
    };
    expect([gapsIn(0), gapsIn(0.7), gapsIn(0.8)]).toEqual([2, 2, 0]);
  });

  test("shows other bars for another range", () => {
    const made = view();
    const changes = added.slice(-2);
    made.rangeChanged();
    for (const { chart, data } of changes) {
      expect(chart.setData).toHaveBeenCalledWith(data, false);
      expect(chart.redraw).toHaveBeenCalledTimes(1);
    }
    expect(refreshed).toEqual(changes.map(({ chart }) => chart));
    expect(added[0].chart.setData).not.toHaveBeenCalled();
  });

  test("saves its cards", () => {
    view({}, [rawPerson(), rawPerson({ id: 4 })]);
    for (const card of [...estimates.children, ...details.children]) card.querySelector<HTMLButtonElement>(".save button")?.click();
    expect(save.mock.calls).toEqual([["estimates", "SVG"], ["comparison", "SVG"], ["inputs", "SVG"], ["valence-pulls", "SVG"], ["attention-pulls", "SVG"]]);
  });

  test("has scopes in lanes, without those of the whole recording or of no length", () => {
    const scope = (name: string, from: number, to: number) => ({ name, from, to, end: "", persons: [{ id: 3, verdict: "positive", updates: 1 }] });
    const height = (...scopes: object[]) => {
      view({ scopes });
      return added[2].options.height;
    };
    const lane = 27;
    expect(height(scope("all", 0, 4), scope("none", 2, 2))).toBe(3 * lane + 30);
    expect(height(scope("a", 0, 2), scope("b", 2, 4))).toBe(4 * lane + 30);
    expect(height(scope("a", 0, 2), scope("b", 1, 4))).toBe(5 * lane + 30);
    expect(height(...["a", "b", "c", "d"].map((name) => scope(name, 1, 3)))).toBe(6 * lane + 30);
  });
});

describe("The comparison of persons", () => {
  test("puts all on one axis of time", () => {
    const { persons } = recording({}, [rawPerson(), rawPerson({ id: 4, time: doubles(0.5, 1, 10, 2) })]);
    expect(onOneAxis(persons, (person, moment) => person.valence[moment])).toEqual([
      Float64Array.of(0, 0.5, 1, 2, 3, 10),
      [0, null, 0.5, -0.25, -0.75, null],
      [null, 0, 0.5, -0.75, null, -0.25],
    ]);
  });

  test("is there if there is somebody to compare with", () => {
    const whole = recording();
    expect(addComparison(details, whole, whole.persons[0], groupOf(whole), 1, select)).toBeNull();
  });

  function compared(count: number, chosen: number): HTMLElement {
    const summary = { from: 0, to: 61, visible: 0.5, valence: null, attention: 0.5, engaged: null };
    const whole = recording({}, Array.from({ length: count }, (_, i) => rawPerson({ id: i + 1, name: "", ...(i === 0 ? { summary } : {}) })));
    details.replaceChildren();
    return addComparison(details, whole, whole.persons[chosen], groupOf(whole), 1, select) as HTMLElement;
  }

  test("has the persons' means, and lines of which the selected one is the last and thick", () => {
    expect(compared(3, 1)).toMatchSnapshot();
    expect(added.map(({ options }) => ({ height: options.height, scales: options.scales, series: options.series }))).toMatchSnapshot();
    expect(added.map(({ data }) => data.slice(1).map((values) => Array.from(values as number[])))).toEqual([
      new Array(3).fill([null, 0.5, -0.25, -0.75]), new Array(3).fill([null, 1, 0.5, 0.25]),
    ]);
    const labels = added.map(({ options }) => options.axes?.[1] as unknown as { splits(): number[]; values(chart: null, splits: number[]): string[] });
    expect(labels.map((axis) => axis.values(null, axis.splits()))).toEqual([["negative", "neutral", "positive"], ["0", "0.5", "1"]]);
  });

  test("has eight colours, and of more persons only that of the selected one", () => {
    const strokes = () => added[0].options.series.slice(1).map(({ stroke, dash }) => [stroke, dash]);
    compared(8, 0);
    expect(strokes()).toMatchSnapshot();
    compared(9, 0);
    expect(strokes()).toEqual([...new Array(8).fill(["color(--nowhere)", []]), ["color(--accent)", []]]);
  });

  test("selects a person by the name", () => {
    compared(3, 1).querySelectorAll<HTMLButtonElement>("button.link")[2].click();
    expect(select.mock.calls).toEqual([[2]]);
  });
});
