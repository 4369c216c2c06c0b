// The session as the server sends it: facts first, then news. The page keeps a bounded part of it.

import { Force, quantities } from "../shared/forces";

/** So much is shown of each person [s]. */
export const shownTime = 60;

/** So many moments of a person are kept at most; the server sends 20 a second. */
const mostMoments = 1500;
const mostKept = 50;
/** The server lets a person leave who has had no update in the shown time. News of that may come so much later [s]. */
const latestLeave = 2;
const nanoseconds = 1e9;

/** Value, confidence, and whether it is known at all. */
type RawEstimate = [number | null, number | null, boolean];

interface RawPerson {
  id: number;
  name: string;
  time: number;
  updates: number;
  seen: boolean;
  valence: RawEstimate;
  attention: RawEstimate;
  zone: string;
  pleasure: string;
  ease: [number | null, number | null, string];
  inputs: Record<string, number>;
  forces: [number, number, number, number, number, number][];
}

export interface Boundary {
  option: string;
  description: string;
  interval: string;
  value: number;
  /** To which it can be put back. */
  first: number;
}

export interface Verdict {
  number: number;
  scope: string;
  from: number;
  to: number;
  end: string;
  persons: { id: number; name: string; verdict: string; updates: number }[];
}

interface Warning {
  number: number;
  text: string;
}

export interface Input {
  name: string;
  /** "lines", "steps" or "messages". */
  unit: string;
  speed: number;
  lines: number;
  refused: number;
  lastError: string;
  rate: number;
  /** [s]; null if no line had a time of its own. */
  delay: number | null;
  ended: boolean;
  /** Persons beyond those who are shown. */
  others: number;
}

export interface Room {
  agitation: number;
  excited: boolean;
}

/** Members of both facts and news. */
interface Common {
  sources?: string[];
  sourceNames?: string[];
  boundaries?: Boundary[];
  scopes?: string[];
  verdicts?: Verdict[];
  warnings?: Warning[];
  room?: Room | null;
}

interface News extends Common {
  now: number;
  persons?: RawPerson[];
  left?: number[];
  input?: Input;
}

/** One update of a person. Numbers that are unknown are NaN. */
export interface Moment {
  /** [s] since the session began. */
  time: number;
  /** Updates since the moment before, this one included. */
  updates: number;
  seen: boolean;
  valence: number;
  valenceConfidence: number;
  valenceKnown: boolean;
  attention: number;
  attentionConfidence: number;
  attentionKnown: boolean;
  zone: string;
  pleasure: string;
  ease: { level: number; confidence: number; word: string };
  inputs: [string, number][];
  forces: Force[];
}

export interface Person {
  id: number;
  name: string;
  /** Of the last minute, the oldest first; at least one. */
  moments: Moment[];
}

/** Returns "Person 3", or the name that the input has, with the number. */
export function personName({ id, name }: { id: number; name: string }): string {
  return name ? `${name} (${id})` : `Person ${id}`;
}

export function lastMoment({ moments }: Person): Moment {
  return moments[moments.length - 1];
}

const finite = (value: number | null) => value ?? NaN;

/** Adds those that are new, and keeps the newest ones. */
function added<Kind extends { number: number }>(kept: Kind[], others: Kind[] | undefined): Kind[] {
  const last = kept.length > 0 ? kept[kept.length - 1].number : 0;
  return [...kept, ...(others ?? []).filter(({ number }) => number > last)].slice(-mostKept);
}

export class Session {
  readonly persons = new Map<number, Person>();
  /** [s] since the session began. */
  now = 0;
  sources: string[] = [];
  boundaries: Boundary[] = [];
  scopes: string[] = [];
  verdicts: Verdict[] = [];
  warnings: Warning[] = [];
  room: Room | null = null;
  input: Input | null = null;
  private sourceNames: string[] = [];

  /** Takes the facts, which the server sends to a page that begins. */
  takeFacts(text: string): void {
    this.takeCommon(JSON.parse(text) as Common);
  }

  /** Takes an event since then. */
  takeNews(text: string): void {
    const news = JSON.parse(text) as News;
    this.now = news.now / nanoseconds;
    this.takeCommon(news);
    if (news.input) this.input = news.input;
    for (const id of news.left ?? []) this.persons.delete(id);
    for (const raw of news.persons ?? []) this.takePerson(raw);
    for (const person of this.persons.values()) this.forgetOld(person);
    this.removeWhoLeft();
  }

  /** Returns the plain words for a source of the library. */
  sourceName(source: string): string {
    return this.sourceNames[this.sources.indexOf(source)] ?? source;
  }

  private takeCommon(common: Common): void {
    this.sources = common.sources ?? this.sources;
    this.sourceNames = common.sourceNames ?? this.sourceNames;
    this.boundaries = common.boundaries ?? this.boundaries;
    this.scopes = common.scopes ?? this.scopes;
    this.verdicts = added(this.verdicts, common.verdicts);
    this.warnings = added(this.warnings, common.warnings);
    this.room = common.room ?? this.room;
  }

  private takePerson(raw: RawPerson): void {
    const person = this.persons.get(raw.id) ?? { id: raw.id, name: "", moments: [] };
    person.name = raw.name || person.name;
    const time = raw.time / nanoseconds;
    if (person.moments.length > 0 && time < lastMoment(person).time) return; // sent again after a new connection
    person.moments.push(this.moment(raw, time));
    this.persons.set(raw.id, person);
  }

  private moment(raw: RawPerson, time: number): Moment {
    const { updates, seen, valence, attention, zone, pleasure, ease } = raw;
    return {
      time,
      updates,
      seen,
      valence: finite(valence[0]),
      valenceConfidence: finite(valence[1]),
      valenceKnown: valence[2],
      attention: finite(attention[0]),
      attentionConfidence: finite(attention[1]),
      attentionKnown: attention[2],
      zone,
      pleasure,
      ease: { level: finite(ease[0]), confidence: finite(ease[1]), word: ease[2] },
      inputs: Object.entries(raw.inputs),
      forces: raw.forces.map(([source, quantity, target, weight, before, after]) => ({
        source: this.sources[source] ?? "",
        quantity: quantities[quantity],
        target,
        weight,
        before,
        after,
      })),
    };
  }

  /** Removes persons who left while the page was not connected, so that it got no news of it. */
  private removeWhoLeft(): void {
    const oldest = this.now - shownTime - latestLeave;
    for (const person of this.persons.values()) if (lastMoment(person).time < oldest) this.persons.delete(person.id);
  }

  /** Keeps the last minute, and the last moment of all. */
  private forgetOld({ moments }: Person): void {
    let old = Math.max(0, moments.length - mostMoments);
    while (old < moments.length - 1 && moments[old + 1].time < this.now - shownTime) ++old;
    moments.splice(0, old);
  }
}
