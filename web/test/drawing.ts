// A context of a canvas that writes down what is drawn, so that a test can read it.

const settable = ["fillStyle", "strokeStyle", "lineWidth", "font", "textAlign", "textBaseline", "globalAlpha", "lineJoin", "lineCap", "lineDashOffset"];
const commands = ["save", "restore", "translate", "scale", "rotate", "setTransform", "beginPath", "closePath", "moveTo", "lineTo", "rect", "arc"];
const drawing = ["clip", "stroke", "fill", "fillRect", "strokeRect", "clearRect", "fillText", "strokeText", "drawImage", "setLineDash"];

function word(value: unknown): string {
  if (typeof value === "number") return String(Math.round(value * 100) / 100);
  if (Array.isArray(value)) return `[${value.map(word).join(" ")}]`;
  if (typeof value === "string") return value;
  if (value instanceof Pattern) return `pattern(${value.repetition})`;
  if (value instanceof HTMLElement) return value.tagName.toLowerCase();
  return typeof value;
}

/** A pattern of a tile. */
class Pattern {
  constructor(
    readonly tile: HTMLCanvasElement,
    readonly repetition: string,
  ) {}
}

export class RecordingContext {
  /** Everything in its order: "fillRect 1 2 3 4", "fillStyle = red". */
  readonly log: string[] = [];
  readonly canvas: HTMLCanvasElement;
  private readonly values: Record<string, unknown> = { font: "10px sans-serif" };

  constructor(canvas: HTMLCanvasElement) {
    this.canvas = canvas;
    for (const name of [...commands, ...drawing])
      Object.defineProperty(this, name, { value: (...values: unknown[]) => void this.log.push([name, ...values.map(word)].join(" ")) });
    for (const name of settable)
      Object.defineProperty(this, name, {
        get: () => this.values[name],
        set: (value: unknown) => {
          this.values[name] = value;
          this.log.push(`${name} = ${word(value)}`);
        },
      });
  }

  /** A letter is half as wide as the font is high. */
  measureText(text: string): { width: number } {
    const size = Number(/([\d.]+)px/.exec(String(this.values.font))?.[1] ?? 10);
    return { width: (size / 2) * [...text].length };
  }

  createPattern(tile: HTMLCanvasElement, repetition: string): Pattern {
    return new Pattern(tile, repetition);
  }
}

/** The context, for a function that draws. */
export function newContext(width = 600, height = 300): { context: CanvasRenderingContext2D; log: string[] } {
  const canvas = document.createElement("canvas");
  canvas.width = width;
  canvas.height = height;
  const context = new RecordingContext(canvas);
  return { context: context as unknown as CanvasRenderingContext2D, log: context.log };
}

/** Returns everything that was drawn on a canvas so far. */
export function logOf(canvas: HTMLCanvasElement | null | undefined): string[] {
  return (canvas?.getContext("2d") as unknown as RecordingContext).log;
}
