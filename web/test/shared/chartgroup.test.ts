import uPlot from "uplot";
import { afterEach, beforeEach, describe, expect, test, vi } from "vitest";
import { axisWidth, ChartGroup, gapsBeyond, measuringAxis, timeAxis, valueAxis, withoutNaN } from "../../shared/chartgroup";
import { drawn, fakeChart, logOfChart } from "../charts";
import { newContext } from "../drawing";

const said: string[] = [];
const events = {
  hover: (time: number) => void said.push(`hover ${time.toFixed(2)}`),
  pick: (time: number) => void said.push(`pick ${time.toFixed(2)}`),
  range: (from: number, to: number) => void said.push(`range ${from.toFixed(2)} ${to.toFixed(2)}`),
};
const options = { height: 100, series: [{}, {}], scales: { y: { range: [0, 1] as [number, number] } } };
const data: uPlot.AlignedData = [
  [0, 5, 10],
  [0, 1, 0.5],
];
let group: ChartGroup;

/** Makes a group of 10 s with so many charts of 672 px: from 60 px to 12 px before the end lie 600 px of plot. */
function charts(count: number, more: object = {}, isForPaper = false): uPlot[] {
  group = new ChartGroup(10, 672, events, isForPaper);
  const axes = [timeAxis(true), valueAxis(new Map([[0, "0"]]))];
  return Array.from({ length: count }, () => group.add(document.body.appendChild(document.createElement("div")), { ...options, axes, ...more }, data));
}

beforeEach(() => void (said.length = 0));
afterEach(() => {
  group?.destroy();
  document.body.replaceChildren();
});

describe("Charts of a group", () => {
  test("have the same width, axis of time and margins", async () => {
    const [chart] = charts(1);
    await drawn();
    expect([chart.width, chart.height]).toEqual([672, 100]);
    expect([chart.bbox.left, chart.bbox.width, chart.bbox.top]).toEqual([2 * 60, 2 * 600, 2 * 8]);
    expect([chart.scales.x.min, chart.scales.x.max]).toEqual([0, 10]);
    expect(chart.scales.x.time).toBe(false);
    expect(chart.root.querySelector(".u-legend")).toBeNull();
    expect([group.from, group.to]).toEqual([0, 10]);
    expect(chart.cursor).toMatchObject({ y: false, drag: { x: true, y: false, dist: 5 } });
    expect((chart.cursor.points as { size: () => number }).size).toBeDefined();
  });

  test("keep options of their own", async () => {
    const plugin = vi.fn();
    const hook = vi.fn();
    const [chart] = charts(1, { padding: [0, 0, 0, 0], cursor: { y: true }, plugins: [{ hooks: { draw: plugin } }], hooks: { draw: [hook] } });
    await drawn();
    expect(chart.bbox.top).toBe(0);
    expect(chart.cursor.y).toBe(true);
    expect(plugin).toHaveBeenCalled();
    expect(hook).toHaveBeenCalled();
    expect(chart.scales.y.min).toBe(0);
  });

  test("show a cursor at the same time, and none outside of the range", async () => {
    const both = charts(2);
    await drawn();
    group.moveTo(5);
    expect(both.map(({ cursor }) => [cursor.left, cursor.top])).toEqual([[300, 0], [300, 0]]);
    group.moveTo(10);
    expect(both[0].cursor.left).toBe(600);
    group.moveTo(0);
    expect(both[0].cursor.left).toBe(0);
    for (const outside of [10.1, -0.1]) {
      group.moveTo(outside);
      expect(both.map(({ cursor }) => [cursor.left, cursor.top])).toEqual([[-10, -10], [-10, -10]]);
    }
  });

  test("say where the mouse is, and the cursor stays when it leaves", async () => {
    const [chart] = charts(1);
    await drawn();
    group.moveTo(2.5);
    said.length = 0;
    chart.setCursor({ left: 300, top: 10 });
    expect(said).toEqual(["hover 5.00"]);
    chart.setCursor({ left: 0, top: 10 });
    expect(said).toEqual(["hover 5.00", "hover 0.00"]);
    chart.setCursor({ left: -10, top: -10 });
    expect(said.length).toBe(2);
    await drawn();
    expect(chart.cursor.left).toBe(150);
  });

  test("say at which time they are clicked, but not if the mouse was dragged", async () => {
    const place = vi.spyOn(Element.prototype, "getBoundingClientRect");
    place.mockReturnValue({ left: 60, top: 0, width: 600, height: 68 } as DOMRect);
    // The browser moves the mouse between two clicks; without that, uPlot takes each click for the end of a drag.
    const [chart] = charts(1, { cursor: { drag: { x: true, y: false, click() {} } } });
    await drawn();
    const over = chart.over;
    const press = (down: number, up: number) => {
      over.dispatchEvent(new MouseEvent("mousedown", { clientX: down }));
      over.dispatchEvent(new MouseEvent("click", { clientX: up }));
    };
    said.length = 0;
    press(360, 360);
    press(360, 365);
    press(364, 360);
    press(361, 356);
    press(365, 360);
    expect(said.filter((text) => text.startsWith("pick"))).toEqual(["pick 5.00", "pick 5.00"]);
    place.mockRestore();
  });

  test("show another range together, and say so", async () => {
    const both = charts(2);
    await drawn();
    group.moveTo(4);
    group.showRange(2, 6);
    await drawn();
    expect(both.map(({ scales }) => [scales.x.min, scales.x.max])).toEqual([[2, 6], [2, 6]]);
    expect([group.from, group.to]).toEqual([2, 6]);
    expect(both[1].cursor.left).toBe(300);
    expect(said.filter((text) => text.startsWith("range"))).toEqual(["range 2.00 6.00"]);
  });

  test("follow the one that is zoomed, within the recording", async () => {
    const [first, second] = charts(2);
    await drawn();
    first.setScale("x", { min: -3, max: 5 });
    await drawn();
    expect([second.scales.x.min, second.scales.x.max]).toEqual([0, 5]);
    expect(said.filter((text) => text.startsWith("range"))).toEqual(["range 0.00 5.00"]);
    first.setScale("x", { min: 5, max: 15 });
    await drawn();
    expect([second.scales.x.min, second.scales.x.max]).toEqual([5, 10]);
    first.setScale("y", { min: 0, max: 0.5 });
    first.setScale("x", { min: 5, max: 10 });
    await drawn();
    expect(said.filter((text) => text.startsWith("range")).length).toBe(2);
  });

  test("show all again after a double click", async () => {
    const [chart] = charts(1);
    await drawn();
    group.showRange(2, 6);
    chart.over.dispatchEvent(new MouseEvent("dblclick"));
    await drawn();
    expect([chart.scales.x.min, chart.scales.x.max]).toEqual([0, 10]);
  });

  test("mark a time that is pinned, while it is in the range", async () => {
    const [chart] = charts(1);
    await drawn();
    const marks = async (time: number | null) => {
      logOfChart(chart).length = 0;
      group.markPinned(time);
      await drawn();
      const log = logOfChart(chart);
      const at = log.indexOf("strokeStyle = color(--accent)");
      return at < 0 ? null : log.slice(at - 1, at + 8);
    };
    expect(await marks(5)).toEqual([
      "save", "strokeStyle = color(--accent)", "lineWidth = 4", "setLineDash [8 6]", "beginPath", "moveTo 720 16", "lineTo 720 152", "stroke", "restore",
    ]);
    expect((await marks(0))?.[5]).toBe("moveTo 120 16");
    expect((await marks(10))?.[5]).toBe("moveTo 1320 16");
    expect(await marks(-1)).toBeNull();
    expect(await marks(11)).toBeNull();
    expect(await marks(null)).toBeNull();
  });

  test("show range and cursor again after new data", async () => {
    const [chart] = charts(1);
    await drawn();
    group.showRange(2, 6);
    group.moveTo(3);
    chart.setData([[0, 20], [0, 1]]);
    group.refresh(chart);
    await drawn();
    expect([chart.scales.x.min, chart.scales.x.max, chart.cursor.left]).toEqual([2, 6, 150]);
    group.from = 3;
    group.to = 4;
    group.setRange(chart);
    await drawn();
    expect([chart.scales.x.min, chart.scales.x.max]).toEqual([3, 4]);
  });

  test("take another width at once, with the cursor at its time", async () => {
    const [chart] = charts(1);
    await drawn();
    group.moveTo(5);
    const setSize = vi.spyOn(chart, "setSize");
    group.resize(672);
    expect(setSize).not.toHaveBeenCalled();
    group.resize(372);
    expect([chart.width, chart.height, chart.cursor.left]).toEqual([372, 100, 150]);
    group.resize(372);
    expect(setSize).toHaveBeenCalledTimes(1);
  });

  test("are removed with the group", async () => {
    const [chart] = charts(1);
    await drawn();
    group.destroy();
    expect(document.querySelector(".uplot")).toBeNull();
    const setCursor = vi.spyOn(chart, "setCursor");
    group.moveTo(3);
    expect(setCursor).not.toHaveBeenCalled();
  });
});

describe("A group for paper", () => {
  test("draws its charts as SVG, at once and once", () => {
    const [chart] = charts(1, {}, true);
    const target = chart.root.parentElement as HTMLElement;
    const drawing = group.drawing(target);
    expect(drawing?.canvas).toEqual({ width: 1344, height: 200 });
    expect(drawing?.content()).toContain(">0:10<");
    expect(group.drawing(document.body)).toBeUndefined();
    const before = drawing?.content();
    group.markPinned(5);
    group.resize(100);
    expect(chart.width).toBe(672);
    expect(drawing?.content()).toBe(before);
    chart.over.dispatchEvent(new MouseEvent("click"));
    expect(said.filter((text) => text.startsWith("pick"))).toEqual([]);
  });

  test("draws the range that is shown", () => {
    group = new ChartGroup(10, 672, events, true);
    group.from = 2;
    group.to = 4;
    const target = document.body.appendChild(document.createElement("div"));
    const chart = group.add(target, { ...options, axes: [timeAxis(true), valueAxis(new Map())] }, data);
    expect([chart.scales.x.min, chart.scales.x.max]).toEqual([2, 4]);
    expect(group.drawing(target)?.content()).not.toContain(">0:10<");
  });

  test("shows the drawings instead of the canvases", () => {
    const [chart] = charts(1, {}, true);
    const target = chart.root.parentElement as HTMLElement;
    group.placeDrawings();
    expect(target.querySelector("canvas")).toBeNull();
    const svg = target.querySelector("svg");
    expect([svg?.getAttribute("width"), svg?.getAttribute("height"), svg?.getAttribute("viewBox")]).toEqual(["672", "100", "0 0 1344 200"]);
    expect(svg?.namespaceURI).toBe("http://www.w3.org/2000/svg");
    expect(svg?.querySelectorAll("text").length).toBeGreaterThan(3);
    group.placeDrawings(); // there is no canvas any more
    expect(target.querySelectorAll("svg").length).toBe(1);
  });
});

describe("An axis", () => {
  type Values = (chart: unknown, splits: number[]) => string[];
  const valuesOf = (axis: uPlot.Axis) => axis.values as unknown as Values;

  test("of time has clock times, with a decimal where the steps need it", () => {
    const axis = timeAxis(true);
    expect(axis).toMatchSnapshot();
    expect(valuesOf(axis)(null, [0, 10, 20])).toEqual(["0:00", "0:10", "0:20"]);
    expect(valuesOf(axis)(null, [0, 0.5, 1])).toEqual(["0:00.0", "0:00.5", "0:01.0"]);
    expect(valuesOf(axis)(null, [0.5])).toEqual(["0:01"]);
    expect(valuesOf(axis)(null, [0.5, 1.5])).toEqual(["0:01", "0:02"]);
    expect(valuesOf(axis)(null, [])).toEqual([]);
  });

  test("of time without labels has its grid only", () => {
    const axis = timeAxis(false);
    expect(axis.size).toBe(6);
    expect(valuesOf(axis)(null, [0, 10])).toEqual(["", ""]);
  });

  test("of values has labels for some", () => {
    const axis = valueAxis(new Map([[0, "none"], [1, "all"]]), "other");
    expect(axisWidth).toBe(60);
    expect(axis).toMatchSnapshot();
    expect((axis.splits as () => number[])()).toEqual([0, 1]);
    expect(valuesOf(axis)(null, [0, 0.5, 1])).toEqual(["none", "", "all"]);
    expect(valueAxis(new Map()).scale).toBe("y");
  });

  test("that measures has a unit", () => {
    const axis = measuringAxis(" m");
    expect(axis).toMatchSnapshot();
    expect(valuesOf(axis)(null, [-1.5, 0, 2])).toEqual(["−1.5 m", "0 m", "2 m"]);
  });
});

describe("Gaps of a line", () => {
  const gaps = (times: number[], values: (number | null | undefined)[], from = 0, to = times.length - 1) =>
    (gapsBeyond(2) as unknown as (...values: unknown[]) => [number, number][])(fakeChart(newContext().context, [times, values] as uPlot.AlignedData), 1, from, to, [], false as never);

  test("are where two values are further apart than the longest time", () => {
    expect(gaps([0, 2, 4.1, 5], [1, 1, 1, 1])).toEqual([[120, 141]]);
  });

  test("take no notice of times without a value", () => {
    expect(gaps([0, 1, 2, 3, 4], [1, null, undefined, 1, 1])).toEqual([[100, 130]]);
    expect(gaps([0, 10, 20], [null, 1, null])).toEqual([]);
  });

  test("begin and end with what is drawn", () => {
    expect(gaps([0, 10, 20, 30], [1, 1, 1, 1], 1, 2)).toEqual([[200, 300]]);
    expect(gaps([0, 10], [1, 1], -1)).toEqual([[100, 200]]);
  });

  test("are at whole pixels", () => {
    expect(gaps([0.06, 10.04], [1, 1])).toEqual([[101, 200]]);
  });
});

test("A value that is not a number is none", () => {
  expect(withoutNaN([1, NaN, 0])).toEqual([1, null, 0]);
});
