import { describe, expect, test, vi } from "vitest";
import { pleasureLook, zoneLook } from "../../shared/statelooks";
import { cssColor, fillOf, font, Hatch, lineSwatch, lookOfPattern, numberedLook, patternTile, pictureOf, shortened, swatch } from "../../shared/theme";
import { logOf, newContext } from "../drawing";

test("A colour is a variable of the style sheet", () => {
  expect(cssColor("text")).toBe("color(--text)");
});

test("Texts are drawn in the font of the system", () => {
  expect(font()).toBe('11px system-ui, "DejaVu Sans", sans-serif');
  expect(font(20)).toBe('20px system-ui, "DejaVu Sans", sans-serif');
});

test("64 numbers have 64 looks", () => {
  const looks = Array.from({ length: 64 }, (_, number) => numberedLook(number));
  expect(new Set(looks.map(({ color, hatch }) => `${color} ${hatch}`)).size).toBe(64);
  expect(looks[0]).toEqual({ color: "color(--source-0)", hatch: "solid" });
  expect(looks[9]).toEqual({ color: "color(--source-1)", hatch: "rows" });
});

const start = ["fillStyle = red", "fillRect 0 0 12 12", "fillStyle = color(--surface)", "strokeStyle = color(--surface)", "lineWidth = 2.4", "beginPath"];
const dot = ["beginPath", "arc 6 6 2.4 0 6.28", "fill"];
const rising = ["moveTo -12 12", "lineTo 0 0", "moveTo 0 12", "lineTo 12 0", "moveTo 12 12", "lineTo 24 0"];
const falling = ["moveTo -12 0", "lineTo 0 12", "moveTo 0 0", "lineTo 12 12", "moveTo 12 0", "lineTo 24 12"];
const row = ["moveTo 0 6", "lineTo 12 6"];
const column = ["moveTo 6 0", "lineTo 6 12"];

test.each<[Hatch, string[]]>([
  ["solid", ["stroke"]],
  ["rising", [...rising, "stroke"]],
  ["falling", [...falling, "stroke"]],
  ["cross", [...rising, ...falling, "stroke"]],
  ["rows", [...row, "stroke"]],
  ["columns", [...column, "stroke"]],
  ["dots", ["stroke", ...dot]],
  ["waves", [...row, "stroke", ...dot]],
])("The tile of the pattern %s", (hatch, lines) => {
  const { size, draw } = patternTile({ color: "red", hatch });
  const { context, log } = newContext();
  draw(context);
  expect(size).toBe(12);
  expect(log).toEqual([...start, ...lines]);
});

describe("A fill", () => {
  test("without a pattern is the colour", () => {
    expect(fillOf({ color: "red", hatch: "solid" })).toBe("red");
  });

  test("with a pattern repeats its tile, and says of which look it is", () => {
    const look = { color: "red", hatch: "rows" as const };
    const pattern = fillOf(look) as unknown as { tile: HTMLCanvasElement; repetition: string };
    expect(pattern.repetition).toBe("repeat");
    expect([pattern.tile.width, pattern.tile.height]).toEqual([12, 12]);
    expect(logOf(pattern.tile)).toEqual([...start, ...row, "stroke"]);
    expect(lookOfPattern(pattern as unknown as CanvasPattern)).toBe(look);
    expect(lookOfPattern({} as CanvasPattern)).toBeUndefined();
  });

  test("is the colour where the browser has no patterns", () => {
    const noContext = vi.spyOn(HTMLCanvasElement.prototype, "getContext").mockReturnValue(null);
    expect(fillOf({ color: "red", hatch: "rows" })).toBe("red");
    noContext.mockReturnValue({ fillRect() {}, beginPath() {}, moveTo() {}, lineTo() {}, stroke() {}, createPattern: () => null } as never);
    expect(fillOf({ color: "red", hatch: "rows" })).toBe("red");
    noContext.mockRestore();
  });
});

describe("A small picture", () => {
  test("of a look is filled with it", () => {
    const canvas = swatch({ color: "red", hatch: "solid" }) as HTMLCanvasElement;
    expect(canvas.outerHTML).toBe('<canvas width="28" height="28" class="swatch" aria-hidden="true"></canvas>');
    expect(logOf(canvas)).toEqual(["fillStyle = red", "fillRect 0 0 28 28"]);
  });

  test("of a line has its dashes", () => {
    const canvas = lineSwatch("red", [3, 1]) as HTMLCanvasElement;
    expect(canvas.outerHTML).toBe('<canvas width="52" height="20" class="stroke" aria-hidden="true"></canvas>');
    expect(logOf(canvas)).toEqual([
      "scale 2 2", "strokeStyle = red", "lineWidth = 2", "setLineDash [3 1]", "beginPath", "moveTo 0 5", "lineTo 26 5", "stroke",
    ]);
    expect(logOf(lineSwatch("red") as HTMLCanvasElement)).toContain("setLineDash []");
  });

  test("can be drawn by other code as well", () => {
    const node = lineSwatch("red");
    const picture = pictureOf(node);
    expect([picture?.width, picture?.height]).toEqual([26, 10]);
    const { context, log } = newContext();
    picture?.draw(context);
    expect(log).toEqual(logOf(node as HTMLCanvasElement));
    expect(pictureOf(document.body)).toBeUndefined();
  });

  test("is empty where the browser has no canvas", () => {
    const noContext = vi.spyOn(HTMLCanvasElement.prototype, "getContext").mockReturnValue(null);
    expect((swatch({ color: "red", hatch: "solid" }) as HTMLCanvasElement).width).toBe(28);
    noContext.mockRestore();
  });
});

describe("A text that is shortened", () => {
  const { context } = newContext(); // a letter is 5 px wide
  test.each([
    ["fits exactly", "abcdef", 30, "abcdef"],
    ["is one letter too long", "abcdef", 29, "abcd…"],
    ["has room for half", "abcdef", 20, "abc…"],
    ["has room for two letters", "abcdef", 15, "ab…"],
    ["keeps one letter at least", "abcdef", 0, "a…"],
    ["keeps letters outside the basic plane whole", "😀😀😀😀", 15, "😀😀…"],
  ])("%s", (_, text, room, shown) => {
    expect(shortened(context, text, room)).toBe(shown);
  });
});

test.each([
  ["Unknown", { look: { color: "color(--nowhere)", hatch: "dots" }, texts: ["no zone", "?"] }],
  ["LookingAtRobot", { look: { color: "color(--robot)", hatch: "solid" }, texts: ["at the robot", "●"] }],
  ["LookingUp", { look: { color: "color(--elsewhere)", hatch: "solid" }, texts: ["up", "↑"] }],
])("The look of the zone %s", (name, look) => {
  expect(zoneLook(name)).toEqual(look);
});

test.each([
  ["positive", { look: { color: "color(--positive)", hatch: "solid" }, texts: ["positive", "+"] }],
  ["negative", { look: { color: "color(--negative)", hatch: "rising" }, texts: ["negative", "−"] }],
  ["neutral", { look: { color: "color(--neutral)", hatch: "solid" }, texts: ["neutral", "0"] }],
  ["unknown", { look: { color: "color(--nowhere)", hatch: "dots" }, texts: ["unknown", "?"] }],
])("The look of the pleasure %s", (name, look) => {
  expect(pleasureLook(name)).toEqual(look);
});
