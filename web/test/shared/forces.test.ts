import { beforeEach, describe, expect, test } from "vitest";
import { Force, forceList, quantities } from "../../shared/forces";

const force = (source: string, quantity: string, before: number, after: number, weight = 0.5, target = -0.25): Force => ({
  source,
  quantity,
  target,
  weight,
  before,
  after,
});

const nameOf = (source: string) => `the ${source.toLowerCase()}`;

function shown(...forces: Force[]) {
  document.body.replaceChildren(...forceList("Forces at 0:01", forces, nameOf));
  return {
    sentences: [...document.querySelectorAll(".sentence")].map((node) => node.textContent),
    rows: [...document.querySelectorAll("tbody tr")].map((row) => [...row.children].map((cell) => cell.textContent)),
    box: document.querySelector<HTMLInputElement>("input"),
    table: document.querySelector("table") as HTMLTableElement,
  };
}

test("The quantities are in the order of the library", () => {
  expect(quantities).toEqual([
    "valence", "unsmoothed valence", "valence confidence", "unsmoothed valence confidence", "attention", "attention confidence",
  ]);
});

describe("The sentence on a quantity", () => {
  test("says that nothing pulled it", () => {
    expect(shown().sentences).toEqual(["Nothing pulled the valence.", "Nothing pulled the attention."]);
  });

  test("names the way from the first to the last force, and each source with its distance, the strongest first", () => {
    const { sentences } = shown(
      force("Touch", "valence", 0.4, 0.45),
      force("Other", "attention", 0.9, 0.8),
      force("Face", "valence", 0.45, 0.2),
      force("Face", "valence", 0.2, 0.1),
    );
    expect(sentences).toEqual([
      "Valence went from +0.400 to +0.100: the face −0.350, the touch +0.050.",
      "Attention went from 0.900 to 0.800: the other −0.100.",
    ]);
  });

  test("says that the quantity stayed where forces have no sum", () => {
    const { sentences } = shown(force("Touch", "valence", 0.4, 0.45), force("Face", "valence", 0.45, 0.4));
    expect(sentences[0]).toBe("Valence stayed at +0.400: the touch +0.050, the face −0.050.");
  });

  test("leaves out sources that moved it by less than 0.001", () => {
    const { sentences } = shown(force("Touch", "valence", 0.4, 0.4001), force("Face", "attention", 0.4, 0.4));
    expect(sentences).toEqual([
      "Valence stayed at +0.400; no source moved it by 0.001.",
      "Attention stayed at 0.400; no source moved it by 0.001.",
    ]);
  });

  test("does not count unsmoothed values", () => {
    expect(shown(force("Touch", "unsmoothed valence", 0.1, 0.2)).sentences[0]).toBe("Nothing pulled the valence.");
  });
});

describe("The list of forces", () => {
  test("has a row for each force, with so many decimals that a move is seen; only valence has a sign", () => {
    const { rows, table } = shown(
      force("Touch", "valence", 0.4, 0.45, 0.5, -0.25),
      force("Touch", "unsmoothed valence", 0.4, 0.40001),
      force("Touch", "attention", 0.4, 0.4, 0.1234, 0.5),
    );
    expect(rows).toEqual([
      ["the touchvalence", "0.500", "−0.25", "+0.400", "+0.450"],
      ["the touchunsmoothed valence", "0.500", "−0.25", "+0.40000", "+0.40001"],
      ["the touchattention", "0.123", "0.50", "0.400", "the same"],
    ]);
    expect([...table.querySelectorAll("tbody tr")].map((row) => row.className)).toEqual(["", "unsmoothed", ""]);
    expect(table.parentElement).toMatchSnapshot();
  });

  test("says once that the same value stays the same", () => {
    expect(shown(force("Touch", "valence", 0.4, 0.4)).rows[0].slice(3)).toEqual(["+0.400", "the same"]);
  });
});

describe("The switch of unsmoothed rows", () => {
  beforeEach(() => {
    const { box } = shown(force("Touch", "unsmoothed valence", 0.1, 0.2));
    if (box?.checked) box.click();
  });

  test("is there only if there are such rows, and says how many", () => {
    expect(shown(force("Touch", "valence", 0.1, 0.2)).box).toBeNull();
    const { box } = shown(force("Touch", "unsmoothed valence", 0.1, 0.2), force("Face", "unsmoothed valence confidence", 0.1, 0.2));
    expect(box?.parentElement?.outerHTML).toBe(
      '<label class="note fold"><input type="checkbox" id="unsmoothed"> also the 2 rows of the unsmoothed valence</label>',
    );
  });

  test("shows them, and the next list keeps them shown", () => {
    const { box, table } = shown(force("Touch", "unsmoothed valence", 0.1, 0.2));
    expect(box?.checked).toBe(false);
    expect(table.hasAttribute("data-unsmoothed")).toBe(false);
    box?.click();
    expect(table.hasAttribute("data-unsmoothed")).toBe(true);
    const next = shown(force("Touch", "unsmoothed valence", 0.2, 0.3));
    expect(next.box?.checked).toBe(true);
    expect(next.table.hasAttribute("data-unsmoothed")).toBe(true);
    next.box?.click();
    expect(next.table.hasAttribute("data-unsmoothed")).toBe(false);
  });
});
