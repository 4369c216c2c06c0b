// The data of a recording, in the form in which the command writes them into the page.

import { Force, quantities } from "../shared/forces";

type Base64 = string;

interface RawPerson {
  id: number;
  name?: string;
  summary: PersonSummary;
  moments: number;
  time: Base64;
  updates: Base64;
  valence: Base64;
  valenceConfidence: Base64;
  attention: Base64;
  attentionConfidence: Base64;
  zone: Base64;
  pleasure: Base64;
  seen: Base64;
  valenceKnown: Base64;
  attentionKnown: Base64;
  inputs: Record<string, Base64>;
  valenceChanges: Record<string, Base64>;
  attentionChanges: Record<string, Base64>;
  forces: Record<"ends" | "source" | "quantity" | "target" | "weight" | "before" | "after", Base64>;
}

/** The origin of the page. */
export interface Origin {
  files: { path: string; bytes: number | null; format: string }[];
  readAs: string[];
  options: string[];
  version: string;
  made: string;
}

interface RawLabels {
  warnings: string[];
  persons: {
    person: number;
    ribbons: { coder: string; quantity: string; tier?: string; from: Base64; to: Base64; texts: string[] }[];
    lines: { coder: string; quantity: string; time: Base64; value: Base64 }[];
  }[];
}

interface Facts {
  inputs: string[];
  notes: string[];
  origin: Origin;
  trust: string;
  /** [s] since 1970; null if the recording has no date. */
  begins: number | null;
  length: number;
  updatesPerSecond: number;
  gaps: { count: number; longest: number; at: number };
  stretch: number;
  zoneNames: string[];
  pleasureNames: string[];
  /** In the words of the library. */
  sources: string[];
  /** In plain words, in the same order. */
  sourceNames: string[];
  boundaries: { option: string; description: string; value: number }[];
  scopes: Scope[];
  /** The learned faces at rest, a line each. */
  learned: string[];
  /** Where a video is, relative to the page, and when in the recording it begins [s]. */
  video: { address: string; offset: number } | null;
}

interface RawRecording extends Facts {
  labels: RawLabels | null;
  ambiance: Record<"time" | "agitation" | "excited", Base64>;
  persons: RawPerson[];
}

/** The means and "engaged" are null if the estimate was never known. */
export interface PersonSummary {
  from: number;
  to: number;
  updates: number;
  visible: number;
  valence: number | null;
  valenceConfidence: number | null;
  attention: number | null;
  attentionConfidence: number | null;
  engaged: number | null;
  strictlyEngaged: number | null;
  zones: Record<string, number>;
  pleasures: Record<string, number>;
}

export interface Verdict {
  verdict: string;
  updates: number;
}

export interface Scope {
  name: string;
  from: number;
  to: number;
  end: string;
  /** Those with an update in the scope. */
  persons: (Verdict & { id: number })[];
}

/** Returns the verdict on a person; of a person without an update in the scope, nothing is known. */
export function verdictIn({ persons }: Scope, person: number): Verdict {
  return persons.find(({ id }) => id === person) ?? { verdict: "unknown", updates: 0 };
}

/** How far one source moved a quantity, up to each moment since the one before it. */
export interface Change {
  source: string;
  distances: Float32Array;
}

/** Spans to which a coder gave labels; `quantity` is empty if these mean no state. */
export interface LabelRibbon {
  coder: string;
  quantity: string;
  tier: string;
  from: Float64Array;
  to: Float64Array;
  texts: string[];
}

/** Values that a coder gave; NaN where a line ends. */
export interface LabelLine {
  coder: string;
  quantity: string;
  time: Float64Array;
  value: Float32Array;
}

export interface Person {
  id: number;
  /** The person's name in the recording; empty if it has numbers only. */
  name: string;
  summary: PersonSummary;
  time: Float64Array;
  updates: Uint32Array;
  valence: Float32Array;
  valenceConfidence: Float32Array;
  attention: Float32Array;
  attentionConfidence: Float32Array;
  zone: Uint8Array;
  pleasure: Uint8Array;
  seen: Uint8Array;
  /** 0 if the estimate was unknown so far: then its number has no meaning. */
  valenceKnown: Uint8Array;
  attentionKnown: Uint8Array;
  inputs: Map<string, Float32Array>;
  valenceChanges: Change[];
  attentionChanges: Change[];
  labels: { ribbons: LabelRibbon[]; lines: LabelLine[] };
  /** Returns the forces that acted at a moment, in their order. */
  forcesAt(moment: number): Force[];
}

export interface Recording extends Facts {
  /** On labels that are not shown. */
  labelWarnings: string[];
  ambiance: { time: Float64Array; agitation: Float32Array; excited: Uint8Array };
  persons: Person[];
}

function buffer(text: Base64): ArrayBuffer {
  const binary = atob(text);
  const bytes = new Uint8Array(binary.length);
  for (let i = 0; i < binary.length; ++i) bytes[i] = binary.charCodeAt(i);
  return bytes.buffer;
}

const floats = (text: Base64) => new Float32Array(buffer(text));
const doubles = (text: Base64) => new Float64Array(buffer(text));
const bytes = (text: Base64) => new Uint8Array(buffer(text));
const counts = (text: Base64) => new Uint32Array(buffer(text));

function changes(raw: Record<string, Base64>, sources: string[]): Change[] {
  return Object.entries(raw).map(([source, text]) => ({ source: sources[Number(source)], distances: floats(text) }));
}

/** Forces are the bulk of the data: they are unpacked only when they are needed. */
function forceReader(raw: RawPerson["forces"], sources: string[]): (moment: number) => Force[] {
  const unpack = () => ({
    ends: counts(raw.ends),
    source: bytes(raw.source),
    quantity: bytes(raw.quantity),
    target: floats(raw.target),
    weight: floats(raw.weight),
    before: floats(raw.before),
    after: floats(raw.after),
  });
  let unpacked: ReturnType<typeof unpack> | undefined;
  return (moment) => {
    const all = (unpacked ??= unpack());
    const forces: Force[] = [];
    for (let i = moment > 0 ? all.ends[moment - 1] : 0; i < all.ends[moment]; ++i)
      forces.push({
        source: sources[all.source[i]],
        quantity: quantities[all.quantity[i]],
        target: all.target[i],
        weight: all.weight[i],
        before: all.before[i],
        after: all.after[i],
      });
    return forces;
  };
}

function labelsOf(id: number, labels: RawLabels | null | undefined): Person["labels"] {
  const found = labels?.persons.find(({ person }) => person === id);
  return {
    ribbons: (found?.ribbons ?? []).map(({ coder, quantity, tier, from, to, texts }) => ({
      coder,
      quantity,
      tier: tier ?? "",
      from: doubles(from),
      to: doubles(to),
      texts,
    })),
    lines: (found?.lines ?? []).map(({ coder, quantity, time, value }) => ({
      coder,
      quantity,
      time: doubles(time),
      value: floats(value),
    })),
  };
}

function person(raw: RawPerson, sources: string[], labels: RawLabels | null): Person {
  return {
    id: raw.id,
    name: raw.name ?? "",
    summary: raw.summary,
    time: doubles(raw.time),
    updates: counts(raw.updates),
    valence: floats(raw.valence),
    valenceConfidence: floats(raw.valenceConfidence),
    attention: floats(raw.attention),
    attentionConfidence: floats(raw.attentionConfidence),
    zone: bytes(raw.zone),
    pleasure: bytes(raw.pleasure),
    seen: bytes(raw.seen),
    valenceKnown: bytes(raw.valenceKnown),
    attentionKnown: bytes(raw.attentionKnown),
    inputs: new Map(Object.entries(raw.inputs).map(([name, text]) => [name, floats(text)])),
    valenceChanges: changes(raw.valenceChanges, sources),
    attentionChanges: changes(raw.attentionChanges, sources),
    labels: labelsOf(raw.id, labels),
    forcesAt: forceReader(raw.forces, sources),
  };
}

/** Returns the plain words for a source of the library. */
export function sourceName(recording: Recording, source: string): string {
  return recording.sourceNames[recording.sources.indexOf(source)] ?? source;
}

export function readRecording(text: string): Recording {
  const raw = JSON.parse(text) as RawRecording;
  const { ambiance, labels, persons: rawPersons, ...facts } = raw;
  const persons = rawPersons.map((one) => person(one, raw.sources, labels));
  return {
    ...facts,
    labelWarnings: labels?.warnings ?? [],
    ambiance: {
      time: doubles(ambiance.time),
      agitation: floats(ambiance.agitation),
      excited: bytes(ambiance.excited),
    },
    persons,
  };
}

/** Returns "Person 3", or the name that the recording has, with the number. */
export function personName({ id, name }: Person): string {
  return name ? `${name} (${id})` : `Person ${id}`;
}

/**
 * Returns the moment in which valence or attention changed most in one update, as `skeigiot why` chooses it. A change from
 * an unknown estimate counts less than any other.
 */
export function greatestChange(person: Person): number {
  const { time, updates, valence, valenceConfidence, attention, attentionConfidence } = person;
  let greatest = { known: -1, unknown: -1 };
  let moment = 0;
  for (let i = 0; i < time.length; ++i) {
    const change = { known: 0, unknown: 0 };
    const add = (values: Float32Array, confidences: Float32Array) => {
      const distance = Math.abs(values[i] - (i > 0 ? values[i - 1] : 0)) / Math.max(1, updates[i]);
      const kind = i > 0 && confidences[i - 1] > 0 ? "known" : "unknown";
      change[kind] = Math.max(change[kind], distance);
    };
    add(valence, valenceConfidence);
    add(attention, attentionConfidence);
    const isGreater =
      change.known > greatest.known || (change.known === greatest.known && change.unknown > greatest.unknown);
    if (!isGreater) continue;
    greatest = change;
    moment = i;
  }
  return moment;
}

/** Returns the index of the time that is nearest. */
export function nearest(times: Float64Array, time: number): number {
  let low = 0;
  let high = times.length - 1;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (times[middle] < time) low = middle + 1;
    else high = middle;
  }
  return low > 0 && time - times[low - 1] <= times[low] - time ? low - 1 : low;
}
