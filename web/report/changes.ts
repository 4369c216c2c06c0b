// The causes of changes of a quantity, as bars that are stacked upwards and downwards, one for each short time span.

import uPlot from "uplot";
import { ChartOptions, timeAxis, valueAxis } from "../shared/chartgroup";
import { Change, Person } from "./data";
import { plain } from "../shared/text";
import { cssColor, fillOf, font, Look } from "../shared/theme";

/** How much of the scale is shown beyond its last label. */
const margin = 1.04;

export interface Bins {
  times: number[];
  /** For each source how far it moved the quantity in each bin, in the mean of the updates. */
  distances: number[][];
}

/** Averages changes in bins of equal length; the changes of a moment count in the bin of its time. */
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

/** Stacks the values above zero and those below it; the last of the series is nearest to zero. */
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

/** The scale goes from -limit to limit, for all bars. */
export function changeOptions(looks: Look[], limit: number, isTimeLabelled: boolean): ChartOptions {
  const bars = uPlot.paths.bars?.({ size: [0.92, Infinity], align: 0 });
  const series = looks.flatMap((look): uPlot.Series[] => {
    const fill = fillOf(look);
    const one: uPlot.Series = { paths: bars, fill: () => fill as CanvasGradient | string, points: { show: false }, width: 0 };
    return [one, { ...one }];
  });
  return {
    height: isTimeLabelled ? 148 : 130,
    axes: [timeAxis(isTimeLabelled), valueAxis(labelsUpTo(limit))],
    scales: { y: { range: [-limit * margin, limit * margin] } },
    cursor: { points: { show: false } },
    series: [{}, ...series.reverse()],
    hooks: { draw: [zeroLine, (chart) => markBeyond(chart, limit)] },
  };
}

function labelsUpTo(limit: number): Map<number, string> {
  const values = [-limit, -limit / 2, 0, limit / 2, limit];
  return new Map(values.map((value) => [value, value > 0 ? `+${value}` : String(value).replace("-", "−")]));
}

/** Marks bars that go beyond the scale, with the greatest value of neighbouring ones. */
function markBeyond(chart: uPlot, limit: number): void {
  const [times, ...series] = chart.data as unknown as [number[], ...(number | null)[][]];
  for (const sign of [1, -1]) {
    const heights = times.map((_, bin) => Math.max(0, ...series.map((values) => sign * (values[bin] ?? 0))));
    for (let bin = 0; bin < times.length; ++bin) {
      if (heights[bin] <= limit * margin) continue;
      let furthest = bin;
      for (; bin + 1 < times.length && heights[bin + 1] > limit * margin; ++bin)
        if (heights[bin + 1] > heights[furthest]) furthest = bin + 1;
      drawBeyond(chart, times[furthest], sign, heights[furthest]);
    }
  }
}

function drawBeyond(chart: uPlot, time: number, sign: number, height: number): void {
  const { ctx: context, bbox } = chart;
  const text = `${sign > 0 ? "▲ +" : "▼ −"}${plain(height)}`;
  const ratio = devicePixelRatio;
  context.save();
  context.font = font(Math.round(10 * ratio));
  context.textAlign = "center";
  context.textBaseline = "middle";
  const half = context.measureText(text).width / 2 + 2 * ratio;
  const x = Math.min(Math.max(chart.valToPos(time, "x", true), bbox.left + half), bbox.left + bbox.width - half);
  const y = sign > 0 ? bbox.top + 7 * ratio : bbox.top + bbox.height - 7 * ratio;
  context.fillStyle = cssColor("surface");
  context.fillRect(x - half, y - 6 * ratio, 2 * half, 12 * ratio);
  context.fillStyle = cssColor("text");
  context.fillText(text, x, y);
  context.restore();
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
