// The charts of one person.

import uPlot from "uplot";
import { ChartGroup, ChartOptions, gapsBeyond, measuringAxis, timeAxis, valueAxis, withoutNaN } from "../shared/chartgroup";
import { attentionOptions, valenceOptions, withBand } from "../shared/bands";
import { Change, Person, Recording, sourceName, verdictIn } from "./data";
import { element } from "../shared/dom";
import { binned, byStrength, changeOptions, stacked } from "./changes";
import { addComparison } from "./comparison";
import { Lane, Mark, ribbonOptions, segmentsOf } from "../shared/ribbons";
import { signed } from "../shared/text";
import { cssColor, Look, swatch, lineSwatch } from "../shared/theme";
import { coderLanes, coderLegend, coderLines, codersNote } from "./coders";
import { addSaveButtons, FileKind } from "../shared/save";
import { sourceLook } from "../shared/sources";
import { pleasureLook, zoneLook } from "../shared/statelooks";
import { FigureName } from "./tables";

/** The result of an update counts until the next one, but at most for so long [s]. */
const longestHold = 1;
const pixelsPerBar = 7;

/** Returns how many bars fit side by side into so many pixels. */
export function barsIn(width: number): number {
  return Math.max(10, Math.round(width / pixelsPerBar));
}

interface Line {
  input: string;
  name: string;
  color: string;
  dash?: number[];
}

interface InputChart {
  title: string;
  unit: string;
  range: [number, number] | null;
  lines: Line[];
}

const inputCharts: InputChart[] = [
  {
    title: "Face",
    unit: "",
    range: [0, 1],
    lines: [
      { input: "smile", name: "smile", color: "source-0" },
      { input: "joy", name: "joy", color: "source-2", dash: [7, 3] },
      { input: "sorrow", name: "sorrow", color: "source-1", dash: [2, 3] },
      { input: "anger", name: "anger", color: "source-3", dash: [9, 3, 2, 3] },
      { input: "surprise", name: "surprise", color: "source-4", dash: [4, 4] },
      { input: "calm", name: "calm", color: "source-6", dash: [1, 2] },
    ],
  },
  {
    title: "Voice",
    unit: "",
    range: [0, 1],
    lines: [
      { input: "voiceJoy", name: "joy", color: "source-2", dash: [7, 3] },
      { input: "voiceSorrow", name: "sorrow", color: "source-1", dash: [2, 3] },
      { input: "voiceAnger", name: "anger", color: "source-3", dash: [9, 3, 2, 3] },
      { input: "voiceCalm", name: "calm", color: "source-6", dash: [1, 2] },
    ],
  },
  {
    title: "Yaw",
    unit: "°",
    range: null,
    lines: [
      { input: "headYaw", name: "head (positive: to their own right)", color: "source-0" },
      { input: "gazeYaw", name: "gaze (positive: to their own left)", color: "source-1", dash: [5, 3] },
    ],
  },
  {
    title: "Pitch",
    unit: "°",
    range: null,
    lines: [
      { input: "headPitch", name: "head (positive: up)", color: "source-0" },
      { input: "gazePitch", name: "gaze (positive: up)", color: "source-1", dash: [5, 3] },
    ],
  },
  {
    title: "Distance",
    unit: " m",
    range: null,
    lines: [{ input: "distance", name: "from the robot", color: "source-0" }],
  },
];

/** The actions in the charts of a person. */
export interface ViewActions {
  select(number: number): void;
  save(figure: FigureName, kind: FileKind): Promise<void>;
}

export class PersonView {
  private readonly redraws: (() => void)[] = [];
  private readonly longest: number;

  constructor(
    private readonly recording: Recording,
    private readonly person: Person,
    private readonly group: ChartGroup,
    private readonly estimates: HTMLElement,
    private readonly details: HTMLElement,
    private readonly actions: ViewActions,
  ) {
    this.longest = Math.max(longestHold, 2 * recording.stretch);
    estimates.replaceChildren();
    details.replaceChildren();
    this.addEstimates();
    const comparison = addComparison(details, recording, person, group, this.longest, actions.select);
    if (comparison) this.addSave(comparison, "comparison", "Persons compared");
    this.addInputs();
    this.addChanges();
  }

  /** Adapts to the range that is shown now. */
  rangeChanged(): void {
    for (const redraw of this.redraws) redraw();
  }

  private addEstimates(): void {
    const card = this.card(this.estimates, "estimates", "Valence and attention");
    card.classList.add("long");
    const { person } = this;
    const first = this.block(card);
    this.heading(first, "Valence", "from -1 (negative) to 1 (positive); a wide band is a low confidence");
    this.addLegend(first, "valence");
    const valences = withBand(person.time, person.valence, person.valenceConfidence, person.valenceKnown, -1);
    this.chart(first, valenceOptions(this.longest, coderLines(person, "valence")), valences);
    const second = this.block(card);
    this.heading(second, "Attention", "how much the person attends to the robot, from 0 to 1; a wide band is a low confidence");
    this.addLegend(second, "attention");
    const attentions = withBand(person.time, person.attention, person.attentionConfidence, person.attentionKnown, 0);
    this.chart(second, attentionOptions(this.longest, coderLines(person, "attention")), attentions);
    this.chart(second, ribbonOptions(this.stateLanes(), true), [person.time, person.valence]);
    second.append(
      element(
        "p",
        { class: "note" },
        "Zone: where the person looks, left and right being their own. ",
        element("span", { class: "keys" }, "Drag to zoom in, double-click to see all again."),
      ),
    );
    this.addCoders(card);
  }

  private addCoders(card: HTMLElement): void {
    const lanes = coderLanes(this.person, this.recording.length);
    if (lanes.length === 0) return;
    const block = this.block(card);
    block.append(element("h3", {}, "Labels of coders"));
    this.chart(block, ribbonOptions(lanes, true), [this.person.time, this.person.valence]);
    block.append(element("p", { class: "note", id: "coders" }, codersNote(this.person) ?? ""));
  }

  private addLegend(card: HTMLElement, quantity: string): void {
    const legend = coderLegend(this.person, quantity);
    if (legend) card.append(legend);
  }

  private addInputs(): void {
    const card = this.card(this.details, "inputs", "What came in");
    card.classList.add("long");
    this.heading(card, "What came in", "");
    for (const chart of inputCharts) this.addInputChart(card, chart);
    const lanes = this.eventLanes();
    if (lanes.length > 0) this.chart(card, ribbonOptions(lanes, true), [this.person.time, this.person.valence]);
    if (this.person.inputs.size === 0) card.append(element("p", { class: "note" }, "Nothing was observed."));
  }

  private addInputChart(card: HTMLElement, { title, unit, range, lines }: InputChart): void {
    const shown = lines.filter(({ input }) => this.person.inputs.has(input));
    if (shown.length === 0) return;
    const block = this.block(card);
    block.append(
      element("h3", {}, title),
      element(
        "ul",
        { class: "legend" },
        ...shown.map(({ name, color, dash }) => element("li", {}, lineSwatch(cssColor(color), dash), name)),
      ),
    );
    const data = shown.map(({ input }) => withoutNaN(this.person.inputs.get(input) ?? []));
    this.chart(
      block,
      {
        height: 104,
        scales: range ? { y: { range } } : {},
        axes: [
          timeAxis(false),
          range
            ? valueAxis(
                new Map([
                  [0, "0"],
                  [0.5, "0.5"],
                  [1, "1"],
                ]),
              )
            : measuringAxis(unit),
        ],
        series: [
          {},
          ...shown.map(({ color, dash }): uPlot.Series => ({
            stroke: cssColor(color),
            width: 1.5,
            dash,
            gaps: gapsBeyond(this.longest),
            points: { show: false },
          })),
        ],
      },
      [this.person.time, ...data],
    );
  }

  private addChanges(): void {
    const { valenceChanges, attentionChanges } = this.person;
    this.addChangesOf("valence", "up is towards positive", valenceChanges, 0.5, false);
    this.addChangesOf("attention", "up is towards the robot", attentionChanges, 0.1, true);
  }

  /** The scale is the same in all reports, so that bars can be compared; bars beyond `limit` are marked. */
  private addChangesOf(
    quantity: "valence" | "attention",
    hint: string,
    all: Change[],
    limit: number,
    isLast: boolean,
  ): void {
    const title = `What pulled ${quantity}`;
    const changes = byStrength(all);
    const card = this.card(this.details, `${quantity}-pulls`, title);
    this.heading(card, title, `how far each source moved it in an update, on average over a bar; ${hint}`);
    if (changes.length === 0) {
      card.append(element("p", { class: "note" }, "Nothing did."));
      return;
    }
    const looks = changes.map(({ source }) => sourceLook(source));
    card.append(this.sourceLegend(changes, looks));
    const data = () => {
      const bars = barsIn(card.clientWidth);
      return stacked(binned(this.person, changes, this.group.from, this.group.to, bars));
    };
    const chart = this.chart(card, changeOptions(looks, limit, isLast), data());
    this.redraws.push(() => {
      chart.setData(data(), false);
      chart.redraw();
      this.group.refresh(chart);
    });
  }

  private sourceLegend(changes: Change[], looks: Look[]): HTMLElement {
    return element(
      "ul",
      { class: "legend" },
      ...changes.map(({ source }, number) => element("li", {}, swatch(looks[number]), sourceName(this.recording, source))),
    );
  }

  private stateLanes(): Lane[] {
    const { person, recording } = this;
    const segments = (stateAt: (moment: number) => number, lookOf: Parameters<typeof segmentsOf>[3]) =>
      segmentsOf(person.time, this.longest, stateAt, lookOf);
    const hidden = -1;
    const zone = segments(
      (i) => (person.seen[i] ? person.zone[i] : hidden),
      (state) => (state === hidden ? null : zoneLook(recording.zoneNames[state])),
    );
    const pleasure = segments((i) => person.pleasure[i], (state) => pleasureLook(recording.pleasureNames[state]));
    const notVisible = segments(
      (i) => person.seen[i],
      (seen) =>
        seen ? null : { look: { color: cssColor("hidden"), hatch: "cross" }, texts: ["not visible", "hidden", "✕"] },
    );
    return [
      ...this.scopeLanes(),
      { name: "zone", segments: zone, marks: [] },
      { name: "pleasure", segments: pleasure, marks: [] },
      { name: "hidden", segments: notVisible, marks: [] },
    ];
  }

  /** Scopes that overlap are in lanes below each other. */
  private scopeLanes(): Lane[] {
    const lanes: Lane[] = [];
    for (const scope of this.recording.scopes) {
      const isWhole = scope.from <= 0 && scope.to >= this.recording.length;
      if (isWhole || scope.to <= scope.from) continue;
      const verdict = verdictIn(scope, this.person.id).verdict;
      const segment = {
        from: scope.from,
        to: scope.to,
        look: { color: cssColor("scope"), hatch: "solid" as const },
        texts: [`${scope.name}: ${verdict}`, scope.name, verdict],
      };
      const free = lanes.find(({ segments }) => segments[segments.length - 1].to <= scope.from);
      if (free) free.segments.push(segment);
      else if (lanes.length < 3) lanes.push({ name: lanes.length === 0 ? "scopes" : "", segments: [segment], marks: [] });
    }
    return lanes;
  }

  private eventLanes(): Lane[] {
    const { person } = this;
    const lanes: Lane[] = [];
    const speaking = person.inputs.get("speaking");
    if (speaking)
      lanes.push({
        name: "speaks",
        segments: segmentsOf(
          person.time,
          this.longest,
          (i) => (speaking[i] > 0 ? 1 : 0),
          (state) => (state ? { look: { color: cssColor("happening"), hatch: "rising" }, texts: ["speaks"] } : null),
        ),
        marks: [],
      });
    for (const [input, name] of [
      ["speech", "words"],
      ["touch", "touch"],
      ["context", "context"],
    ]) {
      const values = person.inputs.get(input);
      if (values) lanes.push({ name, segments: [], marks: marksOf(person.time, values, input) });
    }
    return lanes;
  }

  private card(target: HTMLElement, figure: FigureName, title: string): HTMLElement {
    const card = element("div", { class: "card" });
    target.append(card);
    this.addSave(card, figure, title);
    return card;
  }

  /** Adds a part of the card that is not divided between two sheets of paper. */
  private block(card: HTMLElement): HTMLElement {
    const block = element("div", { class: "block" });
    card.append(block);
    return block;
  }

  private addSave(card: HTMLElement, figure: FigureName, title: string): void {
    card.dataset.figure = figure;
    addSaveButtons(card, title, (kind) => this.actions.save(figure, kind));
  }

  private heading(card: HTMLElement, title: string, hint: string): void {
    card.append(element("h2", {}, title, " ", element("small", {}, hint)));
  }

  private chart(card: HTMLElement, options: ChartOptions, data: uPlot.AlignedData): uPlot {
    const target = element("div", { class: "chart" });
    card.append(target);
    if (hasNoData(data)) target.append(element("p", { class: "nodata" }, "no data"));
    return this.group.add(target, options, data);
  }
}

/** Returns whether no series has a number: axes alone would look like a line at 0 that is missed. */
function hasNoData([, ...series]: uPlot.AlignedData): boolean {
  return series.length > 0 && series.every((values) => Array.from(values).every((value) => value === null));
}

function marksOf(times: Float64Array, values: Float32Array, input: string): Mark[] {
  const marks: Mark[] = [];
  values.forEach((value, i) => {
    if (Number.isNaN(value)) return;
    const isTouch = input === "touch";
    const isPleasant = isTouch ? value > 0 : value >= 0;
    const sign = isPleasant ? "▲" : "▼";
    const words = isTouch ? (isPleasant ? "pleasant" : "unpleasant") : signed(value, 1);
    marks.push({ time: times[i], texts: [`${sign} ${words}`, sign] });
  });
  return marks;
}
