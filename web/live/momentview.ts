// Shows one moment of a person: its values, and why they changed.

import { element } from "../shared/dom";
import { forceList } from "../shared/forces";
import { line, number, readingLines, state, sureness } from "../shared/readings";
import { clock, counted, plain, signed, valenceWord, zoneWord } from "../shared/text";
import { Moment, Person, personName, Session } from "./session";

/** Shows the values of a moment; `when` says which one it is. */
export function showReadout(target: HTMLElement, person: Person, moment: Moment, when: string): void {
  const { valence, valenceKnown, attention, attentionKnown, ease } = moment;
  const isEaseKnown = ease.confidence > 0;
  const estimates = [
    line("time", [`${personName(person)}, ${when}`], number("time", moment.time, clock(moment.time, 2))),
    line(
      "valence",
      [valenceKnown ? `${valenceWord(valence)}, ` : "", ...sureness("valenceConfidence", moment.valenceConfidence)],
      number("valence", valence, valenceKnown ? signed(valence) : "unknown"),
    ),
    line(
      "attention",
      sureness("attentionConfidence", moment.attentionConfidence),
      number("attention", attention, attentionKnown ? plain(attention) : "unknown"),
    ),
    line("zone", [], state("zone", moment.seen ? zoneWord(moment.zone) : "not visible")),
    line("pleasure", [], state("pleasure", moment.pleasure)),
    line("ease", isEaseKnown ? sureness("easeConfidence", ease.confidence) : [], state("ease", isEaseKnown ? ease.word : "unknown")),
  ];
  const inputs = readingLines(moment.inputs);
  target.replaceChildren(
    element(
      "div",
      { class: "card", "data-time": String(moment.time) },
      element("dl", { class: "readout" }, ...estimates),
      element("p", { class: "group" }, inputs.length > 0 ? "readings" : "no readings"),
      element("dl", { class: "readout inputs" }, ...inputs),
    ),
  );
}

/** Lists the forces of a moment in their order. */
export function showForces(target: HTMLElement, session: Session, moment: Moment, isPinned: boolean, unpin: () => void): void {
  const title = `Forces at ${clock(moment.time, 2)}, in order`;
  const others = moment.updates - 1;
  const button = element("button", { type: "button", class: "link" }, "Unpin");
  button.addEventListener("click", unpin);
  const hint = isPinned ? ["Pinned. ", button, "."] : ["Of the last update. Click a moment in a chart to pin it."];
  target.replaceChildren(
    element(
      "div",
      { class: "card", "data-time": String(moment.time), ...(isPinned ? { "data-pinned": "" } : {}) },
      ...forceList(title, moment.forces, (source) => session.sourceName(source)),
      others > 0
        ? element("p", { class: "note" }, `${counted(others, "update")} between this moment and the one before it are not shown.`)
        : null,
      element("p", { class: "note" }, ...hint),
    ),
  );
}
