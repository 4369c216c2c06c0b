// Cards of groups side by side: the chart, the person under the mouse, and the numbers as a table.

import { csvText } from "../shared/csv";
import { element, table } from "../shared/dom";
import { counted } from "../shared/text";
import { Drawn, drawOnPage, figureCard } from "./card";
import { captionOf, Comparison, Group, groupName, Quantity, Study, titleOf, wholeRecording } from "./data";
import { chartHeight, drawDots, groupsInRows, leavesLinksOut, mostLinked, PlacedDot, valueText } from "./dots";

const descriptions: Record<Quantity, string> = {
  valence: "mean of each person, from −1 (negative) to 1 (positive)",
  attention: "mean of each person, from 0 to 1",
  engaged: "share of the time in which the person looked at the robot",
  seen: "share of the time in which the person was seen",
};

const explanation =
  "Each dot is a person: the mean of the person's sessions in the group. Below the dots, a mark is the mean of the " +
  "persons, and a line its 95 % interval: percentiles of 1000 bootstrap resamples of persons (Efron and Tibshirani, " +
  "1993). The interval of few persons is too narrow. Thin lines link the dots of one person.";

/** Returns the dots, then a row for each group. */
export function csvOfGroups(study: Study, comparison: Comparison, caption: string[]): string {
  const { groups, quantity, scope, by } = comparison;
  const start = [quantity, ...(by === "scope" ? [] : [scope])];
  return csvText(
    {
      header: ["quantity", ...(by === "scope" ? [] : ["scope"]), "group", "role", "kind", "participant", "value", "count", "low", "high"],
      rows: groups.flatMap(({ value, role, persons, mean, interval, count }) => [
        ...persons.map(([participant, of, rows]) => [
          ...[...start, value, role, "person", study.participants[participant], of, rows, null, null],
        ]),
        [...start, value, role, "mean", "", mean, count, interval?.[0] ?? null, interval?.[1] ?? null],
      ]),
    },
    [`Groups by ${by}.`, ...caption],
  );
}

function tableOf(comparison: Comparison): HTMLElement {
  const { quantity } = comparison;
  const text = (value: number) => valueText(quantity, value, 3);
  const rows = groupsInRows(comparison).map((group) => [
    groupName(group, comparison),
    String(group.count),
    text(group.mean),
    group.interval ? `${text(group.interval[0])} to ${text(group.interval[1])}` : "one person: no interval",
  ]);
  return element(
    "div",
    { class: "scroll" },
    table("", [comparison.by, "persons", "mean", "95 % interval"], rows, [1, 2, 3]),
  );
}

/** Says which persons and groups the chart leaves out. */
function limitsOf(comparison: Comparison): string[] {
  const { groups, groupCount } = comparison;
  const lines: string[] = [];
  if (groupCount > groups.length) lines.push(`The page shows ${groups.length} of ${counted(groupCount, "group")}.`);
  if (groups.some(({ persons, count }) => persons.length < count))
    lines.push("Groups of many persons: dots are persons at equal distances in the order of their values; means and intervals are of all.");
  if (leavesLinksOut(comparison)) lines.push(`Lines link the dots of one person only between groups of ${mostLinked} persons or less.`);
  return lines;
}

/** Scopes are in the order in which sessions have them. */
function inOrder(study: Study, comparison: Comparison): Comparison {
  if (comparison.by !== "scope") return comparison;
  const place = ({ value }: Group) => study.scopes.indexOf(value);
  return { ...comparison, groups: [...comparison.groups].sort((one, other) => place(one) - place(other)) };
}

export function groupsCard(study: Study, unordered: Comparison, width: (card: HTMLElement) => number): { card: HTMLElement; show(): void } {
  const comparison = inOrder(study, unordered);
  const { quantity, scope, by } = comparison;
  const drawn: Drawn = {
    height: () => chartHeight(comparison),
    draw: (context, chartWidth) => void drawDots(context, chartWidth, comparison),
  };
  let placed: PlacedDot[] = []; // on the page; a figure that is saved has other places
  const chart = element("div", { class: "chart" });
  const dot = element("p", { class: "note dot", "aria-live": "polite" });
  const limits = limitsOf(comparison);
  const where = by === "scope" ? "by scope" : `${scope === wholeRecording ? "whole recording" : `scope ${scope}`}, by ${by}`;
  const name = quantity[0].toUpperCase() + quantity.slice(1);
  const caption = captionOf(study, explanation, ...limits);
  const card = figureCard(
    titleOf(study),
    {
      figure: `${by === "scope" ? "scopes-" : ""}${quantity}`,
      title: `${quantity}, ${where}`,
      caption,
      csv: () => csvOfGroups(study, comparison, caption),
    },
    new Map([[chart, drawn]]),
    element("h2", {}, `${name} `, element("small", {}, `${where}: ${descriptions[quantity]}`)),
    chart,
    dot,
    tableOf(comparison),
    ...limits.map((line) => element("p", { class: "note limit" }, line)),
  );

  /** Names the person whose dot is nearest to the mouse. */
  function pointAt({ offsetX, offsetY }: MouseEvent): void {
    let best: PlacedDot | undefined;
    let least = 100; // 10 px
    for (const one of placed) {
      const distance = (one.x - offsetX) ** 2 + (one.y - offsetY) ** 2;
      if (distance < least) [best, least] = [one, distance];
    }
    dot.textContent = best
      ? `${study.participants[best.participant]}: ${valueText(quantity, best.value, 3)}` +
        (best.rows > 1 ? `, mean of ${best.rows} summaries` : "")
      : "";
  }

  const label = `${name}, ${where}: ${counted(comparison.groups.length, "group")}; the table below has means and intervals`;
  return {
    card,
    show() {
      const onPage: Drawn = { ...drawn, draw: (context, chartWidth) => void (placed = drawDots(context, chartWidth, comparison)) };
      const canvas = drawOnPage(chart, onPage, width(card), label);
      canvas.addEventListener("mousemove", pointAt);
    },
  };
}

export const groupsNote = explanation;
