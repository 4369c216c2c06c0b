// The text about the recording as a whole.

import { ChartGroup, measuringAxis, timeAxis } from "../shared/chartgroup";
import { Person, personName, Recording, Scope, verdictIn } from "./data";
import { element, facts, table } from "../shared/dom";
import { makerText, originCard } from "./origin";
import { clock, counted, percent, plain, signed, valenceWord } from "../shared/text";
import { cssColor } from "../shared/theme";
import { addSaveButtons, FileKind } from "../shared/save";

/** Returns the subject of a figure: file, person, time span, options and version. */
export function captionOf(recording: Recording, person: Person, { from, to }: { from: number; to: number }): string[] {
  const { inputs, length, origin } = recording;
  const whole = from <= 0 && to >= length;
  return [
    `${inputs.map(baseName).join(" + ")}, ${personName(person).replace("Person", "person")}, ` +
      `${clock(from)} to ${clock(to)}${whole ? ", the whole recording" : ""}.`,
    `Options: ${origin.options.length > 0 ? origin.options.join(" ") : "the defaults"}. Made by ${makerText(origin)}.`,
  ];
}

export function baseTitle({ inputs }: Recording): string {
  return inputs.map(baseName).join("+");
}

function baseName(path: string): string {
  return path.split("/").pop() ?? path;
}

function gapsText({ gaps }: Recording): string {
  if (gaps.count === 0) return "none";
  return `${gaps.count}, longest ${plain(gaps.longest, 1)} s at ${clock(gaps.at)}`;
}

export function showHeader(target: HTMLElement, recording: Recording): void {
  const { begins, inputs, length, persons, updatesPerSecond } = recording;
  const date = begins === null ? "no date" : new Date(begins * 1000).toISOString().replace("T", " ").slice(0, 19);
  const title = inputs.map(baseName).join(" + ");
  document.title = `${title} · skeigiot`;
  target.replaceChildren(
    element("p", { class: "eyebrow" }, "skeigiot report: estimates and forces"),
    element("h1", {}, title),
    facts([
      ["persons", String(persons.length)],
      ["duration", clock(length)],
      ["steps per second", plain(updatesPerSecond, 1)],
      ["gaps of a second or more", gapsText(recording)],
      ["begins (UTC)", date],
    ]),
    originCard(recording),
    element("p", { class: "note" }, `Trust: ${recording.trust}.`),
    ...(recording.learned ?? []).map((line) => element("p", { class: "note" }, `Learned: ${line}.`)),
    ...recording.labelWarnings.map((line) => element("p", { class: "note" }, `Warning: ${line}.`)),
  );
}

/** An estimate that was never known is not a number. */
function ifKnown(value: number | null, text: (known: number) => string): string {
  return value === null ? "unknown" : text(value);
}

export function personFacts({ summary }: Person): HTMLElement {
  return facts([
    ["present", `${clock(summary.from)} to ${clock(summary.to)}`],
    ["visible, of the time", percent(summary.visible)],
    ["mean valence", ifKnown(summary.valence, (known) => `${signed(known)} (${valenceWord(known)})`)],
    ["mean attention", ifKnown(summary.attention, plain)],
    ["engaged, of the time", ifKnown(summary.engaged, percent)],
    ["updates", summary.updates.toLocaleString("en")],
  ]);
}

const endings: Record<string, string> = {
  "not stopped": "not stopped",
  "cut short": "cut short by the end",
  "not reached": "the recording ended before the scope",
  "not open": "stopped, but not started",
};

function scopeTime({ end, from, to }: Scope): string {
  const ending = endings[end];
  return `${clock(from)} to ${clock(to)}${ending ? `, ${ending}` : ""}`;
}

function verdictOf(scope: Scope, person: Person): string {
  const { verdict, updates } = verdictIn(scope, person.id);
  return `${verdict} (${counted(updates, "update")})`;
}

/** The longer of both lists is in the rows of the table, the other in the columns. */
function scopesCard({ persons, scopes }: Recording): HTMLElement {
  const byScope = persons.length <= Math.max(4, scopes.length);
  const headings = byScope
    ? ["scope", "time", ...persons.map(personName)]
    : ["person", ...scopes.map((scope) => `${scope.name}, ${scopeTime(scope)}`)];
  const rows = byScope
    ? scopes.map((scope) => [scope.name, scopeTime(scope), ...persons.map((person) => verdictOf(scope, person))])
    : persons.map((person) => [personName(person), ...scopes.map((scope) => verdictOf(scope, person))]);
  return element(
    "div",
    { class: "card long" },
    element("div", { class: "scroll rows verdicts", tabindex: "0", role: "group", "aria-label": "Verdicts" },
      table("Scopes and their verdicts", headings, rows)),
  );
}

function boundariesCard({ boundaries }: Recording): HTMLElement {
  const rows = boundaries.map(({ description, value }) => [description, signed(value).replace("+", "")]);
  return element("div", { class: "card" }, table("Boundaries", ["what", "value"], rows, [1]));
}

function thinningText({ persons, stretch }: Recording): string {
  if (stretch === 0) return "Every update of the recording is in this page.";
  const kept = persons.reduce((sum, { time }) => sum + time.length, 0);
  const all = persons.reduce((sum, { summary }) => sum + summary.updates, 0);
  return (
    `The recording is long, so this page holds ${counted(kept, "moment")} of its ${counted(all, "update")}. ` +
    `Of each ${plain(stretch, 2)} s it keeps the least and the greatest of every estimate and every reading, the first ` +
    "change of zone, pleasure and visibility, and the first of each kind of event. Every moment is an unchanged update."
  );
}

/** Adds the agitation of the room, if it was recorded. */
export function addRoom(
  target: HTMLElement,
  { ambiance }: Recording,
  group: ChartGroup,
  save: (kind: FileKind) => Promise<void>,
): void {
  if (ambiance.time.length === 0) return;
  const chart = element("div", { class: "chart" });
  const title = element("h2", {}, "The room ", element("small", {}, "its agitation"));
  const card = element("div", { class: "card", "data-figure": "room" }, title, chart);
  addSaveButtons(card, "the room", save);
  target.append(card);
  group.add(
    chart,
    {
      height: 110,
      axes: [timeAxis(true), measuringAxis("")],
      series: [{}, { stroke: cssColor("source-2"), width: 1.5, points: { show: false } }],
    },
    [ambiance.time, ambiance.agitation],
  );
}

export function showRecording(target: HTMLElement, recording: Recording): void {
  target.replaceChildren(
    element("div", { class: "two" }, scopesCard(recording), boundariesCard(recording)),
    element("p", { class: "note" }, thinningText(recording)),
  );
}
