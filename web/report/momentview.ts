// The text about one moment: its values, and why they changed.

import { codersAt } from "./coders";
import { Person, personName, Recording, sourceName } from "./data";
import { element } from "../shared/dom";
import { forceList } from "../shared/forces";
import { line, number, readingLines, state, sureness } from "../shared/readings";
import { clock, counted, plain, signed, valenceWord, zoneWord } from "../shared/text";

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

function observed({ inputs }: Person, moment: number): HTMLElement[] {
  return readingLines([...inputs].map(([name, values]) => [name, values[moment]]));
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

/** Lists the forces of a moment in their order. */
export function showPinned(target: HTMLElement, recording: Recording, person: Person, moment: number): void {
  const title = `Forces at ${clock(person.time[moment], 2)}, in order`;
  const others = person.updates[moment] - 1;
  target.replaceChildren(
    element(
      "div",
      { class: "card", "data-moment": String(moment) },
      ...forceList(title, person.forcesAt(moment), (source) => sourceName(recording, source)),
      others > 0
        ? element("p", { class: "note" }, `${counted(others, "update")} between this moment and the one before it are not shown.`)
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
