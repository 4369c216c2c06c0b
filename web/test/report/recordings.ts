// Small recordings, in the form of the page's data.

import { Person, readRecording, Recording } from "../../report/data";

const packed = (values: ArrayBufferView) => Buffer.from(values.buffer).toString("base64");
export const doubles = (...values: number[]) => packed(Float64Array.from(values));
export const floats = (...values: number[]) => packed(Float32Array.from(values));
export const counts = (...values: number[]) => packed(Uint32Array.from(values));
export const bytes = (...values: number[]) => packed(Uint8Array.from(values));

export const summary = {
  from: 0,
  to: 3,
  updates: 7,
  visible: 0.5,
  valence: -0.25,
  valenceConfidence: 0.5,
  attention: 0.75,
  attentionConfidence: 0.5,
  engaged: 0.4,
  strictlyEngaged: 0.3,
  zones: {},
  pleasures: {},
};

/** Four moments, a second apart: hidden in the last one, and unknown in the first one. */
export function rawPerson(more: object = {}): object {
  return {
    id: 3,
    name: "Ada",
    summary,
    moments: 4,
    time: doubles(0, 1, 2, 3),
    updates: counts(1, 2, 1, 3),
    valence: floats(0, 0.5, -0.25, -0.75),
    valenceConfidence: floats(0, 0.5, 1, 0.25),
    attention: floats(0, 1, 0.5, 0.25),
    attentionConfidence: floats(0, 0.25, 0.5, 0.75),
    zone: bytes(0, 1, 2, 2),
    pleasure: bytes(0, 1, 2, 2),
    seen: bytes(1, 1, 1, 0),
    valenceKnown: bytes(0, 1, 1, 1),
    attentionKnown: bytes(0, 1, 1, 1),
    inputs: { smile: floats(NaN, 0.5, 0.25, NaN), speech: floats(NaN, 0.5, NaN, -0.5), touch: floats(NaN, 1, 0, NaN) },
    valenceChanges: { 1: floats(0, 0.5, -0.5, 0), 0: floats(0, 0.25, -0.25, -0.75) },
    attentionChanges: { 0: floats(0, 1, -0.5, -0.25) },
    forces: {
      ends: counts(0, 2, 3, 3),
      source: bytes(0, 1, 1),
      quantity: bytes(0, 4, 1),
      target: floats(1, 0.5, -1),
      weight: floats(0.5, 0.25, 0.75),
      before: floats(0, 0, 0.5),
      after: floats(0.5, 1, 0.25),
    },
    ...more,
  };
}

export const ribbon = (more: object = {}) => ({
  coder: "Bo",
  quantity: "pleasure",
  from: doubles(0, 1, 2),
  to: doubles(1, 2, 2),
  texts: ["positive", "negative", "contradiction"],
  ...more,
});

export const labelLine = (more: object = {}) => ({
  coder: "Bo",
  quantity: "valence",
  time: doubles(0.5, 1, 2, 2.5),
  value: floats(0, 0.5, NaN, -0.5),
  ...more,
});

export function recording(more: object = {}, persons: object[] = [rawPerson()]): Recording {
  return readRecording(
    JSON.stringify({
      inputs: [],
      notes: [],
      origin: { files: [], readAs: [], options: [], version: "1.0.0", made: "2026-11-22 10:00 UTC" },
      trust: "",
      begins: null,
      length: 4,
      updatesPerSecond: 10,
      gaps: { count: 0, longest: 0, at: 0 },
      stretch: 0,
      zoneNames: ["Unknown", "LookingAtRobot", "LookingDownLeft"],
      pleasureNames: ["unknown", "positive", "negative"],
      sources: ["Smile", "Touch emotion"],
      sourceNames: ["The smile", "The touch"],
      boundaries: [],
      scopes: [],
      learned: [],
      video: null,
      labels: null,
      ambiance: { time: doubles(0, 1, 2), agitation: floats(0, 0.5, 1), excited: bytes(0, 0, 1) },
      persons,
      ...more,
    }),
  );
}

export const person = (more: object = {}, labels: object | null = null): Person =>
  recording({ labels: labels && { warnings: ["odd label"], persons: [{ person: 3, ribbons: [], lines: [], ...labels }] } }, [rawPerson(more)]).persons[0];
