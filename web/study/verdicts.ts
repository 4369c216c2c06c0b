// Verdicts of scopes, and their agreement with labels that are named after a verdict.

import { csvText } from "../shared/csv";
import { element, table } from "../shared/dom";
import { pleasureLook } from "../shared/statelooks";
import { counted, percent, plain } from "../shared/text";
import { cssColor, fillOf, font, shortened, swatch } from "../shared/theme";
import { Drawn, drawOnPage, figureCard } from "./card";
import { Agreement, captionOf, Interval, Study, titleOf } from "./data";

const words = ["positive", "neutral", "negative", "unknown"];
const rowHeight = 26;

const explanation =
  "A verdict is given on each person in each scope; labels of coders are scopes. Bars are shares of those verdicts in " +
  "complete sessions.";

function drawBars(context: CanvasRenderingContext2D, width: number, { labels }: Study): void {
  const p = devicePixelRatio;
  const left = Math.min(150, width * 0.36) * p;
  const room = width * p - left - 44 * p;
  labels.verdicts.forEach(({ scope, counts }, row) => {
    const all = words.reduce((sum, word) => sum + (counts[word] ?? 0), 0);
    const y = row * rowHeight * p;
    context.font = font(12 * p);
    context.textAlign = "left";
    context.fillStyle = cssColor("text");
    context.fillText(shortened(context, scope, left - 8 * p), 0, y + 16 * p);
    let x = left;
    for (const word of words) {
      const share = all > 0 ? (counts[word] ?? 0) / all : 0;
      context.fillStyle = fillOf(pleasureLook(word).look);
      context.fillRect(x, y + 4 * p, share * room, (rowHeight - 9) * p);
      x += share * room;
    }
    context.fillStyle = cssColor("muted");
    context.fillText(String(all), left + room + 6 * p, y + 16 * p);
  });
}

function csvOf({ labels }: Study, caption: string[]): string {
  return csvText(
    { header: ["scope", ...words], rows: labels.verdicts.map(({ scope, counts }) => [scope, ...words.map((word) => counts[word] ?? 0)]) },
    caption,
  );
}

function legend(): HTMLElement {
  const items = words.map((word) => element("li", {}, swatch(pleasureLook(word).look), word));
  return element("ul", { class: "legend" }, ...items);
}

export function verdictsCard(study: Study, width: (card: HTMLElement) => number): { card: HTMLElement; show(): void } {
  const { verdicts } = study.labels;
  const chart = element("div", { class: "chart" });
  const drawn: Drawn = {
    height: () => verdicts.length * rowHeight,
    draw: (context, chartWidth) => drawBars(context, chartWidth, study),
  };
  const caption = captionOf(study, explanation);
  const card = figureCard(
    titleOf(study),
    { figure: "verdicts", title: "verdicts by scope", caption, legend, csv: () => csvOf(study, caption) },
    new Map([[chart, drawn]]),
    element("h2", {}, "Verdicts by scope ", element("small", {}, "with the number of persons and scopes")),
    legend(),
    chart,
    element("p", { class: "note" }, explanation),
  );
  const text = verdicts.map(({ scope, counts }) => `${scope}: ${words.map((word) => `${counts[word] ?? 0} ${word}`).join(", ")}`);
  return { card, show: () => void drawOnPage(chart, drawn, width(card), text.join("; ")) };
}

function between(interval: Interval | null): string {
  return interval ? `, with a 95 % interval of ${plain(interval[0])} to ${plain(interval[1])} over persons` : "";
}

/** Says in words what is compared, and shows the table of counts. */
export function agreementCard({ words: labels, counts, persons, unknown, accuracy, kappa, interval }: Agreement): HTMLElement {
  const measures =
    accuracy === null
      ? "No verdict on such a scope is known."
      : `The verdict is the label in ${percent(accuracy)} of them. ` +
        (kappa === null
          ? "Cohen's kappa is not defined, because both sides have only one word."
          : `Cohen's kappa is ${plain(kappa)}${between(interval)}.`);
  const all = counts.flat().reduce((sum, count) => sum + count, 0);
  return element(
    "div",
    { class: "card", "data-figure": "agreement" },
    element("h2", {}, "Agreement with labels"),
    element(
      "p",
      { class: "sentence" },
      "Compared are scopes whose name is positive, neutral or negative with the verdict on the person in that scope: " +
        `${counted(all, "verdict")} on ${counted(persons, "person")}; ${unknown} more are unknown. ${measures}`,
    ),
    element(
      "div",
      { class: "scroll" },
      table("", ["label", ...labels.map((word) => `verdict ${word}`)], labels.map((word, i) => [word, ...counts[i].map(String)]), [1, 2, 3]),
    ),
    element(
      "p",
      { class: "note" },
      "Each scope counts once, however long it is. For agreement over time, use skeigiot agree.",
    ),
  );
}
