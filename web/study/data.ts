// The data of the page, as the library writes them.

/** Ends of an interval. */
export type Interval = [number, number];

/** Number of a participant in the list, value, and the number of summaries of which the value is the mean. */
export type Dot = [number, number, number];

export interface Group {
  value: string;
  role: string;
  count: number;
  mean: number;
  interval: Interval | null;
  persons: Dot[];
}

export interface Comparison {
  quantity: Quantity;
  scope: string;
  by: string;
  groupCount: number;
  groups: Group[];
}

export type Quantity = "valence" | "attention" | "engaged" | "seen";

/** Values in thousandths. */
export type Thousandths = (number | null)[];

/** Number of the scope, its start and end [s], valence and attention in thousandths. */
export type ScopeMeans = [number, number, number, number | null, number | null];

export interface SessionPerson {
  id: number;
  name: string;
  role: string;
  participant: string;
  valence?: number | null;
  attention?: number | null;
  valenceCurve?: Thousandths;
  attentionCurve?: Thousandths;
  scopes?: ScopeMeans[];
  moreScopes?: number;
}

export interface Session {
  name: string;
  participant: string;
  condition: string;
  status: string;
  length: number | null;
  personCount: number;
  persons: SessionPerson[];
}

export interface Agreement {
  words: string[];
  counts: number[][];
  persons: number;
  unknown: number;
  accuracy: number | null;
  kappa: number | null;
  interval: Interval | null;
}

interface Rows {
  all: number;
  rows: string[][];
}

export interface Study {
  study: [string, string][];
  options: [string, string][];
  files: string[];
  counts: {
    sessions: number;
    complete: number;
    cutShort: number;
    failed: number;
    leftOut: number;
    persons: number;
    conditions: number;
    scopes: number;
    length: number;
  };
  scopes: string[];
  factors: string[];
  factorCount: number;
  limits: { pictures: number; personsOfSession: number; scopesOfPicture: number };
  comparisons: Comparison[];
  participants: string[];
  labels: { verdicts: { scope: string; counts: Record<string, number> }[]; agreement: Agreement | null };
  troubles: { sessions: Rows; warnings: Rows; nobody: number; valenceUnknown: number; attentionUnknown: number };
  pictures: { sessions: Session[]; stretches: number; scopeNames: string[]; withoutPicture: number };
}

export const wholeRecording = "whole recording";

export function valueIn(pairs: [string, string][], name: string): string {
  return pairs.find(([other]) => other === name)?.[1] ?? "";
}

export function titleOf({ study, files }: Study): string {
  return valueIn(study, "name") || files.join(" + ") || "Study";
}

/**
 * Returns the name of a group. An empty value or role is "without ..." beside others. The name is "all" if the study has
 * no such placeholder and persons have no role.
 */
export function groupName({ value, role }: Group, { by, groups }: Comparison): string {
  const part = (own: string, kind: string, others: string[]) =>
    own === "" && others.some((other) => other !== "") ? `without ${kind}` : own;
  const parts = [
    part(value, by, groups.map((group) => group.value)),
    part(role, "role", groups.map((group) => group.role)),
  ];
  return parts.filter((text) => text !== "").join(", ") || "all";
}

export function personOf({ id, name, role }: SessionPerson): string {
  return name || role || `person ${id}`;
}

/** Returns the options that are set, without those of the results; empty if all are the defaults. */
export function optionsText({ options }: Study): string {
  return options
    .filter(([name, value]) => !(["updates", "forces"].includes(name) && value === "false"))
    .map(([name, value]) => `${name} = ${value}`)
    .join(", ");
}

/** Returns the lines below a figure: study, files, options and version. */
export function captionOf(study: Study, ...lines: string[]): string[] {
  return [
    ...lines,
    `Study ${titleOf(study)}, ${study.files.join(" + ")}. Options: ${optionsText(study) || "the defaults"}. ` +
      `Made by skeigiot ${valueIn(study.study, "version")}.`,
  ];
}
