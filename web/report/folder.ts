// The page with links to the reports of a folder of recordings, with a small picture of each person.

import { element } from "../shared/dom";
import { Curve, curvePath, svg } from "../shared/smallpicture";
import { clock, counted, percent, plain, signed } from "../shared/text";

/** A number is null if it is not known. */
interface FolderPerson {
  id: number;
  name: string;
  verdict: string;
  seen: number | null;
  valence: number | null;
  attention: number | null;
  valenceCurve: Curve;
  attentionCurve: Curve;
}

export interface FolderRecording {
  file: string;
  page: string;
  length: number;
  personCount: number;
  persons: FolderPerson[];
  warnings: number;
  error: string;
}

const width = 180;
const height = 40;

/** Returns the recordings of a folder, or nothing if the data are of one recording. */
export function readFolder(text: string): FolderRecording[] | null {
  return text.startsWith('{"recordings":') ? (JSON.parse(text).recordings as FolderRecording[]) : null;
}

/** Draws a quantity over the whole recording, from `least` to 1. */
function picture(curve: Curve, least: number, kind: "valence" | "attention", label: string): Node {
  if (curve.every((value) => value === null)) return element("span", { class: "note" }, "no data");
  const zero = (2 + (1 / (1 - least)) * (height - 4)).toFixed(1);
  return svg(
    "svg",
    { class: "small", viewBox: `0 0 ${width} ${height}`, role: "img", "aria-label": label },
    svg("line", { class: "zero", x1: "0", x2: String(width), y1: zero, y2: zero }),
    svg("path", { class: kind, d: curvePath(curve, least, { x: 0, y: 2, width, height: height - 4 }) }),
  );
}

function problems({ warnings, error }: FolderRecording): HTMLElement | null {
  const texts = [warnings > 0 ? counted(warnings, "warning") : "", error].filter((text) => text !== "");
  return texts.length > 0 ? element("p", { class: "note" }, texts.join("; ")) : null;
}

function nameCell(recording: FolderRecording, rows: number): HTMLElement {
  const { file, page, persons, personCount } = recording;
  const more = personCount - persons.length;
  return element(
    "th",
    { scope: "rowgroup", rowspan: String(rows) },
    page === "" ? file : element("a", { href: page }, file),
    more > 0 ? element("p", { class: "note" }, `and ${counted(more, "more person")}`) : null,
    problems(recording),
  );
}

function personCells(person: FolderPerson): HTMLElement[] {
  const number = (value: number | null, text: (value: number) => string) => (value === null ? "unknown" : text(value));
  const name = person.name === "" ? `Person ${person.id}` : `${person.name} (${person.id})`;
  const valence = number(person.valence, signed);
  const attention = number(person.attention, plain);
  return [
    element("td", { class: "who" }, name),
    element("td", { class: "number" }, number(person.seen, percent)),
    element("td", {}, picture(person.valenceCurve, -1, "valence", `Valence of ${name}: ${valence} on average`)),
    element("td", { class: "number" }, valence),
    element("td", {}, picture(person.attentionCurve, 0, "attention", `Attention of ${name}: ${attention} on average`)),
    element("td", { class: "number" }, attention),
    element("td", {}, person.verdict),
  ];
}

function rowsOf(recording: FolderRecording): HTMLElement {
  const { persons, length } = recording;
  const rows = Math.max(persons.length, 1);
  const first = [
    nameCell(recording, rows),
    element("td", { class: "number", rowspan: String(rows) }, recording.page === "" ? "" : clock(length)),
  ];
  if (persons.length === 0) {
    const note = recording.page === "" ? "not read" : "nobody was seen";
    return element("tbody", {}, element("tr", {}, ...first, element("td", { colspan: "7", class: "note" }, note)));
  }
  return element(
    "tbody",
    {},
    ...persons.map((person, i) => element("tr", {}, ...(i === 0 ? first : []), ...personCells(person))),
  );
}

/** Fills the page with a table of the recordings. */
export function showFolder(recordings: FolderRecording[], header: HTMLElement, target: HTMLElement): void {
  const title = counted(recordings.length, "recording");
  document.title = title;
  header.replaceChildren(element("h1", {}, title));
  const headings = ["recording", "length", "person", "seen", "valence", "", "attention", "", "verdict"];
  target.replaceChildren(
    element(
      "div",
      { class: "card folder" },
      element(
        "table",
        {},
        element("thead", {}, element("tr", {}, ...headings.map((text) => element("th", { scope: "col" }, text)))),
        ...recordings.map(rowsOf),
      ),
      element(
        "p",
        { class: "note" },
        "Valence goes from −1 to 1 with a line at 0, attention from 0 to 1, over the whole recording. " +
          "There is no line where an estimate is unknown.",
      ),
    ),
  );
}
