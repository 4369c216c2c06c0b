// The readings that a page shows, in words.

import { element } from "./dom";
import { plain, signed } from "./text";

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

/** A number for people; the exact one stays there for programs. */
export function number(key: string, value: number, text: string): HTMLElement {
  return element("span", { "data-key": key, "data-value": String(value) }, text);
}

export function state(key: string, text: string): HTMLElement {
  return element("span", { "data-key": key }, text);
}

export function line(name: string, words: (Node | string)[], value: Node): HTMLElement {
  return element("div", {}, element("dt", {}, name), element("dd", { class: "words" }, ...words), element("dd", {}, value));
}

export function sureness(key: string, confidence: number): (Node | string)[] {
  return ["confidence ", number(key, confidence, plain(confidence))];
}

/** Returns a line for each reading that was observed. */
export function readingLines(inputs: [string, number][]): HTMLElement[] {
  return inputs
    .filter(([name, value]) => readings[name] && !Number.isNaN(value))
    .map(([name, value]) => line(readings[name].name, [], number(name, value, readings[name].text(value))));
}
