// What pulled a quantity, as bars that are stacked upwards and downwards, one for each short stretch of time.

import uPlot from "uplot";
import { ChartOptions, measuringAxis, timeAxis } from "../shared/chartgroup";
import { Change, Person } from "./data";
import { cssColor, fillOf, Look } from "../shared/theme";

export interface Bins {
  times: number[];
  /** For each source how far it moved the quantity in each bin, in the mean of the updates. */
  distances: number[][];
}

/** Averages changes in bins of equal length; what a moment says counts where the moment is. */
export function binned({ time, updates }: Person, changes: Change[], from: number, to: number, count: number): Bins {
  const length = (to - from) / count;
  const bins: Bins = {
    times: Array.from({ length: count }, (_, bin) => from + (bin + 0.5) * length),
    distances: changes.map(() => new Array<number>(count).fill(0)),
  };
  const updatesIn = new Array<number>(count).fill(0);
  for (let i = 0; i < time.length; ++i) {
    if (time[i] < from || time[i] > to) continue;
    const bin = Math.min(count - 1, Math.floor((time[i] - from) / length));
    updatesIn[bin] += updates[i];
    changes.forEach((change, source) => (bins.distances[source][bin] += change.distances[i]));
  }
  for (const distances of bins.distances)
    updatesIn.forEach((number, bin) => (distances[bin] /= Math.max(1, number)));
  return bins;
}

/** Stacks what is above zero and what is below it; the last of the series lies nearest to zero. */
export function stacked({ times, distances }: Bins): uPlot.AlignedData {
  const up = new Array<number>(times.length).fill(0);
  const down = new Array<number>(times.length).fill(0);
  const series: (number | null)[][] = [];
  for (const values of distances) {
    series.unshift(values.map((value, bin) => (value > 0 ? (up[bin] += value) : null)));
    series.unshift(values.map((value, bin) => (value < 0 ? (down[bin] += value) : null)));
  }
  return [times, ...series];
}

/** Sources by how much they moved in total, the strongest first. */
export function byStrength(changes: Change[]): Change[] {
  const total = ({ distances }: Change) => distances.reduce((sum, distance) => sum + Math.abs(distance), 0);
  return changes
    .map((change) => ({ change, total: total(change) }))
    .sort((left, right) => right.total - left.total)
    .map(({ change }) => change);
}

export function changeOptions(looks: Look[], isTimeLabelled: boolean): ChartOptions {
  const bars = uPlot.paths.bars?.({ size: [0.92, Infinity], align: 0 });
  const series = looks.flatMap((look): uPlot.Series[] => {
    const fill = fillOf(look);
    const one: uPlot.Series = { paths: bars, fill: () => fill as CanvasGradient | string, points: { show: false }, width: 0 };
    return [one, { ...one }];
  });
  return {
    height: isTimeLabelled ? 148 : 130,
    axes: [timeAxis(isTimeLabelled), measuringAxis("")],
    scales: { y: { range: (_, min, max) => symmetric(min, max) } },
    cursor: { points: { show: false } },
    series: [{}, ...series.reverse()],
    hooks: { draw: [zeroLine] },
  };
}

function symmetric(min: number | null, max: number | null): uPlot.Range.MinMax {
  const greatest = Math.max(Math.abs(min ?? 0), Math.abs(max ?? 0), 0.001) * 1.08;
  return [-greatest, greatest];
}

function zeroLine(chart: uPlot): void {
  const y = Math.round(chart.valToPos(0, "y", true));
  const context = chart.ctx;
  context.save();
  context.strokeStyle = cssColor("muted");
  context.lineWidth = devicePixelRatio;
  context.beginPath();
  context.moveTo(chart.bbox.left, y);
  context.lineTo(chart.bbox.left + chart.bbox.width, y);
  context.stroke();
  context.restore();
}
