// How states of a person are drawn in ribbons.

import { zoneArrow, zoneWord } from "./text";
import { cssColor, Look } from "./theme";

export function zoneLook(name: string): { look: Look; texts: string[] } {
  if (name === "Unknown") return { look: { color: cssColor("nowhere"), hatch: "dots" }, texts: ["no zone", "?"] };
  const texts = [zoneWord(name), zoneArrow(name)];
  if (name === "LookingAtRobot") return { look: { color: cssColor("robot"), hatch: "solid" }, texts };
  return { look: { color: cssColor("elsewhere"), hatch: "solid" }, texts };
}

export function pleasureLook(name: string): { look: Look; texts: string[] } {
  switch (name) {
    case "positive":
      return { look: { color: cssColor("positive"), hatch: "solid" }, texts: ["positive", "+"] };
    case "negative":
      return { look: { color: cssColor("negative"), hatch: "rising" }, texts: ["negative", "−"] };
    case "neutral":
      return { look: { color: cssColor("neutral"), hatch: "solid" }, texts: ["neutral", "0"] };
    default:
      return { look: { color: cssColor("nowhere"), hatch: "dots" }, texts: ["unknown", "?"] };
  }
}
