// Runs before each test file: adds those parts of a browser that jsdom lacks. Drawings are recorded (see drawing.ts), colours have the name of their
// variable, and a pixel of the page is two of the screen, so that a forgotten ratio is noticed.

import { expect, vi } from "vitest";
import { RecordingContext } from "./drawing";

vi.stubGlobal("devicePixelRatio", 2);
vi.stubGlobal("matchMedia", () => ({ matches: false, addEventListener() {}, removeEventListener() {} }));
vi.stubGlobal("getComputedStyle", () => ({ getPropertyValue: (name: string) => ` color(${name}) ` }));

/** Its commands can be read, as those of a context. */
vi.stubGlobal(
  "Path2D",
  class {
    readonly commands: string[] = [];
    constructor() {
      for (const name of ["moveTo", "lineTo", "rect", "arc", "closePath", "addPath", "bezierCurveTo"])
        Object.assign(this, { [name]: (...values: unknown[]) => void this.commands.push(`${name} ${values.join(" ")}`) });
    }
  },
);

const contexts = new WeakMap<HTMLCanvasElement, RecordingContext>();
HTMLCanvasElement.prototype.getContext = function (this: HTMLCanvasElement) {
  if (!contexts.has(this)) contexts.set(this, new RecordingContext(this));
  return contexts.get(this);
} as unknown as typeof HTMLCanvasElement.prototype.getContext;

// In a snapshot, elements are written as in a page, one tag a line.
expect.addSnapshotSerializer({
  test: (value) => value instanceof Element,
  serialize: (value) => (value as Element).outerHTML.replace(/></g, ">\n<"),
});

// A module gives the address of a file back long after it was saved, when the document of the test is gone. No test waits so long.
const { setTimeout: later } = globalThis;
vi.stubGlobal("setTimeout", (act: () => void, wait = 0, ...values: unknown[]) => (wait < 10_000 ? later(act, wait, ...(values as [])) : 0));
