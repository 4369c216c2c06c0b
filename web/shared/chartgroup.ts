// Charts over the same time: one cursor and one range for all.

import uPlot from "uplot";
import { drawnAsSvg, SvgContext } from "./svgcontext";
import { clock } from "./text";
import { cssColor, font } from "./theme";

export type ChartOptions = Omit<uPlot.Options, "width">;

/** Width of the labels left and right of each plot, equal everywhere so that equal times are above each other. */
export const axisWidth = 60;
const rightMargin = 12;

export interface ChartGroupEvents {
  /** The cursor was moved to a time. */
  hover(time: number): void;
  /** A time was clicked. */
  pick(time: number): void;
  /** Another range is shown. */
  range(from: number, to: number): void;
}

export class ChartGroup {
  private readonly charts: uPlot[] = [];
  private readonly drawings = new Map<HTMLElement, SvgContext>();
  private time = 0;
  private pinned: number | null = null;
  private isSettingRange = false;
  from = 0;
  to: number;

  constructor(
    private readonly length: number,
    private width: number,
    private readonly events: ChartGroupEvents,
    private readonly isForPaper = false,
  ) {
    this.to = length;
  }

  add(target: HTMLElement, options: ChartOptions, data: uPlot.AlignedData): uPlot {
    const chart = this.isForPaper
      ? this.drawn(target, this.complete(options), data)
      : new uPlot(this.complete(options), data, target);
    this.charts.push(chart);
    if (this.isForPaper) return chart;
    this.setRangeOf(chart);
    let pressedAt = 0;
    chart.over.addEventListener("mousedown", (event) => (pressedAt = event.clientX));
    chart.over.addEventListener("click", (event) => {
      const wasDragged = Math.abs(event.clientX - pressedAt) > 4;
      if (!wasDragged) this.events.pick(chart.posToVal(event.clientX - chart.over.getBoundingClientRect().left, "x"));
    });
    return chart;
  }

  /** Returns the chart in that element, if the group is for paper: SVG of the element's size. */
  drawing(target: HTMLElement): SvgContext | undefined {
    return this.drawings.get(target);
  }

  /** Shows the drawings instead of the canvases, if the group is for paper: lines and letters stay sharp there. */
  placeDrawings(): void {
    for (const [target, drawing] of this.drawings) {
      const { width, height } = drawing.canvas;
      const size = `width="${width / devicePixelRatio}" height="${height / devicePixelRatio}"`;
      const text = `<svg xmlns="http://www.w3.org/2000/svg" ${size} viewBox="0 0 ${width} ${height}">${drawing.content()}</svg>`;
      const svg = new DOMParser().parseFromString(text, "image/svg+xml").documentElement;
      target.querySelector("canvas")?.replaceWith(document.importNode(svg, true));
    }
  }

  /** Draws the chart as SVG, and at once. */
  private drawn(target: HTMLElement, options: uPlot.Options, data: uPlot.AlignedData): uPlot {
    const { width, height } = options;
    const context = new SvgContext(width * devicePixelRatio, height * devicePixelRatio);
    let chart: uPlot | undefined;
    drawnAsSvg(context, () => {
      const made = new uPlot(options, data, target);
      made.batch(() => made.setScale("x", { min: this.from, max: this.to }));
      chart = made;
    });
    this.drawings.set(target, context);
    return chart as unknown as uPlot;
  }

  /** Shows the cursor of all charts at a time. */
  moveTo(time: number): void {
    this.time = time;
    for (const chart of this.charts) this.placeCursor(chart);
  }

  /** Marks a time in all charts, or removes the mark. */
  markPinned(time: number | null): void {
    this.pinned = time;
    if (this.isForPaper) return; // charts on paper are drawn once
    for (const chart of this.charts) chart.redraw(false);
  }

  /** Shows range and cursor again in a chart with new data. */
  refresh(chart: uPlot): void {
    this.setRangeOf(chart);
    this.placeCursor(chart);
  }

  /** Shows the range in a chart with new data; the cursor stays at the mouse. */
  setRange(chart: uPlot): void {
    this.setRangeOf(chart);
  }

  resize(width: number): void {
    if (width === this.width || this.isForPaper) return;
    this.width = width;
    for (const chart of this.charts) {
      chart.batch(() => chart.setSize({ width, height: chart.height })); // at once: the cursor needs the scales
      this.placeCursor(chart);
    }
  }

  showRange(from: number, to: number): void {
    this.from = from;
    this.to = to;
    for (const chart of this.charts) this.setRangeOf(chart);
    this.moveTo(this.time);
    this.events.range(from, to);
  }

  destroy(): void {
    for (const chart of this.charts.splice(0)) chart.destroy();
  }

  private complete(options: ChartOptions): uPlot.Options {
    return {
      legend: { show: false },
      padding: [8, rightMargin, 0, 0],
      ...options,
      width: this.width,
      scales: { x: { time: false }, ...options.scales },
      cursor: {
        y: false,
        points: { size: 7 },
        drag: { x: true, y: false, dist: 5 },
        bind: { dblclick: () => () => (this.showRange(0, this.length), null) },
        ...options.cursor,
      },
      plugins: [...(options.plugins ?? []), { hooks: { draw: (chart) => this.drawPinned(chart) } }],
      hooks: {
        ...options.hooks,
        setCursor: [(chart) => this.cursorMoved(chart)],
        setScale: [(chart, key) => this.scaleSet(chart, key)],
      },
    };
  }

  private cursorMoved(chart: uPlot): void {
    const left = chart.cursor.left ?? -1;
    if (left >= 0) this.events.hover(chart.posToVal(left, "x"));
    else queueMicrotask(() => this.placeCursor(chart)); // the mouse has left, the moment stays
  }

  private placeCursor(chart: uPlot): void {
    const isShown = this.time >= this.from && this.time <= this.to;
    const left = isShown ? chart.valToPos(this.time, "x") : -10;
    chart.setCursor({ left, top: isShown ? 0 : -10 }, false);
  }

  private drawPinned(chart: uPlot): void {
    if (this.pinned === null || this.pinned < this.from || this.pinned > this.to) return;
    const context = chart.ctx;
    const x = Math.round(chart.valToPos(this.pinned, "x", true));
    context.save();
    context.strokeStyle = cssColor("accent");
    context.lineWidth = 2 * devicePixelRatio;
    context.setLineDash([4 * devicePixelRatio, 3 * devicePixelRatio]);
    context.beginPath();
    context.moveTo(x, chart.bbox.top);
    context.lineTo(x, chart.bbox.top + chart.bbox.height);
    context.stroke();
    context.restore();
  }

  private setRangeOf(chart: uPlot): void {
    this.isSettingRange = true;
    chart.batch(() => chart.setScale("x", { min: this.from, max: this.to }));
    this.isSettingRange = false;
  }

  private scaleSet(chart: uPlot, key: string): void {
    if (key !== "x" || this.isSettingRange || !this.charts.includes(chart)) return;
    const { min, max } = chart.scales.x;
    if (min == null || max == null || (min === this.from && max === this.to)) return;
    queueMicrotask(() => this.showRange(Math.max(0, min), Math.min(this.length, max)));
  }
}

const timeSteps = [
  0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 14400, 43200, 86400,
];

/** The axis of time; without labels it only has its grid. */
export function timeAxis(isLabelled: boolean): uPlot.Axis {
  return {
    stroke: cssColor("muted"),
    grid: { stroke: cssColor("grid"), width: 1 },
    ticks: { show: false },
    font: font(),
    size: isLabelled ? 24 : 6,
    gap: 4,
    space: 70,
    incrs: timeSteps,
    values: (_, splits) => {
      if (!isLabelled) return splits.map(() => "");
      const decimals = splits.length > 1 && (splits[1] - splits[0]) % 1 !== 0 ? 1 : 0;
      return splits.map((split) => clock(split, decimals));
    },
  };
}

/** The axis of values, with labels for these ones. */
export function valueAxis(labels: Map<number, string>, scale = "y"): uPlot.Axis {
  return {
    scale,
    stroke: cssColor("muted"),
    grid: { stroke: cssColor("grid"), width: 1 },
    ticks: { show: false },
    font: font(),
    size: axisWidth,
    gap: 6,
    splits: () => [...labels.keys()],
    values: (_, splits) => splits.map((split) => labels.get(split) ?? ""),
  };
}

/** The axis of values whose range is that of the data. */
export function measuringAxis(unit: string): uPlot.Axis {
  return {
    stroke: cssColor("muted"),
    grid: { stroke: cssColor("grid"), width: 1 },
    ticks: { show: false },
    font: font(),
    size: axisWidth,
    gap: 6,
    space: 26,
    values: (_, splits) => splits.map((split) => `${String(split).replace("-", "−")}${unit}`),
  };
}

type Gaps = NonNullable<uPlot.Series["gaps"]>;

/** Leaves a line out where two values are further apart than `longest` seconds. */
export function gapsBeyond(longest: number): Gaps {
  return (chart, series, from, to) => {
    const times = chart.data[0];
    const values = chart.data[series] as ArrayLike<number | null>;
    const gaps: [number, number][] = [];
    let before = -1;
    for (let i = Math.max(0, from); i <= to; ++i) {
      if (values[i] == null) continue;
      if (before >= 0 && times[i] - times[before] > longest)
        gaps.push([
          Math.round(chart.valToPos(times[before], "x", true)),
          Math.round(chart.valToPos(times[i], "x", true)),
        ]);
      before = i;
    }
    return gaps;
  };
}

/** uPlot takes null for "no value". */
export function withoutNaN(values: ArrayLike<number>): (number | null)[] {
  return Array.from(values, (value) => (Number.isNaN(value) ? null : value));
}
