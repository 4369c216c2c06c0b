import uPlot from "uplot";
import { describe, expect, test } from "vitest";
import { Lane, laneHeight, ribbonOptions, segmentsOf } from "../../shared/ribbons";
import { Look } from "../../shared/theme";
import { fakeChart } from "../charts";
import { newContext } from "../drawing";

const look = (name: string): { look: Look; texts: string[] } => ({ look: { color: name, hatch: "solid" }, texts: [name] });

describe("Moments of a state", () => {
  const segments = (times: number[], states: number[], longest = 1) =>
    segmentsOf(Float64Array.from(times), longest, (i) => states[i], (state) => (state < 0 ? null : look(`state ${state}`))).map(
      ({ from, to, texts }) => [from, to, texts[0]],
    );

  test("are joined while it lasts", () => {
    expect(segments([0, 0.5, 1, 1.5], [1, 1, 2, 1])).toEqual([
      [0, 1, "state 1"],
      [1, 1.5, "state 2"],
      [1.5, 1.5, "state 1"],
    ]);
  });

  test("last until the next one, but not longer than the longest hold", () => {
    expect(segments([0, 5, 5.5], [1, 1, 1])).toEqual([
      [0, 1, "state 1"],
      [5, 5.5, "state 1"],
    ]);
    expect(segments([0, 1, 2], [1, 1, 1])).toEqual([[0, 2, "state 1"]]);
  });

  test("of a state that is not drawn leave a gap, and end the state before", () => {
    expect(segments([0, 0.5, 1, 1.5], [1, -1, 1, 1])).toEqual([
      [0, 0.5, "state 1"],
      [1, 1.5, "state 1"],
    ]);
    expect(segments([0, 0.5, 0.5], [1, -1, 1])).toEqual([
      [0, 0.5, "state 1"],
      [0.5, 0.5, "state 1"],
    ]);
    expect(segments([], [])).toEqual([]);
  });

  test("of a hidden state are asked about only once for each moment", () => {
    expect(segments([0, 0.5], [-1, -1])).toEqual([]);
  });
});

describe("Ribbons", () => {
  function log(lanes: Lane[], min: number | null = 0, max: number | null = 50): string[] {
    const { context, log } = newContext();
    const [draw] = [ribbonOptions(lanes, true).plugins?.[0].hooks.draw as (chart: uPlot) => void];
    draw(fakeChart(context, [[]], min, max));
    return log;
  }

  /** Where the texts of a lane are, each after its background. */
  const texts = (lines: string[]) => lines.filter((line) => line.startsWith("fillText"));

  test("have a chart as high as their lanes, with an axis only where it is wanted", () => {
    expect(laneHeight).toBe(22);
    const lanes = [{ name: "a", segments: [], marks: [] }, { name: "b", segments: [], marks: [] }];
    const labelled = ribbonOptions(lanes, true);
    expect(labelled).toMatchSnapshot();
    expect((labelled.axes?.[1].values as () => string[])()).toEqual([]);
    const bare = ribbonOptions(lanes, false);
    expect([labelled.height, bare.height]).toEqual([84, 66]);
    expect([labelled.axes?.[0].size, bare.axes?.[0].size]).toEqual([24, 6]);
  });

  test("are drawn below each other, each with its name at the left", () => {
    const lanes = [
      { name: "zone", segments: [{ from: 1, to: 11, ...look("red") }], marks: [] },
      { name: "a name that is too long for its room", segments: [], marks: [] },
    ];
    expect(log(lanes).join("\n")).toMatchSnapshot();
  });

  test("show the first text of a segment for which there is room", () => {
    // A letter is 11 px wide, with 6 px at both sides.
    const shown = (to: number) => texts(log([{ name: "", segments: [{ from: 0, to, look: look("red").look, texts: ["long", "ab", "c"] }], marks: [] }]));
    expect(shown(5.6)).toEqual(["fillText long 128 42", "fillText  88 42"]);
    expect(shown(5.5)[0]).toBe("fillText ab 127.5 42");
    expect(shown(3.3)[0]).toBe("fillText c 116.5 42");
    expect(shown(2.2)).toEqual(["fillText  88 42"]);
  });

  test("leave a seam between segments that are wide enough", () => {
    const widths = (to: number) =>
      log([{ name: "", segments: [{ from: 0, to, ...look("red") }], marks: [] }]).filter((line) => line.startsWith("fillRect 100 20"))[1];
    expect(widths(1.61)).toBe("fillRect 100 20 14.1 44");
    expect(widths(1.6)).toBe("fillRect 100 20 16 44");
    expect(widths(0)).toBe("fillRect 100 20 1 44");
  });

  test("are cut at the ends of the chart", () => {
    const lines = log([{ name: "", segments: [{ from: -5, to: 70, ...look("red") }], marks: [] }]);
    expect(lines).toContain("fillRect 100 20 498 44");
  });

  test("have marks at their times, with as much text as there is room to the next one", () => {
    const mark = (time: number) => ({ time, texts: ["▲ pleasant", "▲"] });
    const marks = (...times: number[]) => texts(log([{ name: "", segments: [], marks: times.map(mark) }])).slice(0, -1);
    expect(marks(5)).toEqual(["fillText ▲ pleasant 150 42"]);
    expect(marks(5, 17.2, 30)).toEqual(["fillText ▲ pleasant 150 42", "fillText ▲ pleasant 272 42", "fillText ▲ pleasant 400 42"]);
    expect(marks(5, 17.1, 40)).toEqual(["fillText ▲ 150 42", "fillText ▲ 271 42", "fillText ▲ pleasant 500 42"]);
    expect(marks(5, 5.1)).toEqual(["fillText ▲ 150 42", "fillText ▲ 151 42"]);
  });

  test("have marks of the times that are shown only", () => {
    const lane = { name: "", segments: [], marks: [0, 10, 20, 30].map((time) => ({ time, texts: ["x"] })) };
    expect(texts(log([lane], 10, 20)).slice(0, -1)).toEqual(["fillText x 200 42", "fillText x 300 42"]);
    expect(texts(log([lane], null, null)).slice(0, -1)).toEqual(["fillText x 100 42"]);
  });
});
