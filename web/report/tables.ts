// The content of a card, as a table of comma-separated values.

import { Cell, csvText, Table } from "../shared/csv";
import { binned } from "./changes";
import { labelsAt, valueAt } from "./coders";
import { Change, Person, personName, Recording, sourceName } from "./data";

export type FigureName = "estimates" | "comparison" | "inputs" | "valence-pulls" | "attention-pulls" | "room";

/** The span of time that is shown [s]. */
export interface Span {
  from: number;
  to: number;
}

const momentsIn = ({ time }: Person, { from, to }: Span) =>
  Array.from(time.keys()).filter((moment) => time[moment] >= from && time[moment] <= to);

/** An unknown value is empty. */
const known = (values: Float32Array, isKnown: Uint8Array, i: number) => (isKnown[i] ? values[i] : null);

function estimates(recording: Recording, person: Person, span: Span): Table {
  const lines = person.labels.lines;
  return {
    header: [
      ...["time", "seen", "valence", "valence_confidence", "attention", "attention_confidence", "zone", "pleasure"],
      ...person.labels.ribbons.map(({ coder, quantity, tier }) => `${coder}: ${quantity || tier || "labels"}`),
      ...lines.map(({ coder, quantity }) => `${coder}: ${quantity}`),
    ],
    rows: momentsIn(person, span).map((i) => [
      person.time[i],
      person.seen[i],
      known(person.valence, person.valenceKnown, i),
      person.valenceConfidence[i],
      known(person.attention, person.attentionKnown, i),
      person.attentionConfidence[i],
      recording.zoneNames[person.zone[i]],
      recording.pleasureNames[person.pleasure[i]],
      ...person.labels.ribbons.map((ribbon) => labelsAt(ribbon, person, person.time[i]).join("; ")),
      ...lines.map((line) => valueAt(line, person.time[i])),
    ]),
  };
}

function comparison({ persons }: Recording, span: Span): Table {
  const rows = persons.flatMap((person) =>
    momentsIn(person, span).map((i): Cell[] => [
      person.time[i],
      personName(person),
      known(person.valence, person.valenceKnown, i),
      known(person.attention, person.attentionKnown, i),
    ]),
  );
  return { header: ["time", "person", "valence", "attention"], rows };
}

function inputs(person: Person, span: Span): Table {
  const all = [...person.inputs];
  return {
    header: ["time", ...all.map(([name]) => name)],
    rows: momentsIn(person, span).map((i) => [person.time[i], ...all.map(([, values]) => values[i])]),
  };
}

function pulls(recording: Recording, person: Person, changes: Change[], { from, to }: Span, bars: number): Table {
  const { times, distances } = binned(person, changes, from, to, bars);
  return {
    header: ["time", ...changes.map(({ source }) => sourceName(recording, source))],
    rows: times.map((time, bar) => [time, ...distances.map((values) => values[bar])]),
  };
}

function room({ ambiance }: Recording, { from, to }: Span): Table {
  const rows: Cell[][] = [];
  ambiance.time.forEach((time, i) => time >= from && time <= to && rows.push([time, ambiance.agitation[i]]));
  return { header: ["time", "agitation"], rows };
}

function tableOf(name: FigureName, recording: Recording, person: Person, span: Span, bars: number): Table {
  switch (name) {
    case "estimates":
      return estimates(recording, person, span);
    case "comparison":
      return comparison(recording, span);
    case "inputs":
      return inputs(person, span);
    case "valence-pulls":
      return pulls(recording, person, person.valenceChanges, span, bars);
    case "attention-pulls":
      return pulls(recording, person, person.attentionChanges, span, bars);
    case "room":
      return room(recording, span);
  }
}

/** Returns the caption as comments, then the numbers that the figure shows. */
export function csvOf(
  name: FigureName,
  recording: Recording,
  person: Person,
  span: Span,
  bars: number,
  caption: string[],
): string {
  return csvText(tableOf(name, recording, person, span, bars), caption);
}
