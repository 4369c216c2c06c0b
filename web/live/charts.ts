// The charts of one person over the last minute.

import uPlot from "uplot";
import { attentionOptions, valenceOptions, withBand } from "../shared/bands";
import { ChartGroup, ChartOptions } from "../shared/chartgroup";
import { element } from "../shared/dom";
import { Lane, ribbonOptions, Segment, segmentsOf } from "../shared/ribbons";
import { pleasureLook, zoneLook } from "../shared/statelooks";
import { cssColor } from "../shared/theme";
import { Moment, Person, shownTime } from "./session";

/** An update says what holds until the next one, for so long at most [s]. */
const longestHold = 1;
const hidden = "";

export interface ChartActions {
  /** The cursor is at a time; null: it has left the charts. */
  hover(time: number | null): void;
  pick(time: number): void;
}

/** The last minute scrolls by itself: it is not zoomed. */
function scrolling(options: ChartOptions): ChartOptions {
  return {
    ...options,
    cursor: { ...options.cursor, y: false, drag: { x: false, y: false, setScale: false }, bind: { dblclick: () => () => null } },
  };
}

/** Joins moments of the same state, which is a name; nothing is drawn for a hidden one. */
function segments(
  times: Float64Array,
  moments: Moment[],
  nameAt: (moment: Moment) => string,
  lookOf: (name: string) => Pick<Segment, "look" | "texts">,
): Segment[] {
  const names = [...new Set(moments.map(nameAt))];
  return segmentsOf(
    times,
    longestHold,
    (i) => names.indexOf(nameAt(moments[i])),
    (state) => (names[state] === hidden ? null : lookOf(names[state])),
  );
}

export class Charts {
  private readonly group: ChartGroup;
  private readonly valence: uPlot;
  private readonly attention: uPlot;
  private readonly ribbons: uPlot;
  private readonly lanes: Lane[] = ["zone", "pleasure", "hidden"].map((name) => ({ name, segments: [], marks: [] }));

  /** The cursor is moved by the charts themselves as well: only a mouse that moves over one of them counts. */
  private isHovered = false;
  private isDrawing = false;

  constructor(target: HTMLElement, width: number, actions: ChartActions) {
    this.group = new ChartGroup(shownTime, width, {
      hover: (time) => {
        if (this.isHovered && !this.isDrawing) actions.hover(time);
      },
      pick: (time) => actions.pick(time),
      range() {},
    });
    const chart = (options: ChartOptions, data: uPlot.AlignedData) => {
      const place = element("div", { class: "chart" });
      target.append(place);
      const made = this.group.add(place, scrolling(options), data);
      made.over.addEventListener("mouseenter", () => (this.isHovered = true));
      made.over.addEventListener("mouseleave", () => {
        this.isHovered = false;
        actions.hover(null);
      });
      return made;
    };
    const heading = (title: string, hint: string) => target.append(element("h2", {}, title, " ", element("small", {}, hint)));
    heading("Valence", "how the person feels; the band is wider the less sure the estimate is");
    this.valence = chart(valenceOptions(longestHold), [[], [], [], []]);
    heading("Attention", "how much the person attends to the robot, from 0 to 1; the band is wider the less sure the estimate is");
    this.attention = chart(attentionOptions(longestHold), [[], [], [], []]);
    this.ribbons = chart(ribbonOptions(this.lanes, true), [[], []]);
    target.append(element("p", { class: "note" }, "Zone: where the person looks, left and right being their own."));
  }

  /** Shows the last minute up to now, the cursor at a time, and which one is pinned. */
  show(person: Person, now: number, cursor: number, pinned: number | null): void {
    this.isDrawing = true;
    this.draw(person, now);
    this.group.moveTo(cursor);
    this.group.markPinned(pinned);
    queueMicrotask(() => (this.isDrawing = false)); // after the charts have reported their cursors
  }

  private draw({ moments }: Person, now: number): void {
    const times = Float64Array.from(moments, ({ time }) => time);
    const of = (value: (moment: Moment) => number) => moments.map(value);
    this.group.from = now - shownTime;
    this.group.to = now;
    this.setData(
      this.valence,
      withBand(
        times,
        of(({ valence }) => valence),
        of(({ valenceConfidence }) => valenceConfidence),
        of(({ valenceKnown }) => Number(valenceKnown)),
        -1,
      ),
    );
    this.setData(
      this.attention,
      withBand(
        times,
        of(({ attention }) => attention),
        of(({ attentionConfidence }) => attentionConfidence),
        of(({ attentionKnown }) => Number(attentionKnown)),
        0,
      ),
    );
    const [zone, pleasure, notVisible] = this.lanes;
    zone.segments = segments(times, moments, ({ seen, zone: name }) => (seen ? name : hidden), zoneLook);
    pleasure.segments = segments(times, moments, ({ pleasure: name }) => name, pleasureLook);
    notVisible.segments = segments(
      times,
      moments,
      ({ seen }) => (seen ? hidden : "not visible"),
      (name) => ({ look: { color: cssColor("hidden"), hatch: "cross" }, texts: [name, "hidden", "✕"] }),
    );
    this.setData(this.ribbons, [times, of(() => 0)] as unknown as uPlot.AlignedData);
  }

  resize(width: number): void {
    this.group.resize(width);
  }

  destroy(): void {
    this.group.destroy();
  }

  private setData(chart: uPlot, data: uPlot.AlignedData): void {
    chart.setData(data, false);
    this.group.setRange(chart);
  }
}
