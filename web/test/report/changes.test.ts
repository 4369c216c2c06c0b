import { describe, expect, test } from "vitest";
import { binned, byStrength, changeOptions, stacked } from "../../report/changes";
import { fakeChart } from "../charts";
import { newContext } from "../drawing";
import { person } from "./recordings";

const change = (source: string, ...distances: number[]) => ({ source, distances: Float32Array.from(distances) });

describe("Changes in bins", () => {
  test("are means over the updates of each bin, in the middle of its time", () => {
    // Moments at 0, 1, 2 and 3 s with 1, 2, 1 and 3 updates.
    expect(binned(person(), [change("a", 1, 2, 3, 6), change("b", 0, 0, 0, -3)], 0, 4, 2)).toEqual({
      times: [1, 3],
      distances: [
        [1, 9 / 4],
        [0, -3 / 4],
      ],
    });
  });

  test("are those from the start to the end, both included", () => {
    expect(binned(person(), [change("a", 1, 2, 3, 6)], 1, 3, 2).distances).toEqual([[1, 9 / 4]]);
    expect(binned(person(), [change("a", 1, 2, 3, 6)], 0.5, 2.5, 4)).toEqual({ times: [0.75, 1.25, 1.75, 2.25], distances: [[0, 1, 0, 3]] });
  });
});

test("Stacked bars begin at the ends of those before them, above and below zero", () => {
  const data = stacked({ times: [1, 2], distances: [[0.5, -0.5], [0.25, -0.125], [-1, 0]] });
  expect(data).toEqual([[1, 2], [-1, null], [null, null], [null, -0.625], [0.75, null], [null, -0.5], [0.5, null]]);
});

test("Sources are in the order of how far they moved in total, in both directions", () => {
  expect(byStrength([change("a", 1, -1), change("b", 3, 0), change("c", -4, 0)]).map(({ source }) => source)).toEqual(["c", "b", "a"]);
});

describe("The chart of changes", () => {
  const looks = [{ color: "red", hatch: "solid" as const }, { color: "blue", hatch: "solid" as const }];

  test("has two series for each source, and a scale that is the same everywhere", () => {
    const options = changeOptions(looks, 0.5, false);
    expect(options).toMatchSnapshot();
    expect([options.height, changeOptions(looks, 0.5, true).height]).toEqual([130, 148]);
    expect([options.axes?.[0].size, changeOptions(looks, 0.5, true).axes?.[0].size]).toEqual([6, 24]);
    expect(options.series.slice(1).map(({ fill }) => (fill as () => string)())).toEqual(["blue", "blue", "red", "red"]);
    const axis = options.axes?.[1] as unknown as { splits(): number[]; values(chart: null, splits: number[]): string[] };
    expect(axis.values(null, axis.splits())).toEqual(["−0.5", "−0.25", "0", "+0.25", "+0.5"]);
  });

  function log(data: (number | null)[][], hook: number): string[] {
    const { context, log } = newContext();
    const draw = changeOptions(looks, 0.5, false).hooks?.draw as unknown as ((chart: unknown) => void)[];
    draw[hook](fakeChart(context, data as never));
    return log;
  }

  test("has a line at zero", () => {
    expect(log([[0]], 0)).toEqual([
      "save", "strokeStyle = color(--muted)", "lineWidth = 2", "beginPath", "moveTo 100 120", "lineTo 600 120", "stroke", "restore",
    ]);
  });

  test("marks bars beyond the scale with their values", () => {
    expect(log([[10], [1], [-2]], 1)).toEqual([
      "save", 'font = 20px system-ui, "DejaVu Sans", sans-serif', "textAlign = center", "textBaseline = middle",
      "fillStyle = color(--surface)", "fillRect 161 22 78 24", "fillStyle = color(--text)", "fillText ▲ +1.00 200 34", "restore",
      "save", 'font = 20px system-ui, "DejaVu Sans", sans-serif', "textAlign = center", "textBaseline = middle",
      "fillStyle = color(--surface)", "fillRect 161 194 78 24", "fillStyle = color(--text)", "fillText ▼ −2.00 200 206", "restore",
    ]);
  });

  test("marks the greatest of bars side by side, and those at the ends within the chart", () => {
    const texts = (...values: (number | null)[]) =>
      log([values.map((_, i) => 20 * i), values], 1).filter((line) => line.startsWith("fillText"));
    expect(texts(0.53, 0.9, 0.6)).toEqual(["fillText ▲ +0.90 300 34"]);
    expect(texts(0.6, 0.1, 0.7)).toEqual(["fillText ▲ +0.60 139 34", "fillText ▲ +0.70 500 34"]);
    expect(texts(0.52, null, -0.52)).toEqual([]);
    expect(texts(null, 0.1, 0.8).length).toBe(1);
    expect(log([[50], [1]], 1)).toContain("fillText ▲ +1.00 561 34");
  });
});
