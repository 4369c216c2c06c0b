import { describe, expect, test } from "vitest";
import { coderLanes, coderLegend, coderLines, codersAt, codersNote, valueAt } from "../../report/coders";
import { fakeChart } from "../charts";
import { newContext } from "../drawing";
import { doubles, floats, labelLine, person, ribbon } from "./recordings";

const coded = (ribbons: object[], lines: object[] = []) => person({}, { ribbons, lines });

describe("The lanes of coders", () => {
  const one = (quantity: string, ...texts: string[]) =>
    coderLanes(coded([ribbon({ quantity, texts, from: doubles(...texts.keys()), to: doubles(...texts.map((_, i) => i + 1)) })]), 4).flatMap(({ segments }) => segments);

  test("have labels as the estimate has states", () => {
    const lanes = coderLanes(coded([ribbon()]), 4);
    expect(lanes.length).toBe(1);
    expect(lanes[0].name).toBe("Bo");
    expect(lanes[0].marks).toEqual([]);
    expect(lanes[0].segments).toEqual([
      { from: 0, to: 1, look: { color: "color(--positive)", hatch: "solid" }, texts: ["positive", "+"] },
      { from: 1, to: 2, look: { color: "color(--negative)", hatch: "rising" }, texts: ["negative", "−"] },
      { from: 2, to: 2.008, look: { color: "color(--hidden)", hatch: "cross" }, texts: ["contradiction", "✕"] },
    ]);
  });

  test("have zones, engagement and other labels", () => {
    expect(one("zone", "LookingUp")[0]).toMatchObject({ look: { color: "color(--elsewhere)" }, texts: ["up", "↑"] });
    expect(one("engagement", "engaged", "not-engaged").map(({ look, texts }) => [look, texts])).toEqual([
      [{ color: "color(--robot)", hatch: "solid" }, ["engaged", "●"]],
      [{ color: "color(--elsewhere)", hatch: "solid" }, ["not engaged", "○"]],
    ]);
    expect(one("", "laughs")[0]).toMatchObject({ look: { color: "color(--scope)", hatch: "solid" }, texts: ["laughs"] });
  });

  test("are below each other where labels overlap, three at most", () => {
    const texts = ["a", "b", "c", "d", "e"];
    const lanes = coderLanes(coded([ribbon({ quantity: "", texts, from: doubles(0, 0.5, 0.6, 0.7, 1), to: doubles(1, 2, 2, 2, 3) })]), 4);
    expect(lanes.map(({ name, segments }) => [name, segments.map(({ texts: [text] }) => text)])).toEqual([
      ["Bo", ["a", "e"]],
      ["", ["b"]],
      ["", ["c"]],
    ]);
  });
});

describe("The note on coders", () => {
  test("names what each coder has labelled", () => {
    expect(codersNote(coded([ribbon(), ribbon({ quantity: "", tier: "eyes" }), ribbon({ coder: "Cy", quantity: "" }), ribbon()]))).toBe(
      "Labels of coders, in the order of their ribbons. Bo: pleasure, eyes; Cy: labels.",
    );
  });

  test("is not there without ribbons", () => {
    expect(codersNote(coded([], [labelLine()]))).toBeNull();
  });
});

describe("The lines of coders", () => {
  const lines = [labelLine(), labelLine({ quantity: "attention" }), labelLine({ coder: "Cy" }), ...["D", "E", "F"].map((coder) => labelLine({ coder }))];

  test("have a legend", () => {
    expect(coderLegend(coded([], lines), "valence")).toMatchSnapshot();
    expect(coderLegend(coded([], []), "valence")).toBeNull();
    expect(coderLegend(coded([], [labelLine()]), "attention")).toBeNull();
  });

  test("are drawn over the chart, each with a look of its own, with gaps where there is no value", () => {
    const [plugin, ...others] = coderLines(coded([], lines), "valence");
    expect(others).toEqual([]);
    const { context, log } = newContext();
    (plugin.hooks.draw as (chart: unknown) => void)(fakeChart(context));
    expect(log.slice(0, 15)).toEqual([
      "save", "beginPath", "rect 100 20 500 200", "clip", "strokeStyle = color(--source-3)", "lineWidth = 4", "setLineDash [12 6]", "beginPath",
      "moveTo 105 120", "lineTo 110 95", "moveTo 125 145", "stroke", "restore", "save", "beginPath",
    ]);
    expect(log.filter((text) => text.startsWith("strokeStyle")).map((text) => text.slice(-3))).toEqual(["-3)", "-4)", "-2)", "-7)", "-3)"]);
    expect(log.filter((text) => text.startsWith("setLineDash"))).toEqual([
      "setLineDash [12 6]", "setLineDash [4 6]", "setLineDash [18 6 4 6]", "setLineDash [8 8]", "setLineDash [12 6]",
    ]);
    expect(coderLines(coded([], lines), "engagement")).toEqual([]);
  });
});

describe("The value of a line", () => {
  const value = (at: number, ...times: number[]) =>
    valueAt({ coder: "", quantity: "", time: Float64Array.from(times), value: Float32Array.from(times, (_, i) => i * i) }, at);

  test.each([
    [0.5, 0.5],
    [1, 1],
    [1.75, 1.75],
    [3.5, 3.5],
    [0, 0],
    [4, 4],
    [-0.1, NaN],
    [4.1, NaN],
  ])("at %d is between those beside it: %d", (at, expected) => {
    expect(value(at, 0, 1, 4)).toBe(expected);
  });

  test("of no points is unknown, and of one is there at its time", () => {
    expect(value(1)).toBeNaN();
    expect(value(1, 1)).toBe(0);
  });
});

describe("The labels at a time", () => {
  test("are those that last then, or are of that moment, by coder and subject", () => {
    const ribbons = [ribbon(), ribbon({ coder: "Cy", quantity: "zone", texts: ["LookingUp", "LookingDown", "LookingUp"], from: doubles(0, 0, 3), to: doubles(2, 2, 4) })];
    const lines = [labelLine(), labelLine({ quantity: "attention", time: doubles(1, 3), value: floats(0, 1) })];
    const at = (time: number) => codersAt(coded(ribbons, lines), time).map(({ name, text }) => `${name}: ${text}`);
    expect(at(0)).toEqual(["Bo, pleasure: positive", "Cy, zone: up, down"]);
    expect(at(1)).toEqual(["Bo, pleasure: negative", "Cy, zone: up, down", "Bo, valence: +0.50", "Bo, attention: 0.00"]);
    expect(at(2)).toEqual(["Bo, pleasure: contradiction", "Bo, attention: 0.50"]);
    expect(at(2.25)).toEqual(["Bo, pleasure: contradiction", "Bo, attention: 0.63"]);
    expect(at(2.75)).toEqual(["Bo, attention: 0.88"]);
    expect(at(1.9)).toContain("Bo, pleasure: negative, contradiction");
    expect(at(5)).toEqual([]);
  });
});
