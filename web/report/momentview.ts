// What is said of one moment: its values, and why they changed.

import { codersAt } from "./coders";
import { Force, Person, personName, Recording, sourceName } from "./data";
import { element, table } from "../shared/dom";
import { apart, clock, counted, plain, signed, valenceWord, zoneWord } from "../shared/text";
import { swatch } from "../shared/theme";
import { sourceLook } from "./sources";

interface Reading {
  name: string;
  text(value: number): string;
}

const share = (value: number) => plain(value);
const degrees = (value: number) => `${signed(value, 1)}°`;

const readings: Record<string, Reading> = {
  smile: { name: "smile", text: share },
  joy: { name: "joy", text: share },
  sorrow: { name: "sorrow", text: share },
  anger: { name: "anger", text: share },
  surprise: { name: "surprise", text: share },
  calm: { name: "calm", text: share },
  voiceJoy: { name: "voice: joy", text: share },
  voiceSorrow: { name: "voice: sorrow", text: share },
  voiceAnger: { name: "voice: anger", text: share },
  voiceCalm: { name: "voice: calm", text: share },
  headYaw: { name: "head yaw", text: degrees },
  headPitch: { name: "head pitch", text: degrees },
  gazeYaw: { name: "gaze yaw", text: degrees },
  gazePitch: { name: "gaze pitch", text: degrees },
  distance: { name: "distance", text: (value) => `${plain(value)} m` },
  headHeight: { name: "head height", text: (value) => `${plain(value)} m` },
  speaking: { name: "speaks", text: (value) => (value > 0 ? "yes" : "no") },
  speech: { name: "words", text: (value) => signed(value) },
  touch: { name: "touch", text: (value) => (value > 0 ? "pleasant" : "unpleasant") },
  context: { name: "context", text: (value) => signed(value, 0) },
};

/** A number as it reads; the exact one stays there for programs. */
function number(key: string, value: number, text: string): HTMLElement {
  return element("span", { "data-key": key, "data-value": String(value) }, text);
}

function state(key: string, text: string): HTMLElement {
  return element("span", { "data-key": key }, text);
}

function line(name: string, words: (Node | string)[], value: Node): HTMLElement {
  return element("div", {}, element("dt", {}, name), element("dd", { class: "words" }, ...words), element("dd", {}, value));
}

function sureness(key: string, confidence: number): (Node | string)[] {
  return ["confidence ", number(key, confidence, plain(confidence))];
}

function estimates(recording: Recording, person: Person, moment: number): HTMLElement[] {
  const valence = person.valence[moment];
  const attention = person.attention[moment];
  const zone = person.seen[moment] ? zoneWord(recording.zoneNames[person.zone[moment]]) : "not visible";
  const isValenceKnown = person.valenceKnown[moment] > 0;
  const isAttentionKnown = person.attentionKnown[moment] > 0;
  return [
    line("time", [personName(person)], number("time", person.time[moment], clock(person.time[moment], 2))),
    line(
      "valence",
      [
        isValenceKnown ? `${valenceWord(valence)}, ` : "",
        ...sureness("valenceConfidence", person.valenceConfidence[moment]),
      ],
      number("valence", valence, isValenceKnown ? signed(valence) : "unknown"),
    ),
    line(
      "attention",
      sureness("attentionConfidence", person.attentionConfidence[moment]),
      number("attention", attention, isAttentionKnown ? plain(attention) : "unknown"),
    ),
    line("zone", [], state("zone", zone)),
    line("pleasure", [], state("pleasure", recording.pleasureNames[person.pleasure[moment]])),
  ];
}

function observed(person: Person, moment: number): HTMLElement[] {
  const lines: HTMLElement[] = [];
  for (const [name, values] of person.inputs) {
    const reading = readings[name];
    if (reading && !Number.isNaN(values[moment]))
      lines.push(line(reading.name, [], number(name, values[moment], reading.text(values[moment]))));
  }
  return lines;
}

/** Shows the values of a moment in all views. */
export function showReadout(target: HTMLElement, recording: Recording, person: Person, moment: number): void {
  const inputs = observed(person, moment);
  const coders = codersAt(person, person.time[moment]).map(({ name, text }) => line(name, [], state("coder", text)));
  target.replaceChildren(
    element(
      "div",
      { class: "card", "data-moment": String(moment) },
      element("dl", { class: "readout" }, ...estimates(recording, person, moment)),
      coders.length > 0 ? element("p", { class: "group" }, "labels of coders") : null,
      coders.length > 0 ? element("dl", { class: "readout coders" }, ...coders) : null,
      element("p", { class: "group" }, inputs.length > 0 ? "readings" : "no readings"),
      element("dl", { class: "readout inputs" }, ...inputs),
    ),
  );
}

type Text = (value: number, decimals: number) => string;

/** Only valence has a sign. */
function textOf(quantity: string): Text {
  return quantity === "valence" || quantity === "unsmoothed valence" ? signed : plain;
}

/** "Valence went from 0.41 to 0.12: Facial expressions −0.35, Touch +0.06." */
function sentence(recording: Recording, quantity: string, forces: Force[]): string {
  const own = forces.filter((force) => force.quantity === quantity);
  const title = quantity[0].toUpperCase() + quantity.slice(1);
  if (own.length === 0) return `Nothing pulled the ${quantity}.`;
  const bySource = new Map<string, number>();
  for (const { source, before, after } of own) bySource.set(source, (bySource.get(source) ?? 0) + after - before);
  const parts = [...bySource]
    .sort((left, right) => Math.abs(right[1]) - Math.abs(left[1]))
    .map(([source, distance]) => `${sourceName(recording, source)} ${signed(distance, 3)}`)
    .filter((text) => !text.endsWith(" 0.000"));
  const [before, after] = [own[0].before, own[own.length - 1].after].map((value) => textOf(quantity)(value, 3));
  const pulls = parts.length > 0 ? `: ${parts.join(", ")}.` : "; no source moved it by 0.001.";
  return before === after ? `${title} stayed at ${before}${pulls}` : `${title} went from ${before} to ${after}${pulls}`;
}

const isUnsmoothed = ({ quantity }: Force) => quantity.startsWith("unsmoothed");

let showsUnsmoothed = false;

/** Returns a box to tick that shows the rows of unsmoothed quantities; it stays as it was ticked. */
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

/** Returns where the force moved the quantity from and to, with so many decimals that both differ. */
function moveOf({ quantity, before, after }: Force): HTMLElement[] {
  const texts = apart(before, after, textOf(quantity));
  return [
    number("before", before, texts ? texts[0] : textOf(quantity)(before, 3)),
    number("after", after, texts ? texts[1] : "the same"),
  ];
}

/** Lists the forces of a moment in their order. */
export function showPinned(target: HTMLElement, recording: Recording, person: Person, moment: number): void {
  const forces = person.forcesAt(moment);
  const rows = forces.map((force) => [
    element(
      "span",
      { "data-source": force.source },
      swatch(sourceLook(force.source)),
      sourceName(recording, force.source),
      element("small", {}, force.quantity),
    ),
    number("weight", force.weight, plain(force.weight, 3)),
    number("target", force.target, textOf(force.quantity)(force.target, 2)),
    ...moveOf(force),
  ]);
  const list = table(
    `Forces at ${clock(person.time[moment], 2)}, in order`,
    ["source and quantity", "weight", "target", "from", "to"],
    rows,
    [1, 2, 3, 4],
  );
  const folded = forces.filter(isUnsmoothed).length;
  list.querySelectorAll("tbody tr").forEach((row, i) => row.classList.toggle("unsmoothed", isUnsmoothed(forces[i])));
  const others = person.updates[moment] - 1;
  target.replaceChildren(
    element(
      "div",
      { class: "card", "data-moment": String(moment) },
      element("p", { class: "sentence" }, sentence(recording, "valence", forces)),
      element("p", { class: "sentence" }, sentence(recording, "attention", forces)),
      element("div", { class: "scroll" }, list),
      folded > 0 ? unsmoothedSwitch(list, folded) : null,
      others > 0
        ? element("p", { class: "note" }, `${others} updates between this moment and the one before it are not shown.`)
        : null,
      element("p", { class: "note keys" }, "Pinned. ", element("kbd", {}, "Esc"), " lets it go."),
    ),
  );
}

export function showNothingPinned(target: HTMLElement): void {
  target.replaceChildren(
    element(
      "div",
      { class: "card unpinned" },
      element("p", { class: "note" }, "Click a moment, or press Enter, to see which forces acted in it, in their order."),
    ),
  );
}
