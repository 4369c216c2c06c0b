// The labels of coders, beside the estimate: ribbons of states and labels, and lines of values.

import uPlot from "uplot";
import { LabelLine, LabelRibbon, nearest, Person } from "./data";
import { element } from "../shared/dom";
import { Lane, Segment } from "../shared/ribbons";
import { plain, signed, zoneWord } from "../shared/text";
import { cssColor, lineSwatch } from "../shared/theme";
import { pleasureLook, zoneLook } from "../shared/statelooks";

const lineLooks: { color: string; dash: number[] }[] = [
  { color: "source-3", dash: [6, 3] },
  { color: "source-4", dash: [2, 3] },
  { color: "source-2", dash: [9, 3, 2, 3] },
  { color: "source-7", dash: [4, 4] },
];

/** Returns how a coder's state is drawn: like the estimate's, if it is one of those. */
function lookOf(quantity: string, text: string): Pick<Segment, "look" | "texts"> {
  if (text === "contradiction") return { look: { color: cssColor("hidden"), hatch: "cross" }, texts: [text, "✕"] };
  if (quantity === "pleasure") return pleasureLook(text);
  if (quantity === "zone") return zoneLook(text);
  if (quantity === "engagement") {
    const isEngaged = text === "engaged";
    return {
      look: { color: cssColor(isEngaged ? "robot" : "elsewhere"), hatch: "solid" },
      texts: [text.replace("-", " "), isEngaged ? "●" : "○"],
    };
  }
  return { look: { color: cssColor("scope"), hatch: "solid" }, texts: [text] };
}

/** The name of the ribbon: "pleasure", the tier, or "labels". */
const subject = ({ quantity, tier }: LabelRibbon) => quantity || tier || "labels";

/** Labels that overlap, or have no duration, are in lanes below each other. */
function lanesOf(ribbon: LabelRibbon, length: number): Lane[] {
  const shortest = length / 500;
  const lanes: Lane[] = [];
  for (let i = 0; i < ribbon.texts.length; ++i) {
    const to = Math.max(ribbon.to[i], ribbon.from[i] + shortest);
    const segment = { from: ribbon.from[i], to, ...lookOf(ribbon.quantity, ribbon.texts[i]) };
    const free = lanes.find(({ segments }) => segments[segments.length - 1].to <= segment.from + 1e-9);
    if (free) free.segments.push(segment);
    else if (lanes.length < 3) lanes.push({ name: lanes.length === 0 ? ribbon.coder : "", segments: [segment], marks: [] });
  }
  return lanes;
}

export function coderLanes({ labels }: Person, length: number): Lane[] {
  return labels.ribbons.flatMap((ribbon) => lanesOf(ribbon, length));
}

/** Returns a sentence that names the labels of each coder; null if there are no labels. */
export function codersNote({ labels }: Person): string | null {
  const ofCoder = new Map<string, string[]>();
  for (const ribbon of labels.ribbons) ofCoder.set(ribbon.coder, [...(ofCoder.get(ribbon.coder) ?? []), subject(ribbon)]);
  if (ofCoder.size === 0) return null;
  const parts = [...ofCoder].map(([coder, subjects]) => `${coder}: ${[...new Set(subjects)].join(", ")}`);
  return `Labels of coders, in the order of their ribbons. ${parts.join("; ")}.`;
}

const linesOf = ({ labels }: Person, quantity: string) => labels.lines.filter((line) => line.quantity === quantity);

/** Returns a legend of the coders' lines for this quantity; null if there are no lines. */
export function coderLegend(person: Person, quantity: string): HTMLElement | null {
  const lines = linesOf(person, quantity);
  if (lines.length === 0) return null;
  const items = lines.map(({ coder }, number) => {
    const { color, dash } = lineLooks[number % lineLooks.length];
    return element("li", {}, lineSwatch(cssColor(color), dash), `coder ${coder}`);
  });
  return element("ul", { class: "legend" }, element("li", {}, lineSwatch(cssColor(quantity)), "estimate"), ...items);
}

function drawLine(chart: uPlot, { time, value }: LabelLine, number: number): void {
  const { color, dash } = lineLooks[number % lineLooks.length];
  const { ctx: context, bbox } = chart;
  context.save();
  context.beginPath();
  context.rect(bbox.left, bbox.top, bbox.width, bbox.height);
  context.clip();
  context.strokeStyle = cssColor(color);
  context.lineWidth = 2 * devicePixelRatio;
  context.setLineDash(dash.map((length) => length * devicePixelRatio));
  context.beginPath();
  let isDown = false;
  for (let i = 0; i < time.length; ++i) {
    if (Number.isNaN(value[i])) {
      isDown = false;
      continue;
    }
    const [x, y] = [chart.valToPos(time[i], "x", true), chart.valToPos(value[i], "y", true)];
    if (isDown) context.lineTo(x, y);
    else context.moveTo(x, y);
    isDown = true;
  }
  context.stroke();
  context.restore();
}

/** Draws the coders' lines for this quantity over the chart of the estimate. */
export function coderLines(person: Person, quantity: string): uPlot.Plugin[] {
  const lines = linesOf(person, quantity);
  if (lines.length === 0) return [];
  return [{ hooks: { draw: (chart) => lines.forEach((line, number) => drawLine(chart, line, number)) } }];
}

/** Returns the value of the line at that time; NaN without a value. */
export function valueAt({ time, value }: LabelLine, at: number): number {
  if (time.length === 0 || at < time[0] || at > time[time.length - 1]) return NaN;
  let next = nearest(time, at);
  while (time[next] < at) ++next;
  if (time[next] === at) return value[next];
  const before = next - 1;
  return value[before] + ((at - time[before]) / (time[next] - time[before])) * (value[next] - value[before]);
}

/** Returns the labels of a ribbon at that time. A label without a duration is one of the moment that is nearest to it. */
export function labelsAt({ from, to, texts }: LabelRibbon, person: Person, time: number): string[] {
  const moment = nearest(person.time, time);
  return texts.filter((_, i) => (from[i] === to[i] ? nearest(person.time, from[i]) === moment : from[i] <= time && time < to[i]));
}

/** Returns the coders' labels at that time, by "coder, what". */
export function codersAt(person: Person, time: number): { name: string; text: string }[] {
  const { labels } = person;
  const entries: { name: string; text: string }[] = [];
  for (const ribbon of labels.ribbons) {
    const words = labelsAt(ribbon, person, time).map((text) => (ribbon.quantity === "zone" ? zoneWord(text) : text));
    if (words.length > 0) entries.push({ name: `${ribbon.coder}, ${subject(ribbon)}`, text: words.join(", ") });
  }
  for (const line of labels.lines) {
    const value = valueAt(line, time);
    const text = line.quantity === "valence" ? signed(value) : plain(value);
    if (!Number.isNaN(value)) entries.push({ name: `${line.coder}, ${line.quantity}`, text });
  }
  return entries;
}
