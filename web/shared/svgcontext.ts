// A context that writes SVG instead of pixels. It has those parts of a canvas that uPlot and our own drawings use.
//
// The packages for this have no paths as objects of their own (Path2D), with which uPlot draws its lines.

import { lookOfPattern, patternTile } from "./theme";

type Style = string | CanvasPattern | CanvasGradient;

const text = (value: string) =>
  value.replace(/[&<>"]/g, (character) => ({ "&": "&amp;", "<": "&lt;", ">": "&gt;", '"': "&quot;" })[character] ?? "");
const number = (value: number) => String(Math.round(value * 100) / 100);

let lastId = 0;

/** Replaces Path2D: its commands can be read. */
export class RecordedPath {
  data = "";

  constructor(other?: RecordedPath) {
    if (other) this.data = other.data;
  }

  addPath(other: RecordedPath): void {
    this.data += other.data;
  }

  moveTo(x: number, y: number): void {
    this.data += `M${number(x)} ${number(y)}`;
  }

  lineTo(x: number, y: number): void {
    this.data += `${this.data ? "L" : "M"}${number(x)} ${number(y)}`;
  }

  bezierCurveTo(x1: number, y1: number, x2: number, y2: number, x: number, y: number): void {
    this.data += `C${[x1, y1, x2, y2, x, y].map(number).join(" ")}`;
  }

  rect(x: number, y: number, width: number, height: number): void {
    this.data += `M${number(x)} ${number(y)}h${number(width)}v${number(height)}h${number(-width)}z`;
  }

  closePath(): void {
    this.data += "z";
  }

  /** Draws whole circles only. */
  arc(x: number, y: number, radius: number): void {
    const r = number(radius);
    this.data += `M${number(x - radius)} ${number(y)}a${r} ${r} 0 1 0 ${number(2 * radius)} 0a${r} ${r} 0 1 0 ${number(-2 * radius)} 0z`;
  }
}

interface State {
  fillStyle: Style;
  strokeStyle: Style;
  lineWidth: number;
  lineJoin: string;
  lineCap: string;
  dash: number[];
  globalAlpha: number;
  font: string;
  textAlign: string;
  textBaseline: string;
  shift: [number, number];
  scaling: [number, number];
  clipId: string;
}

const measuring = document.createElement("canvas").getContext("2d");

export class SvgContext {
  readonly canvas: { width: number; height: number };
  fillStyle: Style = "#000000";
  strokeStyle: Style = "#000000";
  lineWidth = 1;
  lineJoin = "miter";
  lineCap = "butt";
  globalAlpha = 1;
  font = "10px sans-serif";
  textAlign = "start";
  textBaseline = "alphabetic";
  private dash: number[] = [];
  private shift: [number, number] = [0, 0];
  private scaling: [number, number] = [1, 1];
  private clipId = "";
  private path = new RecordedPath();
  private parts: string[] = [];
  private definitions: string[] = [];
  private readonly patterns = new Map<string, string>();
  private readonly states: State[] = [];

  constructor(width: number, height: number) {
    this.canvas = { width, height };
  }

  /** Returns the drawing, as content of an SVG element. */
  content(): string {
    return `<defs>${this.definitions.join("")}</defs>${this.parts.join("")}`;
  }

  save(): void {
    const { fillStyle, strokeStyle, lineWidth, lineJoin, lineCap, globalAlpha, font, textAlign, textBaseline } = this;
    const { dash, clipId } = this;
    const [shift, scaling] = [[...this.shift] as [number, number], [...this.scaling] as [number, number]];
    this.states.push({
      ...{ fillStyle, strokeStyle, lineWidth, lineJoin, lineCap, globalAlpha, font, textAlign, textBaseline },
      ...{ dash, clipId, shift, scaling },
    });
  }

  restore(): void {
    const state = this.states.pop();
    if (state) Object.assign(this, state);
  }

  translate(x: number, y: number): void {
    this.shift = [this.shift[0] + x * this.scaling[0], this.shift[1] + y * this.scaling[1]];
  }

  scale(x: number, y: number): void {
    this.scaling = [this.scaling[0] * x, this.scaling[1] * y];
  }

  /** Rotated texts are not drawn: no chart of ours has labels along its side. */
  rotate(): void {}

  setLineDash(dash: number[]): void {
    this.dash = dash ?? [];
  }

  beginPath(): void {
    this.path = new RecordedPath();
  }

  moveTo(x: number, y: number): void {
    this.path.moveTo(x, y);
  }

  lineTo(x: number, y: number): void {
    this.path.lineTo(x, y);
  }

  rect(x: number, y: number, width: number, height: number): void {
    this.path.rect(x, y, width, height);
  }

  arc(x: number, y: number, radius: number): void {
    this.path.arc(x, y, radius);
  }

  clip(path: RecordedPath = this.path): void {
    const id = `c${++lastId}`;
    const within = this.clipId ? ` clip-path="url(#${this.clipId})"` : "";
    this.definitions.push(`<clipPath id="${id}"${within}><path d="${path.data}"${this.transform()}/></clipPath>`);
    this.clipId = id;
  }

  stroke(path: RecordedPath = this.path): void {
    const dash = this.dash.length > 0 ? ` stroke-dasharray="${this.dash.map(number).join(" ")}"` : "";
    const line = ` stroke-width="${number(this.lineWidth)}" stroke-linejoin="${this.lineJoin}" stroke-linecap="${this.lineCap}"`;
    const paint = this.paint("stroke", this.strokeStyle);
    if (paint && path.data) this.add(`<path d="${path.data}" fill="none"${paint}${line}${dash}${this.transform()}/>`);
  }

  fill(path: RecordedPath = this.path): void {
    const paint = this.paint("fill", this.fillStyle);
    if (paint && path.data) this.add(`<path d="${path.data}"${paint}${this.transform()}/>`);
  }

  fillRect(x: number, y: number, width: number, height: number): void {
    const path = new RecordedPath();
    path.rect(x, y, width, height);
    this.fill(path);
  }

  /** Clears all: charts clear themselves as a whole before they are drawn again. */
  clearRect(): void {
    this.parts = [];
    this.definitions = [];
    this.patterns.clear();
  }

  measureText(shown: string): { width: number } {
    if (!measuring) return { width: 0 };
    measuring.font = this.font;
    return measuring.measureText(shown);
  }

  fillText(shown: string, x: number, y: number): void {
    const [, size, family] = /([\d.]+)px (.*)$/.exec(this.font) ?? ["", "10", "sans-serif"];
    const anchors: Record<string, string> = { center: "middle", right: "end", end: "end" };
    const anchor = anchors[this.textAlign] ?? "start";
    const lowered = { middle: 0.35, top: 0.8, bottom: -0.2 }[this.textBaseline] ?? 0;
    const place = `x="${number(x)}" y="${number(y + lowered * Number(size))}"`;
    const font = `font-family="${text(family)}" font-size="${size}"${/bold|600/.test(this.font) ? ' font-weight="600"' : ""}`;
    const paint = this.paint("fill", this.fillStyle);
    if (paint && shown)
      this.add(`<text ${place} ${font} text-anchor="${anchor}"${paint}${this.transform()}>${text(shown)}</text>`);
  }

  private add(part: string): void {
    this.parts.push(this.clipId ? `<g clip-path="url(#${this.clipId})">${part}</g>` : part);
  }

  private transform(): string {
    const [[x, y], [width, height]] = [this.shift, this.scaling];
    if (width !== 1 || height !== 1) return ` transform="matrix(${[width, 0, 0, height, x, y].map(number).join(" ")})"`;
    return x !== 0 || y !== 0 ? ` transform="translate(${number(x)} ${number(y)})"` : "";
  }

  /** Returns the attributes of a colour or pattern; empty if it is invisible. */
  private paint(attribute: "fill" | "stroke", style: Style): string {
    const opaque = (color: string, opacity: number) =>
      ` ${attribute}="${color}"${opacity < 1 ? ` ${attribute}-opacity="${number(opacity)}"` : ""}`;
    if (typeof style !== "string") {
      const id = this.pattern(style);
      return id ? opaque(`url(#${id})`, this.globalAlpha) : "";
    }
    if (style === "transparent" || style === "") return "";
    const withAlpha = /^#([0-9a-f]{6})([0-9a-f]{2})$/i.exec(style);
    if (withAlpha) return opaque(`#${withAlpha[1]}`, (parseInt(withAlpha[2], 16) / 255) * this.globalAlpha);
    return opaque(text(style), this.globalAlpha);
  }

  private pattern(style: CanvasPattern | CanvasGradient): string {
    const look = lookOfPattern(style);
    if (!look) return "";
    const key = `${look.color} ${look.hatch}`;
    const known = this.patterns.get(key);
    if (known) return known;
    const id = `p${++lastId}`;
    this.patterns.set(key, id);
    const { size, draw } = patternTile(look);
    const tile = new SvgContext(size, size);
    draw(tile as unknown as CanvasRenderingContext2D);
    const place = `width="${size}" height="${size}" patternUnits="userSpaceOnUse"`;
    this.definitions.push(`<pattern id="${id}" ${place}>${tile.content()}</pattern>`);
    return id;
  }
}

/** Lets a function that draws on a canvas draw here; `make` has to draw before it returns. */
export function drawnAsSvg(context: SvgContext, make: () => void): void {
  const { Path2D: path } = globalThis;
  try {
    globalThis.Path2D = RecordedPath as unknown as typeof Path2D;
    withContext(context, make);
  } finally {
    globalThis.Path2D = path;
  }
}

/** The first canvas that asks for its context gets this one: a chart asks when it is made. */
function withContext(context: SvgContext, make: () => void): void {
  const prototype = HTMLCanvasElement.prototype;
  const { getContext } = prototype;
  try {
    prototype.getContext = (() => {
      prototype.getContext = getContext;
      return context;
    }) as unknown as typeof getContext;
    make();
  } finally {
    prototype.getContext = getContext;
  }
}
