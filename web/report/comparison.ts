// All persons on one axis, and their means in one table.

import uPlot from "uplot";
import { ChartGroup, ChartOptions, gapsBeyond, timeAxis, valueAxis } from "../shared/chartgroup";
import { Person, personName, Recording } from "./data";
import { element, table } from "../shared/dom";
import { clock, percent, plain, signed } from "../shared/text";
import { cssColor, lineSwatch } from "../shared/theme";

/** At most so many persons have a colour each; of more, only the selected one has. */
const mostColors = 8;
const dashes: number[][] = [[], [7, 3], [2, 3], [9, 3, 2, 3], [4, 4], [1, 2], [12, 4], [5, 2, 1, 2]];

interface Quantity {
  title: string;
  range: [number, number];
  labels: Map<number, string>;
  height: number;
  valueAt(person: Person, moment: number): number | null;
}

const quantities: Quantity[] = [
  {
    title: "Valence",
    range: [-1, 1],
    labels: new Map([
      [-1, "negative"],
      [0, "neutral"],
      [1, "positive"],
    ]),
    height: 150,
    valueAt: (person, i) => (person.valenceKnown[i] ? person.valence[i] : null),
  },
  {
    title: "Attention",
    range: [0, 1],
    labels: new Map([
      [0, "0"],
      [0.5, "0.5"],
      [1, "1"],
    ]),
    height: 120,
    valueAt: (person, i) => (person.attentionKnown[i] ? person.attention[i] : null),
  },
];

/** Puts the series of all persons over one axis of time, on which each has values at some times only. */
export function onOneAxis(persons: Person[], valueAt: Quantity["valueAt"]): uPlot.AlignedData {
  const times = Float64Array.from(new Set(persons.flatMap(({ time }) => Array.from(time)))).sort();
  const places = new Map<number, number>();
  times.forEach((time, place) => places.set(time, place));
  const series = persons.map((person) => {
    const values = new Array<number | null>(times.length).fill(null);
    person.time.forEach((time, moment) => (values[places.get(time) as number] = valueAt(person, moment)));
    return values;
  });
  return [times, ...series];
}

function lookOf(number: number, isSelected: boolean, count: number): { stroke: string; dash: number[]; width: number } {
  const width = isSelected ? 3 : 1.25;
  if (count > mostColors) return { stroke: cssColor(isSelected ? "accent" : "nowhere"), dash: [], width };
  return { stroke: cssColor(`source-${number}`), dash: dashes[number], width };
}

function optionsOf({ range, labels, height }: Quantity, looks: ReturnType<typeof lookOf>[], longest: number): ChartOptions {
  const series = looks.map(
    (look): uPlot.Series => ({ ...look, gaps: gapsBeyond(longest), spanGaps: true, points: { show: false } }),
  );
  return {
    height,
    scales: { y: { range: [range[0] - 0.03, range[1] + 0.03] } },
    axes: [timeAxis(true), valueAxis(labels)],
    cursor: { points: { show: false } },
    series: [{}, ...series],
  };
}

function rowOf(person: Person, swatch: HTMLElement, isSelected: boolean, select: () => void): (Node | string)[] {
  const { summary } = person;
  const button = element("button", { type: "button", class: "link", "aria-pressed": String(isSelected) }, personName(person));
  button.addEventListener("click", select);
  const ifKnown = (value: number | null, text: (known: number) => string) => (value === null ? "unknown" : text(value));
  return [
    element("span", { "data-row": String(person.id) }, swatch, button),
    `${clock(summary.from)} to ${clock(summary.to)}`,
    percent(summary.visible),
    ifKnown(summary.valence, signed),
    ifKnown(summary.attention, plain),
    ifKnown(summary.engaged, percent),
  ];
}

/** Adds the comparison, if there is more than one person, and returns its card. */
export function addComparison(
  target: HTMLElement,
  recording: Recording,
  selected: Person,
  group: ChartGroup,
  longest: number,
  select: (number: number) => void,
): HTMLElement | null {
  const { persons } = recording;
  if (persons.length < 2) return null;
  const chosen = persons.indexOf(selected);
  // The selected person is drawn last, over the others.
  const order = persons.map((_, number) => number).filter((number) => number !== chosen);
  order.push(chosen);
  const card = element("div", { class: "card long", id: "comparison" });
  target.append(card);
  card.append(
    element("h2", {}, "Persons compared ", element("small", {}, `${personName(selected)} is the thick line`)),
  );
  for (const quantity of quantities) {
    const chart = element("div", { class: "chart" });
    card.append(element("div", { class: "block" }, element("h3", {}, quantity.title), chart));
    const looks = order.map((number) => lookOf(number, number === chosen, persons.length));
    const data = onOneAxis(order.map((number) => persons[number]), quantity.valueAt);
    group.add(chart, optionsOf(quantity, looks, longest), data);
  }
  const rows = persons.map((person, number) => {
    const { stroke, dash } = lookOf(number, number === chosen, persons.length);
    return rowOf(person, lineSwatch(stroke, dash), number === chosen, () => select(number));
  });
  card.append(
    element(
      "div",
      { class: "scroll rows", tabindex: "0", role: "group", "aria-label": "Means of all persons" },
      table("", ["person", "present", "visible", "mean valence", "mean attention", "engaged"], rows, [2, 3, 4, 5]),
    ),
  );
  return card;
}
