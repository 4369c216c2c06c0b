import { expect, test } from "vitest";
import { line, number, readingLines, state, sureness } from "../../shared/readings";

test.each([
  ["smile", 0.256, "smile", "0.26"],
  ["joy", 0.5, "joy", "0.50"],
  ["sorrow", 0.5, "sorrow", "0.50"],
  ["anger", 0.5, "anger", "0.50"],
  ["surprise", 0.5, "surprise", "0.50"],
  ["calm", 0.5, "calm", "0.50"],
  ["voiceJoy", 0.5, "voice: joy", "0.50"],
  ["voiceSorrow", 0.5, "voice: sorrow", "0.50"],
  ["voiceAnger", 0.5, "voice: anger", "0.50"],
  ["voiceCalm", 0.5, "voice: calm", "0.50"],
  ["headYaw", -12.34, "head yaw", "−12.3°"],
  ["headPitch", 5, "head pitch", "+5.0°"],
  ["gazeYaw", 1, "gaze yaw", "+1.0°"],
  ["gazePitch", 1, "gaze pitch", "+1.0°"],
  ["distance", 1.234, "distance", "1.23 m"],
  ["headHeight", 1.5, "head height", "1.50 m"],
  ["speaking", 1, "speaks", "yes"],
  ["speaking", 0, "speaks", "no"],
  ["speech", -0.5, "words", "−0.50"],
  ["touch", 1, "touch", "pleasant"],
  ["touch", 0, "touch", "unpleasant"],
  ["context", 2, "context", "+2"],
])("The reading %s of %d is a line: %s %s", (key, value, name, text) => {
  const [shown, ...others] = readingLines([[key, value]]);
  expect(others).toEqual([]);
  expect(shown.outerHTML).toBe(
    `<div><dt>${name}</dt><dd class="words"></dd><dd><span data-key="${key}" data-value="${value}">${text}</span></dd></div>`,
  );
});

test("A reading that was not observed, or that the page does not know, has no line", () => {
  expect(readingLines([["smile", NaN], ["bloodPressure", 1]])).toEqual([]);
});

test("A line has a name, words and a value", () => {
  expect(line("zone", ["so ", "it is"], state("zone", "<up>")).outerHTML).toBe(
    '<div><dt>zone</dt><dd class="words">so it is</dd><dd><span data-key="zone">&lt;up&gt;</span></dd></div>',
  );
});

test("A number keeps its exact value for programs", () => {
  expect(number("valence", 0.123456789, "0.12").outerHTML).toBe('<span data-key="valence" data-value="0.123456789">0.12</span>');
});

test("Sureness is a confidence with two decimals", () => {
  const [word, shown] = sureness("ease", 0.5);
  expect(word).toBe("confidence ");
  expect((shown as HTMLElement).outerHTML).toBe('<span data-key="ease" data-value="0.5">0.50</span>');
});
