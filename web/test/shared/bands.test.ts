import { expect, test } from "vitest";
import { attentionOptions, valenceOptions, withBand } from "../../shared/bands";

test("A band is as wide as the estimate is unsure, within the range, and has a gap where it is unknown", () => {
  const data = withBand([0, 1, 2, 3], [0, 0.95, -0.95, 0.5], [0.5, 0.5, 0.5, 1], [1, 1, 1, 0], -1);
  expect(data[0]).toEqual([0, 1, 2, 3]);
  expect(data[1]).toEqual([0.25, 1, -0.95 + 0.25, null]);
  expect(data[2]).toEqual([-0.25, 0.95 - 0.25, -1, null]);
  expect(data[3]).toEqual([0, 0.95, -0.95, null]);
});

test("A band of attention ends at 0", () => {
  expect(withBand([0], [0.1], [0], [1], 0)[2]).toEqual([0]);
});

test("The chart of valence goes from negative to positive", () => {
  const options = valenceOptions(1);
  expect(options).toMatchSnapshot();
  const axis = options.axes?.[1] as unknown as { splits(): number[]; values(chart: null, splits: number[]): string[] };
  expect(axis.values(null, axis.splits())).toEqual(["negative", "−0.5", "neutral", "+0.5", "positive"]);
});

test("The chart of attention goes from 0 to 1", () => {
  const options = attentionOptions(1);
  expect(options).toMatchSnapshot();
  const axis = options.axes?.[1] as unknown as { splits(): number[]; values(chart: null, splits: number[]): string[] };
  expect(axis.splits()).toEqual([0, 0.5, 1]);
  expect(axis.values(null, axis.splits())).toEqual(["0", "0.5", "1"]);
});

test("Charts take the plugins that they are given", () => {
  const plugin = { hooks: {} };
  expect(valenceOptions(1, [plugin]).plugins).toEqual([plugin]);
  expect(attentionOptions(1, [plugin]).plugins).toEqual([plugin]);
});
