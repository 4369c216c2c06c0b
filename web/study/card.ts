// Cards with a chart that is drawn on a canvas, and for paper as SVG.

import { element } from "../shared/dom";
import { Drawings, figureOf } from "../shared/figure";
import { addSaveButtons, fileName, FileKind, savePng, saveText } from "../shared/save";
import { SvgContext } from "../shared/svgcontext";

export const paperWidth = 670; // of a page of A4 without its margins and those of a card [px]

/** A part of a card that is drawn. */
export interface Drawn {
  height(width: number): number;
  draw(context: CanvasRenderingContext2D, width: number): void;
}

/** Everything that can be saved of a card. */
export interface Saved {
  /** Name of the figure, for files and tests. */
  figure: string;
  title: string;
  caption: string[];
  /** Makes the legend, if the card has one, in the colours of the moment. */
  legend?(): HTMLElement;
  csv(): string;
}

/** The drawings of a card, for paper. */
class PaperDrawings implements Drawings {
  constructor(private readonly charts: Map<HTMLElement, Drawn>) {}

  drawing(target: HTMLElement): SvgContext | undefined {
    const drawn = this.charts.get(target);
    if (!drawn) return undefined;
    const context = new SvgContext(paperWidth * devicePixelRatio, drawn.height(paperWidth) * devicePixelRatio);
    drawn.draw(context as unknown as CanvasRenderingContext2D, paperWidth);
    return context;
  }
}

/** Runs `use` while all colours are those of paper. */
function onPaper<Result>(use: () => Result): Result {
  const root = document.documentElement;
  const wasPaper = root.hasAttribute("data-print");
  root.toggleAttribute("data-print", true);
  try {
    return use();
  } finally {
    root.toggleAttribute("data-print", wasPaper);
  }
}

async function save(card: HTMLElement, saved: Saved, charts: Map<HTMLElement, Drawn>, study: string, kind: FileKind): Promise<void> {
  const name = `${fileName(study, saved.figure)}.${kind.toLowerCase()}`;
  if (kind === "CSV") {
    saveText(saved.csv(), "text/csv", name);
    return;
  }
  const svg = onPaper(() => {
    const legend = card.querySelector(".legend");
    const onPaperToo = saved.legend?.();
    if (onPaperToo) legend?.replaceWith(onPaperToo);
    const figure = figureOf(card, new PaperDrawings(charts), paperWidth, saved.caption);
    if (legend) onPaperToo?.replaceWith(legend);
    return figure;
  });
  if (kind === "SVG") saveText(svg, "image/svg+xml", name);
  else await savePng(svg, name);
}

/** Returns a card whose content can be saved; `charts` are those elements in it that are drawn. */
export function figureCard(study: string, saved: Saved, charts: Map<HTMLElement, Drawn>, ...children: (Node | null)[]): HTMLElement {
  const card = element("div", { class: "card", "data-figure": saved.figure }, ...children);
  addSaveButtons(card, saved.title, (kind) => save(card, saved, charts, study, kind));
  return card;
}

/** Draws on a canvas of that width, which replaces the content of the chart. */
export function drawOnPage(chart: HTMLElement, drawn: Drawn, width: number, label: string): HTMLCanvasElement {
  const canvas = element("canvas", { role: "img", "aria-label": label });
  const height = drawn.height(width);
  canvas.width = Math.round(width * devicePixelRatio);
  canvas.height = Math.round(height * devicePixelRatio);
  canvas.style.width = `${width}px`;
  canvas.style.height = `${height}px`;
  const context = canvas.getContext("2d");
  if (context) drawn.draw(context, width);
  chart.replaceChildren(canvas);
  return canvas;
}
