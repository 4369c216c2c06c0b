import { describe, expect, test } from "vitest";
import { element } from "../../shared/dom";
import { Drawings, figureOf } from "../../shared/figure";
import { SvgContext } from "../../shared/svgcontext";
import { lineSwatch, swatch } from "../../shared/theme";

const none: Drawings = { drawing: () => undefined };

/** Returns the texts of the figure with their places in pixels of the page, and its height. */
function read(svg: string) {
  const texts = [...svg.matchAll(/<g transform="matrix\(0.5 0 0 0.5 (\S+) (\S+)\)"><defs><\/defs><text x="0" y="(\S+)" ([^>]*)>([^<]*)</g)];
  return {
    height: Number(/height="(\d+)"/.exec(svg)?.[1]),
    texts: texts.map(([, x, y, below, attributes, text]) => ({
      text,
      x: Number(x),
      y: Number(y) + Number(below),
      size: Number(/font-size="(\d+)"/.exec(attributes)?.[1]),
      isBold: attributes.includes("font-weight"),
      color: /fill="color\(--(\w+)\)"/.exec(attributes)?.[1],
    })),
  };
}

describe("A figure", () => {
  test("of an empty card is an empty picture of the chart's width and margins", () => {
    expect(figureOf(element("div"), none, 100, [])).toBe(
      '<svg xmlns="http://www.w3.org/2000/svg" width="124" height="24" viewBox="0 0 124 24">' +
        '<rect width="100%" height="100%" fill="color(--surface)"/></svg>\n',
    );
  });

  test("has the heading, its hint, and headings of parts", () => {
    const card = element(
      "div", {},
      element("h2", {}, "  Valence ", element("small", {}, "from -1")),
      element("div", { class: "block" }, element("h3", {}, "Labels")),
      element("p", {}, "is left out"),
    );
    expect(read(figureOf(card, none, 400, []))).toEqual({
      texts: [
        { text: "Valence", x: 12, y: 31, size: 15, isBold: true, color: "text" },
        { text: "from -1", x: 12, y: 48, size: 12, isBold: false, color: "muted" },
        { text: "Labels", x: 12, y: 66, size: 13, isBold: true, color: "text" },
      ],
      height: 83,
    });
  });

  test("has no hint where the heading has none, and no title where it is empty", () => {
    expect(read(figureOf(element("div", {}, element("h2", {}, "A")), none, 100, [])).texts.map(({ text }) => text)).toEqual(["A"]);
    const hint = element("div", {}, element("h2", {}, element("small", {}, "b")));
    expect(read(figureOf(hint, none, 100, [])).texts.map(({ text, y }) => [text, y])).toEqual([["b", 28]]);
  });

  test("has the caption below, broken where it is too wide", () => {
    // A letter is 5.5 px wide, and there is room for 110 px: 20 letters.
    const { texts, height } = read(figureOf(element("div"), none, 110, ["twelve words and one more", "x".repeat(30), "short"]));
    expect(texts.map(({ text, y, size, color, x }) => [text, y, size, color, x])).toEqual([
      ["twelve words and one", 23, 11, "muted", 12],
      ["more", 39, 11, "muted", 12],
      ["x".repeat(30), 55, 11, "muted", 12],
      ["short", 71, 11, "muted", 12],
    ]);
    expect(height).toBe(88);
  });

  test("measures a bold text as bold", () => {
    const card = element("div", {}, element("h3", {}, "aaaa bbbb"));
    expect(read(figureOf(card, none, 60, [])).texts.map(({ text }) => text)).toEqual(["aaaa bbbb"]);
    expect(read(figureOf(card, none, 58, [])).texts.map(({ text }) => text)).toEqual(["aaaa", "bbbb"]);
  });

  test("has the legend in lines, with its pictures", () => {
    const item = (text: string, picture: Node | null) => element("li", {}, picture, text);
    const card = element(
      "div", {},
      element("ul", { class: "legend" }, item("smile", swatch({ color: "red", hatch: "solid" })), item("joy", lineSwatch("blue")), item("none", null), item("other", element("b"))),
    );
    expect(figureOf(card, none, 150, []).replace(/<\/g>/g, "</g>\n")).toMatchSnapshot();
  });

  test("breaks the legend before an item that is too wide, but not before the first one", () => {
    const items = (...texts: string[]) => element("div", {}, element("ul", { class: "legend" }, ...texts.map((text) => element("li", {}, text))));
    // A letter is 6 px wide, and an item 5 px more, with 14 px to the next.
    const places = (width: number, ...texts: string[]) => read(figureOf(items(...texts), none, width, [])).texts.map(({ x, y }) => [x, y]);
    expect(places(66, "abc", "abc")).toEqual([[17, 21], [54, 21]]);
    expect(places(60, "abc", "abc")).toEqual([[17, 21], [54, 21]]);
    expect(places(59, "abc", "abc")).toEqual([[17, 21], [17, 40]]);
    expect(places(10, "abcdef", "abc")).toEqual([[17, 21], [17, 40]]);
  });

  test("has the charts of the card, as they are drawn", () => {
    const chart = element("div", { class: "chart" });
    const drawing = new SvgContext(200, 80);
    drawing.fillRect(0, 0, 1, 1);
    const drawings: Drawings = { drawing: (target) => (target === chart ? drawing : undefined) };
    const card = element("div", {}, chart, element("div", { class: "chart" }));
    const svg = figureOf(card, drawings, 100, ["below"]);
    expect(svg).toContain(`<g transform="matrix(0.5 0 0 0.5 12 12.00)">${drawing.content()}</g>`);
    expect(svg.match(/<g /g)?.length).toBe(2);
    expect(read(svg).texts.map(({ text, y }) => [text, y])).toEqual([["below", 63]]);
  });

  test("says in the middle of a chart that it has no data", () => {
    const card = element("div", {}, element("div", { class: "chart" }, element("p", { class: "nodata" }, "no data")));
    const svg = figureOf(card, { drawing: () => new SvgContext(200, 80) }, 100, ["below"]);
    expect(read(svg).texts.map(({ text, x, y, size, color }) => [text, x, y, size, color])).toEqual([
      ["no data", 41, 32, 12, "muted"],
      ["below", 12, 63, 11, "muted"],
    ]);
  });
});
