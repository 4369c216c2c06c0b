import { afterEach, beforeEach, describe, expect, test, vi } from "vitest";
import { element } from "../../shared/dom";
import { addSaveButtons, fileName, FileKind, savePng, saveText } from "../../shared/save";
import { logOf } from "../drawing";

const saved: { name: string; blob: Blob; wasInPage: boolean }[] = [];
const revoked: string[] = [];
let blobs: Blob[] = [];

beforeEach(() => {
  vi.useFakeTimers();
  saved.length = revoked.length = 0;
  blobs = [];
  URL.createObjectURL = (blob) => `blob:${blobs.push(blob as Blob) - 1}`;
  URL.revokeObjectURL = (address) => void revoked.push(address);
  HTMLAnchorElement.prototype.click = function (this: HTMLAnchorElement) {
    saved.push({ name: this.download, blob: blobs[Number(this.href.replace("blob:", ""))], wasInPage: document.body.contains(this) });
  };
});

afterEach(() => {
  vi.useRealTimers();
  vi.restoreAllMocks();
  vi.unstubAllGlobals();
  vi.stubGlobal("devicePixelRatio", 2);
});

async function textOf(blob: Blob): Promise<string> {
  return new Promise((found) => {
    const reader = new FileReader();
    reader.onload = () => found(String(reader.result));
    vi.useRealTimers();
    reader.readAsText(blob);
  });
}

test("A name of a file has only letters, digits, dots, dashes and underscores", () => {
  expect(fileName("Größe 1/2: <a>", "x-y_z.b")).toBe("Größe_1_2_a_-x-y_z.b");
});

test("A text is saved under its name, and its address is given back later", async () => {
  saveText("a,b", "text/csv", "table.csv");
  expect(saved.map(({ name, wasInPage }) => [name, wasInPage])).toEqual([["table.csv", true]]);
  expect(saved[0].blob.type).toBe("text/csv");
  expect(document.querySelector("a")).toBeNull();
  vi.advanceTimersByTime(9_999);
  expect(revoked).toEqual([]);
  vi.advanceTimersByTime(1);
  expect(revoked).toEqual(["blob:0"]);
  expect(await textOf(saved[0].blob)).toBe("a,b");
});

describe("The buttons of a card", () => {
  test("are before its content, and each saves its kind of file", () => {
    const card = element("div", {}, element("h2", {}, "Valence"));
    const kinds: FileKind[] = [];
    addSaveButtons(card, "Valence", (kind) => void kinds.push(kind));
    expect(card).toMatchSnapshot();
    for (const button of card.querySelectorAll("button")) button.click();
    expect(kinds).toEqual(["SVG", "PNG", "CSV"]);
  });

  test("show why a file cannot be saved, until the next try", async () => {
    const card = element("div");
    let error: unknown = new Error("too large");
    addSaveButtons(card, "Valence", () => {
      if (error) throw error;
    });
    const press = async () => {
      card.querySelector("button")?.click();
      await Promise.resolve();
      return card.querySelector(".complaint")?.textContent;
    };
    expect(await press()).toBe("too large");
    error = "no reason";
    expect(await press()).toBe("no reason");
    error = null;
    expect(await press()).toBe("");
  });
});

describe("Pixels", () => {
  /** Has every picture read at once, with that size; or refused. */
  function pictures(width: number, height: number, type = "load"): HTMLImageElement[] {
    const made: HTMLImageElement[] = [];
    const add = HTMLImageElement.prototype.addEventListener;
    vi.spyOn(HTMLImageElement.prototype, "addEventListener").mockImplementation(function (this: HTMLImageElement, name: string, act: unknown) {
      add.call(this, name, act as EventListener);
      made.push(this);
      if (name === type) queueMicrotask(() => this.dispatchEvent(new Event(type)));
    } as never);
    vi.spyOn(HTMLImageElement.prototype, "width", "get").mockReturnValue(width);
    vi.spyOn(HTMLImageElement.prototype, "height", "get").mockReturnValue(height);
    return made;
  }

  function canvases(blob: Blob | null): HTMLCanvasElement[] {
    const made: HTMLCanvasElement[] = [];
    HTMLCanvasElement.prototype.toBlob = function (this: HTMLCanvasElement, take, type) {
      made.push(this);
      expect(type).toBe("image/png");
      take(blob);
    };
    return made;
  }

  test("are three for each pixel of the SVG", async () => {
    const [image, drawn] = [pictures(100, 50), canvases(new Blob(["png"]))];
    await savePng("<svg>é</svg>", "chart.png");
    expect(image[0].getAttribute("src")).toBe("data:image/svg+xml;charset=utf-8,%3Csvg%3E%C3%A9%3C%2Fsvg%3E");
    expect([drawn[0].width, drawn[0].height]).toEqual([300, 150]);
    expect(logOf(drawn[0])).toEqual(["drawImage img 0 0 300 150"]);
    expect(saved.map(({ name, blob }) => [name, blob.size])).toEqual([["chart.png", 3]]);
  });

  test("are fewer of a picture that browsers could not draw", async () => {
    pictures(100, 8000);
    const drawn = canvases(new Blob([]));
    await savePng("<svg/>", "chart.png");
    expect([drawn[0].width, drawn[0].height]).toEqual([200, 16000]);
  });

  test.each([
    ["the browser cannot read the SVG", "error", new Blob([]), false],
    ["the picture is too large for the browser", "load", null, false],
    ["The browser cannot draw it", "load", new Blob([]), true],
  ])("are not saved if %s", async (why, type, blob, hasNoContext) => {
    pictures(10, 10, type);
    canvases(blob);
    if (hasNoContext) vi.spyOn(HTMLCanvasElement.prototype, "getContext").mockReturnValue(null);
    await expect(savePng("<svg/>", "a.png")).rejects.toThrow(new Error(`The PNG was not saved: ${why}. Save the SVG instead.`));
    expect(saved).toEqual([]);
  });

  test("are not saved if the browser throws something else than an error", async () => {
    pictures(10, 10);
    HTMLCanvasElement.prototype.toBlob = () => {
      throw "memory";
    };
    await expect(savePng("<svg/>", "a.png")).rejects.toThrow("The PNG was not saved: memory. Save the SVG instead.");
  });
});
