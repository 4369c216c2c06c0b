// The origin of the page: files, way of reading, warnings, options, version and date.

import { Origin, Recording } from "./data";
import { element } from "../shared/dom";

/** "12.3 MB", in powers of 1000. */
export function sizeText(bytes: number): string {
  const units = ["bytes", "kB", "MB", "GB", "TB"];
  let size = bytes;
  let unit = 0;
  while (size >= 999.5 && unit < units.length - 1) {
    size /= 1000;
    ++unit;
  }
  const decimals = unit > 0 && size < 99.95 ? 1 : 0;
  return `${size.toFixed(decimals)} ${bytes === 1 ? "byte" : units[unit]}`;
}

function fileText({ path, bytes, format }: Origin["files"][number]): string {
  const details = [bytes === null ? "" : sizeText(bytes), format === "" ? "" : `format ${format}`];
  return [path, ...details.filter((text) => text !== "")].join(", ");
}

/** "skeigiot 1.0.0, 2026-11-22 10:00 UTC". */
export function makerText({ version, made }: Origin): string {
  return [`skeigiot ${version}`.trim(), made].filter((text) => text !== "").join(", ");
}

function line(name: string, values: string[], key: string): HTMLElement | null {
  if (values.length === 0) return null;
  return element(
    "div",
    {},
    element("dt", {}, name),
    element("dd", { "data-key": key }, ...values.map((value) => element("p", {}, value))),
  );
}

export function originCard({ origin, notes }: Recording): HTMLElement {
  return element(
    "dl",
    { class: "origin", id: "origin", "aria-label": "How this page came about" },
    line(origin.files.length === 1 ? "file" : "files", origin.files.map(fileText), "files"),
    line("read as", origin.readAs, "readAs"),
    line("options", origin.options.length > 0 ? [origin.options.join(" ")] : ["none: all as by default"], "options"),
    line("messages", notes, "notes"),
    line("made by", [makerText(origin)], "maker"),
  );
}
