import { describe, expect, test } from "vitest";
import { csvText } from "../../shared/csv";

const rowOf = (...cells: (string | number | null)[]) => csvText({ header: ["a"], rows: [cells] }, []).split("\n").slice(1, -1).join("\n");

describe("A table of comma-separated values", () => {
  test("has the caption as comments, then the header, then the rows", () => {
    expect(csvText({ header: ["a", "b"], rows: [[1, "x"], [null, 2]] }, ["first", "second"])).toBe("# first\n# second\na,b\n1,x\n,2\n");
  });

  test("keeps each line of the caption a comment", () => {
    expect(csvText({ header: ["a"], rows: [] }, ["one\r\ntwo\n\nthree"])).toBe("# one two three\na\n");
  });

  test.each([
    ["an unknown value", null, ""],
    ["a value that is not a number", NaN, ""],
    ["a plain text", "ab c", "ab c"],
    ["a comma", "a,b", '"a,b"'],
    ["quotes", 'say "a"', '"say ""a"""'],
    ["a line feed", "a\nb", '"a\nb"'],
    ["a carriage return", "a\rb", '"a\rb"'],
    ["a text of digits", "0.10000000149011612", "0.10000000149011612"],
    ["single precision, with few digits", Math.fround(0.1), "0.1"],
    ["single precision, with seven digits", Math.fround(0.1234567), "0.1234567"],
    ["single precision that needs nine digits", Math.fround(120.247215), "120.247215"],
    ["single precision that needs eight digits", 8388609.5, "8388609.5"],
    ["double precision, in full", 0.1, "0.1"],
    ["double precision that no single has", 1.23456789012345, "1.23456789012345"],
    ["a whole number", 1234567, "1234567"],
    ["a whole number of nine digits", 123456792, "123456790"],
    ["infinity", Infinity, "Infinity"],
  ])("writes %s", (_, value, text) => {
    expect(rowOf(value)).toBe(text);
  });
});
