// The charts of valence and attention: a line, and a band that is wider if the estimate is less sure.

import uPlot from "uplot";
import { ChartOptions, gapsBeyond, timeAxis, valueAxis } from "./chartgroup";
import { cssColor } from "./theme";

function bandOptions(
  height: number,
  range: [number, number],
  labels: Map<number, string>,
  color: string,
  longest: number,
  plugins: uPlot.Plugin[],
): ChartOptions {
  const gaps = gapsBeyond(longest);
  const edge: uPlot.Series = { stroke: "transparent", width: 0, points: { show: false }, gaps };
  return {
    height,
    scales: { y: { range: [range[0] - 0.03, range[1] + 0.03] } },
    axes: [timeAxis(false), valueAxis(labels)],
    plugins,
    bands: [{ series: [1, 2], fill: `${cssColor(color)}38` }],
    series: [{}, edge, { ...edge }, { stroke: cssColor(color), width: 2, gaps, points: { show: false } }],
  };
}

/** Options of the chart of valence; the line has gaps where two values are further apart than `longest` seconds. */
export function valenceOptions(longest: number, plugins: uPlot.Plugin[] = []): ChartOptions {
  const labels = new Map([
    [-1, "negative"],
    [-0.5, "−0.5"],
    [0, "neutral"],
    [0.5, "+0.5"],
    [1, "positive"],
  ]);
  return bandOptions(190, [-1, 1], labels, "valence", longest, plugins);
}

/** The bands of the chart of attention. */
export function attentionOptions(longest: number, plugins: uPlot.Plugin[] = []): ChartOptions {
  const labels = new Map([
    [0, "0"],
    [0.5, "0.5"],
    [1, "1"],
  ]);
  return bandOptions(140, [0, 1], labels, "attention", longest, plugins);
}

/** Returns the values with the upper and the lower edge of their band; an unknown value is null. */
export function withBand(
  time: ArrayLike<number>,
  values: ArrayLike<number>,
  confidences: ArrayLike<number>,
  known: ArrayLike<number>,
  least: number,
): uPlot.AlignedData {
  const half = (i: number) => (1 - confidences[i]) / 2;
  const ifKnown = (of: (i: number) => number) => Array.from(values, (_, i) => (known[i] ? of(i) : null));
  return [
    time as number[],
    ifKnown((i) => Math.min(1, values[i] + half(i))),
    ifKnown((i) => Math.max(least, values[i] - half(i))),
    ifKnown((i) => values[i]),
  ];
}
