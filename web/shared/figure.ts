// A card of the page as a figure: one SVG, with a caption.

import { SvgContext } from "./svgcontext";
import { cssColor, font, pictureOf } from "./theme";

const margin = 12;
const captionSize = 11;

/** The charts of a page, drawn for paper. */
export interface Drawings {
  /** Returns the chart in that element: SVG of the element's size. */
  drawing(target: HTMLElement): SvgContext | undefined;
}

/** Draws one below the other, in pixels of the page. */
class Figure {
  private readonly parts: string[] = [];
  private y = margin;

  constructor(
    private readonly drawings: Drawings,
    private readonly width: number,
  ) {}

  addAll(card: Element): void {
    for (const node of card.children) this.addNode(node);
  }

  /** Adds a text, broken where it is too wide. */
  addText(shown: string, size: number, color: string, isBold = false): void {
    const room = this.width - 2 * margin;
    let line = "";
    const put = () => {
      this.put(margin, size + 5, (context) => this.write(context, line, 0, size, color, isBold));
      this.y += size + 5;
    };
    for (const word of shown.split(" ")) {
      const longer = line ? `${line} ${word}` : word;
      if (line && this.widthOf(longer, size, isBold) > room) {
        put();
        line = word;
      } else line = longer;
    }
    if (line) put();
  }

  svg(): string {
    const height = Math.ceil(this.y + margin);
    return (
      `<svg xmlns="http://www.w3.org/2000/svg" width="${this.width}" height="${height}" ` +
      `viewBox="0 0 ${this.width} ${height}"><rect width="100%" height="100%" fill="${cssColor("surface")}"/>` +
      `${this.parts.join("")}</svg>\n`
    );
  }

  private addNode(node: Element): void {
    if (node.matches("h2")) this.addHeading(node);
    else if (node.matches("h3")) this.addText(node.textContent ?? "", 13, cssColor("text"), true);
    else if (node.matches(".legend")) this.addLegend(node);
    else if (node.matches(".chart")) this.addChart(node as HTMLElement);
    else if (node.matches(".block")) this.addAll(node);
  }

  private addHeading(node: Element): void {
    const hint = node.querySelector("small")?.textContent ?? "";
    const title = [...node.childNodes].find(({ nodeType }) => nodeType === Node.TEXT_NODE)?.textContent ?? "";
    this.y += 4;
    this.addText(title.trim(), 15, cssColor("text"), true);
    if (hint) this.addText(hint, 12, cssColor("muted"));
  }

  private addLegend(node: Element): void {
    let x = margin;
    for (const item of node.querySelectorAll("li")) {
      const shown = item.textContent ?? "";
      const picture = item.firstElementChild ? pictureOf(item.firstElementChild) : undefined;
      const wide = (picture?.width ?? 0) + 5 + this.widthOf(shown, 12, false);
      if (x > margin && x + wide > this.width - margin) {
        x = margin;
        this.y += 19;
      }
      if (picture) {
        this.y += (14 - picture.height) / 2;
        this.put(x, picture.height, (context) => picture.draw(context), picture.width);
        this.y -= (14 - picture.height) / 2;
      }
      this.put(x + (picture?.width ?? 0) + 5, 14, (context) =>
        this.write(context, shown, -3, 12, cssColor("muted"), false),
      );
      x += wide + 14;
    }
    this.y += 21;
  }

  private addChart(node: HTMLElement): void {
    const drawing = this.drawings.drawing(node);
    if (!drawing) return;
    this.parts.push(placed(margin, this.y, drawing));
    const missing = node.querySelector(".nodata")?.textContent;
    const middle = { x: this.width / 2, y: this.y + drawing.canvas.height / devicePixelRatio / 2 };
    if (missing) this.addPlaced(missing, middle.x - this.widthOf(missing, 12, false) / 2, middle.y);
    this.y += drawing.canvas.height / devicePixelRatio;
  }

  private addPlaced(shown: string, x: number, y: number): void {
    const before = this.y;
    this.y = y - 12;
    this.put(x, 16, (context) => this.write(context, shown, 0, 12, cssColor("muted"), false));
    this.y = before;
  }

  private put(x: number, height: number, draw: (context: CanvasRenderingContext2D) => void, width = this.width): void {
    const context = new SvgContext(width * devicePixelRatio, height * devicePixelRatio);
    draw(context as unknown as CanvasRenderingContext2D);
    this.parts.push(placed(x, this.y, context));
  }

  private write(context: CanvasRenderingContext2D, shown: string, y: number, size: number, color: string, isBold: boolean): void {
    context.scale(devicePixelRatio, devicePixelRatio);
    context.font = (isBold ? "bold " : "") + font(size);
    context.fillStyle = color;
    context.fillText(shown, 0, y + size);
  }

  private widthOf(shown: string, size: number, isBold: boolean): number {
    const context = new SvgContext(0, 0);
    context.font = (isBold ? "bold " : "") + font(size);
    return context.measureText(shown).width;
  }
}

function placed(x: number, y: number, drawing: SvgContext): string {
  const scale = 1 / devicePixelRatio;
  return `<g transform="matrix(${scale} 0 0 ${scale} ${x} ${y.toFixed(2)})">${drawing.content()}</g>`;
}

/** Returns the card with these drawings of its charts, as SVG of that width, with the caption below. */
export function figureOf(card: Element, drawings: Drawings, chartWidth: number, caption: string[]): string {
  const figure = new Figure(drawings, chartWidth + 2 * margin);
  figure.addAll(card);
  for (const line of caption) figure.addText(line, captionSize, cssColor("muted"));
  return figure.svg();
}
