// Ribbons: lanes in which a state lasts from one time to another, or an event happens at a time. Drawn by a plugin of
// uPlot, with names and patterns, so that they can be read without colours.

import uPlot from "uplot";
import { axisWidth, ChartOptions, timeAxis } from "./chartgroup";
import { cssColor, fillOf, font, Look, shortened } from "./theme";

export interface Segment {
  from: number;
  to: number;
  look: Look;
  /** Drawn if there is room for it; the first one that fits. */
  texts: string[];
}

export interface Mark {
  time: number;
  texts: string[];
}

export interface Lane {
  name: string;
  segments: Segment[];
  marks: Mark[];
}

export const laneHeight = 22;
const laneGap = 5;

/** Joins the moments with the same state; the state of a moment lasts until the next one, at most for `longest`. */
export function segmentsOf(
  times: Float64Array,
  longest: number,
  stateAt: (moment: number) => number,
  lookOf: (state: number) => { look: Look; texts: string[] } | null,
): Segment[] {
  const segments: Segment[] = [];
  let current = -1;
  for (let i = 0; i < times.length; ++i) {
    const next = i + 1 < times.length ? times[i + 1] : times[i];
    const to = Math.min(next, times[i] + longest);
    const state = stateAt(i);
    const last = segments[segments.length - 1];
    const goesOn = last && state === current && last.to >= times[i];
    current = state;
    if (goesOn) {
      last.to = to;
      continue;
    }
    const seen = lookOf(state);
    if (seen) segments.push({ from: times[i], to, ...seen });
    else current = -1;
  }
  return segments;
}

function drawText(context: CanvasRenderingContext2D, texts: string[], x: number, y: number, room: number): void {
  const padding = 3 * devicePixelRatio;
  for (const text of texts) {
    const width = context.measureText(text).width;
    if (width + 2 * padding > room) continue;
    context.fillStyle = cssColor("surface");
    context.fillRect(x - width / 2 - padding, y - 8 * devicePixelRatio, width + 2 * padding, 16 * devicePixelRatio);
    context.fillStyle = cssColor("text");
    context.fillText(text, x, y);
    return;
  }
}

function drawLane(chart: uPlot, context: CanvasRenderingContext2D, lane: Lane, top: number, height: number): void {
  const { left, width } = chart.bbox;
  const position = (time: number) => Math.min(Math.max(chart.valToPos(time, "x", true), left), left + width);
  context.fillStyle = cssColor("lane");
  context.fillRect(left, top, width, height);
  for (const { from, to, look } of lane.segments) {
    const x = position(from);
    context.fillStyle = fillOf(look);
    const seam = position(to) - x > 8 * devicePixelRatio ? devicePixelRatio : 0;
    context.fillRect(x, top, Math.max(position(to) - x - seam, 0.5 * devicePixelRatio), height);
  }
  for (const { from, to, texts } of lane.segments) {
    const x = position(from);
    drawText(context, texts, (x + position(to)) / 2, top + height / 2, position(to) - x);
  }
  const { min, max } = chart.scales.x;
  const marks = lane.marks.filter(({ time }) => time >= (min ?? 0) && time <= (max ?? 0));
  marks.forEach(({ time, texts }, number) => {
    const x = position(time);
    const toLast = number > 0 ? x - position(marks[number - 1].time) : Infinity;
    const toNext = number + 1 < marks.length ? position(marks[number + 1].time) - x : Infinity;
    const room = Math.min(toLast, toNext);
    drawText(context, texts, x, top + height / 2, Math.max(room, 14 * devicePixelRatio));
  });
}

/** Draws the lanes below each other, and their names at the left. */
function lanesPlugin(lanes: Lane[]): uPlot.Plugin {
  return {
    hooks: {
      draw: (chart) => {
        const context = chart.ctx;
        const ratio = devicePixelRatio;
        context.save();
        lanes.forEach((lane, number) => {
          const top = chart.bbox.top + number * (laneHeight + laneGap) * ratio;
          context.font = font(Math.round(11 * ratio));
          context.textBaseline = "middle";
          context.textAlign = "center";
          context.save();
          context.beginPath();
          context.rect(chart.bbox.left, top, chart.bbox.width, laneHeight * ratio);
          context.clip();
          drawLane(chart, context, lane, top, laneHeight * ratio);
          context.restore();
          context.textAlign = "right";
          context.fillStyle = cssColor("muted");
          const name = shortened(context, lane.name, chart.bbox.left - 8 * ratio);
          context.fillText(name, chart.bbox.left - 6 * ratio, top + (laneHeight * ratio) / 2);
        });
        context.restore();
      },
    },
  };
}

/** Options of a chart with lanes only; its data is [times, nothing]. */
export function ribbonOptions(lanes: Lane[], isTimeLabelled: boolean): ChartOptions {
  const axis = timeAxis(isTimeLabelled);
  return {
    height: lanes.length * (laneHeight + laneGap) + (isTimeLabelled ? 30 : 12),
    padding: [4, 12, 0, 0],
    scales: { y: { range: [0, 1] } },
    axes: [{ ...axis, grid: { show: false } }, { size: axisWidth, values: () => [], grid: { show: false }, ticks: { show: false } }],
    cursor: { points: { show: false } },
    series: [{}, { show: false }],
    plugins: [lanesPlugin(lanes)],
  };
}
