// A chart of groups: each person is a dot, above the mean of the group and its interval. Groups are rows.

import { plain, signed } from "../shared/text";
import { cssColor, font, shortened } from "../shared/theme";
import { Comparison, Group, groupName, Quantity } from "./data";

const rowHeight = 58;
const axisHeight = 24;
const top = 6;
const rightMargin = 14;
const radius = 3.2;
const spread = 13; // of dots with the same value, up and down
export const mostLinked = 80; // persons of a group whose dots are linked

const looks: Record<Quantity, { color: string; least: number }> = {
  valence: { color: "valence", least: -1 },
  attention: { color: "attention", least: 0 },
  engaged: { color: "source-2", least: 0 },
  seen: { color: "source-6", least: 0 },
};

/** A dot on the chart, in its pixels. */
export interface PlacedDot {
  x: number;
  y: number;
  participant: number;
  value: number;
  rows: number;
}

export function colorOf(quantity: Quantity): string {
  return looks[quantity].color;
}

/** Valence has a sign, shares have not. */
export function valueText(quantity: Quantity, value: number, decimals = 2): string {
  return looks[quantity].least < 0 ? signed(value, decimals) : plain(value, decimals);
}

/** Groups of one role are below each other, so that their persons can be linked. */
export function groupsInRows({ groups }: Comparison): Group[] {
  const roles = [...new Set(groups.map(({ role }) => role))];
  return roles.flatMap((role) => groups.filter((group) => group.role === role));
}

/** Of groups that are below each other: those of one role can have the same persons. */
function haveSameRole(above: Group, below: Group): boolean {
  return above.role === below.role;
}

function areLinked(above: Group, below: Group): boolean {
  return Math.max(above.persons.length, below.persons.length) <= mostLinked;
}

/** Returns whether a chart has no lines between groups because they have too many persons. */
export function leavesLinksOut(comparison: Comparison): boolean {
  const groups = groupsInRows(comparison);
  return groups.some((group, row) => row > 0 && haveSameRole(groups[row - 1], group) && !areLinked(groups[row - 1], group));
}

export function chartHeight(comparison: Comparison): number {
  return top + comparison.groups.length * rowHeight + axisHeight;
}

/** Returns the ends of the axis and the distance of its labels: round numbers around all values. */
export function axisOf({ groups, quantity }: Comparison): { from: number; to: number; step: number } {
  const values = groups.flatMap(({ persons, mean, interval }) => [
    ...persons.map(([, value]) => value),
    mean,
    ...(interval ?? []),
  ]);
  const lowest = values.reduce((one, other) => Math.min(one, other), Infinity);
  const highest = values.reduce((one, other) => Math.max(one, other), -Infinity);
  const span = Math.max(highest - lowest, 0.05);
  const step = [0.01, 0.02, 0.05, 0.1, 0.2, 0.5].find((one) => span / one <= 6) ?? 0.5;
  const from = Math.max(looks[quantity].least, Math.floor((lowest - 0.02 * span) / step) * step);
  const to = Math.min(1, Math.ceil((highest + 0.02 * span) / step) * step);
  return { from, to: Math.max(to, from + step), step };
}

/** Draws one chart; the drawing is in pixels of the page. */
class DotChart {
  readonly placed: PlacedDot[] = [];
  private readonly groups: Group[];
  private readonly axis: { from: number; to: number; step: number };
  private readonly left: number;

  constructor(
    private readonly context: CanvasRenderingContext2D,
    private readonly width: number,
    private readonly comparison: Comparison,
  ) {
    this.groups = groupsInRows(comparison);
    this.axis = axisOf(comparison);
    context.font = font(12);
    const widest = Math.max(...this.groups.map((group) => context.measureText(groupName(group, comparison)).width));
    this.left = Math.min(Math.max(widest + 12, 72), width * 0.36);
  }

  draw(): void {
    this.drawAxis();
    const rows = this.groups.map((group, row) => this.placeDots(group, row));
    rows.forEach((dots, row) => row > 0 && this.link(row, rows[row - 1], dots));
    this.groups.forEach((group, row) => this.drawGroup(group, row, rows[row]));
  }

  private x(value: number): number {
    const { from, to } = this.axis;
    return this.left + ((value - from) / (to - from)) * (this.width - rightMargin - this.left);
  }

  private y(row: number): number {
    return top + row * rowHeight;
  }

  private drawAxis(): void {
    const { context, axis } = this;
    const bottom = this.y(this.groups.length);
    const count = Math.round((axis.to - axis.from) / axis.step);
    context.font = font(11);
    context.textAlign = "center";
    context.lineWidth = 1;
    for (let i = 0; i <= count; ++i) {
      const value = axis.from + i * axis.step;
      context.strokeStyle = cssColor(Math.abs(value) < 1e-9 ? "muted" : "grid");
      this.line(this.x(value), top, this.x(value), bottom + 3);
      context.fillStyle = cssColor("muted");
      const decimals = axis.step < 0.1 ? 2 : 1;
      context.fillText(valueText(this.comparison.quantity, value, decimals), this.x(value), bottom + 17);
    }
    context.strokeStyle = cssColor("line");
    for (let row = 1; row < this.groups.length; ++row) this.line(0, this.y(row), this.width - rightMargin, this.y(row));
  }

  /** Dots that would cover each other are above and below each other; where many are, they come closer. */
  private placeDots(group: Group, row: number): PlacedDot[] {
    const inPlace = new Map<number, number>();
    const middle = this.y(row) + spread + radius + 5;
    const dots = group.persons.map(([participant, value, rows]) => {
      const x = this.x(value);
      const place = Math.round(x / (2 * radius));
      const before = inPlace.get(place) ?? 0;
      inPlace.set(place, before + 1);
      return { x, y: Math.ceil(before / 2) * (before % 2 ? -1 : 1), participant, value, rows };
    });
    const most = [...inPlace.values()].reduce((one, other) => Math.max(one, other), 1);
    const distance = Math.min(2 * radius, (2 * spread) / most);
    for (const dot of dots) dot.y = middle + dot.y * distance;
    this.placed.push(...dots);
    return dots;
  }

  /** Links the dots of one person in two rows. */
  private link(row: number, above: PlacedDot[], below: PlacedDot[]): void {
    const { context, groups } = this;
    if (!haveSameRole(groups[row - 1], groups[row]) || !areLinked(groups[row - 1], groups[row])) return;
    const places = new Map(above.map((dot) => [dot.participant, dot]));
    context.strokeStyle = cssColor("muted");
    context.globalAlpha = 0.35;
    context.lineWidth = 0.8;
    for (const { participant, x, y } of below) {
      const other = places.get(participant);
      if (other) this.line(other.x, other.y, x, y);
    }
    context.globalAlpha = 1;
  }

  private drawGroup(group: Group, row: number, dots: PlacedDot[]): void {
    const { context } = this;
    context.fillStyle = cssColor(colorOf(this.comparison.quantity));
    context.globalAlpha = dots.length > 500 ? 0.25 : 0.6;
    for (const { x, y } of dots) {
      context.beginPath();
      context.arc(x, y, radius, 0, 2 * Math.PI);
      context.fill();
    }
    context.globalAlpha = 1;
    const y = this.y(row) + rowHeight - 11;
    context.strokeStyle = cssColor("text");
    if (group.interval) {
      context.lineWidth = 2;
      this.line(this.x(group.interval[0]), y, this.x(group.interval[1]), y);
    }
    context.lineWidth = 3;
    this.line(this.x(group.mean), y - 6, this.x(group.mean), y + 6);
    this.drawName(group, row);
  }

  private drawName(group: Group, row: number): void {
    const { context } = this;
    context.textAlign = "left";
    context.font = font(12);
    context.fillStyle = cssColor("text");
    context.fillText(shortened(context, groupName(group, this.comparison), this.left - 8), 0, this.y(row) + 22);
    context.font = font(11);
    context.fillStyle = cssColor("muted");
    context.fillText(`n = ${group.count}`, 0, this.y(row) + 38);
  }

  private line(x0: number, y0: number, x1: number, y1: number): void {
    this.context.beginPath();
    this.context.moveTo(x0, y0);
    this.context.lineTo(x1, y1);
    this.context.stroke();
  }
}

/** Draws the groups, and returns the places of the dots. The context has the size of the chart in device pixels. */
export function drawDots(context: CanvasRenderingContext2D, width: number, comparison: Comparison): PlacedDot[] {
  context.save();
  context.scale(devicePixelRatio, devicePixelRatio);
  const chart = new DotChart(context, width, comparison);
  chart.draw();
  context.restore();
  return chart.placed;
}
