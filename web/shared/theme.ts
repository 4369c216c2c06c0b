// Colours come from the style sheet, so that light, dark and print are defined in one place. People who do not see all
// colours can distinguish them; where areas are side by side they have patterns as well.

export type Hatch = "solid" | "rising" | "falling" | "dots" | "cross" | "rows" | "columns" | "waves";

const hatches: Hatch[] = ["solid", "rising", "dots", "falling", "rows", "cross", "columns", "waves"];

export interface Look {
  color: string;
  hatch: Hatch;
}

export function cssColor(name: string): string {
  return getComputedStyle(document.documentElement).getPropertyValue(`--${name}`).trim();
}

export function font(size = 11): string {
  return `${size}px system-ui, "DejaVu Sans", sans-serif`;
}

/** Returns one of 64 looks; the first eight have colours of their own. */
export function numberedLook(number: number): Look {
  const count = hatches.length;
  const round = Math.floor(number / count);
  return { color: cssColor(`source-${number % count}`), hatch: hatches[(number + 3 * round) % count] };
}

function strokes(context: CanvasRenderingContext2D, hatch: Hatch, size: number): void {
  const line = (x0: number, y0: number, x1: number, y1: number) => {
    context.moveTo(x0, y0);
    context.lineTo(x1, y1);
  };
  context.beginPath();
  if (hatch === "rising" || hatch === "cross")
    for (const shift of [-size, 0, size]) line(shift, size, shift + size, 0);
  if (hatch === "falling" || hatch === "cross")
    for (const shift of [-size, 0, size]) line(shift, 0, shift + size, size);
  if (hatch === "rows" || hatch === "waves") line(0, size / 2, size, size / 2);
  if (hatch === "columns") line(size / 2, 0, size / 2, size);
  context.stroke();
  if (hatch !== "dots" && hatch !== "waves") return;
  context.beginPath();
  context.arc(size / 2, size / 2, size / 5, 0, 2 * Math.PI);
  context.fill();
}

interface Tile {
  size: number;
  draw(context: CanvasRenderingContext2D): void;
}

/** Returns the tile of a pattern, which repeats to fill an area. */
export function patternTile({ color, hatch }: Look): Tile {
  const size = Math.round(6 * devicePixelRatio);
  const draw = (context: CanvasRenderingContext2D) => {
    context.fillStyle = color;
    context.fillRect(0, 0, size, size);
    context.strokeStyle = context.fillStyle = cssColor("surface");
    context.lineWidth = 1.2 * devicePixelRatio;
    strokes(context, hatch, size);
  };
  return { size, draw };
}

const looksOfPatterns = new WeakMap<object, Look>();

/** Returns the look from which fillOf() made the pattern. */
export function lookOfPattern(pattern: CanvasPattern | CanvasGradient): Look | undefined {
  return looksOfPatterns.get(pattern);
}

/** Returns the fill of an area: a colour, with a pattern of the page's background on it. */
export function fillOf(look: Look): string | CanvasPattern {
  if (look.hatch === "solid") return look.color;
  const { size, draw } = patternTile(look);
  const tile = document.createElement("canvas");
  tile.width = tile.height = size;
  const context = tile.getContext("2d");
  if (!context) return look.color;
  draw(context);
  const pattern = context.createPattern(tile, "repeat");
  if (pattern) looksOfPatterns.set(pattern, look);
  return pattern ?? look.color;
}

interface Picture {
  width: number;
  height: number;
  draw(context: CanvasRenderingContext2D): void;
}

const pictures = new WeakMap<Element, Picture>();

/** Returns how the small picture is drawn, so that other code can draw it as well. */
export function pictureOf(node: Element): Picture | undefined {
  return pictures.get(node);
}

function picture(name: string, width: number, height: number, draw: (context: CanvasRenderingContext2D) => void): HTMLElement {
  const canvas = document.createElement("canvas");
  canvas.width = width * devicePixelRatio;
  canvas.height = height * devicePixelRatio;
  canvas.className = name;
  canvas.setAttribute("aria-hidden", "true");
  const context = canvas.getContext("2d");
  if (context) draw(context);
  pictures.set(canvas, { width, height, draw });
  return canvas;
}

/** Returns a small picture of the look, for legends. */
export function swatch(look: Look): HTMLElement {
  return picture("swatch", 14, 14, (context) => {
    context.fillStyle = fillOf(look);
    context.fillRect(0, 0, context.canvas.width, context.canvas.height);
  });
}

/** Returns a small picture of a line, for legends. */
export function lineSwatch(color: string, dash: number[] = []): HTMLElement {
  return picture("stroke", 26, 10, (context) => {
    context.scale(devicePixelRatio, devicePixelRatio);
    context.strokeStyle = color;
    context.lineWidth = 2;
    context.setLineDash(dash);
    context.beginPath();
    context.moveTo(0, 5);
    context.lineTo(26, 5);
    context.stroke();
  });
}

/** Returns the text, or as much of its beginning as fits the room, with an ellipsis. */
export function shortened(context: CanvasRenderingContext2D, text: string, room: number): string {
  if (context.measureText(text).width <= room) return text;
  const letters = [...text];
  const beginning = (count: number) => `${letters.slice(0, count).join("")}…`;
  let [fits, tooMany] = [1, letters.length]; // at least one letter is left
  while (tooMany - fits > 1) {
    const middle = Math.floor((fits + tooMany) / 2);
    if (context.measureText(beginning(middle)).width <= room) fits = middle;
    else tooMany = middle;
  }
  return beginning(fits);
}
