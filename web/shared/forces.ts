// The forces that acted in one update, in their order.

import { element, table } from "./dom";
import { number } from "./readings";
import { sourceLook } from "./sources";
import { apart, counted, plain, signed } from "./text";
import { swatch } from "./theme";

export interface Force {
  source: string;
  quantity: string;
  target: number;
  weight: number;
  before: number;
  after: number;
}

/** In the order of the library. */
export const quantities = [
  "valence",
  "unsmoothed valence",
  "valence confidence",
  "unsmoothed valence confidence",
  "attention",
  "attention confidence",
];

/** Returns the plain words for a source of the library. */
type NameOf = (source: string) => string;

type Text = (value: number, decimals: number) => string;

/** Only valence has a sign. */
function textOf(quantity: string): Text {
  return quantity === "valence" || quantity === "unsmoothed valence" ? signed : plain;
}

/** "Valence went from 0.41 to 0.12: Facial expressions −0.35, Touch +0.06." */
function sentence(nameOf: NameOf, quantity: string, forces: Force[]): string {
  const own = forces.filter((force) => force.quantity === quantity);
  const title = quantity[0].toUpperCase() + quantity.slice(1);
  if (own.length === 0) return `Nothing pulled the ${quantity}.`;
  const bySource = new Map<string, number>();
  for (const { source, before, after } of own) bySource.set(source, (bySource.get(source) ?? 0) + after - before);
  const parts = [...bySource]
    .sort((left, right) => Math.abs(right[1]) - Math.abs(left[1]))
    .map(([source, distance]) => `${nameOf(source)} ${signed(distance, 3)}`)
    .filter((text) => !text.endsWith(" 0.000"));
  const [before, after] = [own[0].before, own[own.length - 1].after].map((value) => textOf(quantity)(value, 3));
  const pulls = parts.length > 0 ? `: ${parts.join(", ")}.` : "; no source moved it by 0.001.";
  return before === after ? `${title} stayed at ${before}${pulls}` : `${title} went from ${before} to ${after}${pulls}`;
}

const isUnsmoothed = ({ quantity }: Force) => quantity.startsWith("unsmoothed");

let showsUnsmoothed = false;

/** Returns a checkbox that shows the rows of unsmoothed quantities; it keeps its state. */
function unsmoothedSwitch(list: HTMLElement, count: number): HTMLElement {
  const box = element("input", { type: "checkbox", id: "unsmoothed" });
  const show = () => list.toggleAttribute("data-unsmoothed", showsUnsmoothed);
  box.checked = showsUnsmoothed;
  box.addEventListener("change", () => {
    showsUnsmoothed = box.checked;
    show();
  });
  show();
  return element("label", { class: "note fold" }, box, ` also the ${counted(count, "row")} of the unsmoothed valence`);
}

/** Returns the values of the quantity before and after the force, with so many decimals that both differ. */
function moveOf({ quantity, before, after }: Force): HTMLElement[] {
  const texts = apart(before, after, textOf(quantity));
  return [
    number("before", before, texts ? texts[0] : textOf(quantity)(before, 3)),
    number("after", after, texts ? texts[1] : "the same"),
  ];
}

/** Returns a sentence on the forces for each quantity, and the list of all of them. */
export function forceList(title: string, forces: Force[], nameOf: NameOf): Node[] {
  const rows = forces.map((force) => [
    element(
      "span",
      { "data-source": force.source },
      swatch(sourceLook(force.source)),
      nameOf(force.source),
      element("small", {}, force.quantity),
    ),
    number("weight", force.weight, plain(force.weight, 3)),
    number("target", force.target, textOf(force.quantity)(force.target, 2)),
    ...moveOf(force),
  ]);
  const list = table(title, ["source and quantity", "weight", "target", "from", "to"], rows, [1, 2, 3, 4]);
  const folded = forces.filter(isUnsmoothed).length;
  list.querySelectorAll("tbody tr").forEach((row, i) => row.classList.toggle("unsmoothed", isUnsmoothed(forces[i])));
  return [
    element("p", { class: "sentence" }, sentence(nameOf, "valence", forces)),
    element("p", { class: "sentence" }, sentence(nameOf, "attention", forces)),
    element("div", { class: "scroll" }, list),
    ...(folded > 0 ? [unsmoothedSwitch(list, folded)] : []),
  ];
}
