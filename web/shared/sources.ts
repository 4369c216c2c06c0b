// Each source of forces has one look, in every recording and on every page.

import { Look, numberedLook } from "./theme";

/** By the library's names; the first eight have colours of their own. */
const known = [
  "Face characteristics",
  "Voice emotion",
  "Body Language",
  "Smile",
  "Asr emotion",
  "Touch emotion",
  "No observation",
  "Gaze and head based attention",
  "Context emotion",
  "Not visible",
  "Points confidence",
  "Distance limitation",
  "Height limitation",
  "Okao and robot movement limits",
  "User is speaking",
  "Winner unknown",
];

const otherLooks = 48;

/** Returns a number that depends only on the name. */
function numberOf(name: string): number {
  let number = 0;
  for (let i = 0; i < name.length; ++i) number = (31 * number + name.charCodeAt(i)) % 65521;
  return number;
}

export function sourceLook(name: string): Look {
  const place = known.indexOf(name);
  return numberedLook(place >= 0 ? place : known.length + (numberOf(name) % otherLooks));
}
