import { expect, test } from "vitest";
import { sourceLook } from "../../shared/sources";

test.each([
  ["Face characteristics", 0, "solid"],
  ["Voice emotion", 1, "rising"],
  ["Body Language", 2, "dots"],
  ["Smile", 3, "falling"],
  ["Asr emotion", 4, "rows"],
  ["Touch emotion", 5, "cross"],
  ["No observation", 6, "columns"],
  ["Gaze and head based attention", 7, "waves"],
  ["Context emotion", 0, "falling"],
  ["Not visible", 1, "rows"],
  ["Points confidence", 2, "cross"],
  ["Distance limitation", 3, "columns"],
  ["Height limitation", 4, "waves"],
  ["Okao and robot movement limits", 5, "solid"],
  ["User is speaking", 6, "rising"],
  ["Winner unknown", 7, "dots"],
])("The source %s has the colour %d and the pattern %s", (name, color, hatch) => {
  expect(sourceLook(name)).toEqual({ color: `color(--source-${color})`, hatch });
});

// The number of a name is the sum of its letters' codes times powers of 31, modulo 65521; its look is 16 plus that modulo 48.
test.each([
  ["a", 97], // 97
  ["ab", 97 * 31 + 98],
  ["abcd", (((97 * 31 + 98) * 31 + 99) * 31 + 100) % 65521],
])("Another source, %s, has a look that depends only on its name", (name, number) => {
  const look = 16 + (number % 48);
  const hatches = ["solid", "rising", "dots", "falling", "rows", "cross", "columns", "waves"];
  expect(sourceLook(name)).toEqual({
    color: `color(--source-${look % 8})`,
    hatch: hatches[(look + 3 * Math.floor(look / 8)) % 8],
  });
});
