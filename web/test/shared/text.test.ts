import { describe, expect, test } from "vitest";
import { apart, clock, counted, percent, plain, signed, valenceWord, zoneArrow, zoneWord } from "../../shared/text";

describe("A time", () => {
  test.each([
    [0, undefined, "0:00.0"],
    [7.25, 2, "0:07.25"],
    [9.96, 1, "0:10.0"],
    [59.94, 1, "0:59.9"],
    [59.95, 1, "1:00.0"],
    [61, 0, "1:01"],
    [5, 0, "0:05"],
    [5, 1, "0:05.0"],
    [12, 1, "0:12.0"],
    [3599.9, 1, "59:59.9"],
    [3600, 1, "1:00:00.0"],
    [3660, 0, "1:01:00"],
    [36000 + 754.5, 1, "10:12:34.5"],
    [-3.5, 1, "−0:03.5"],
    [-3600, 0, "−1:00:00"],
  ])("of %d s with %s decimals is %s", (seconds, decimals, text) => {
    expect(clock(seconds, decimals)).toBe(text);
  });
});

describe("A number", () => {
  test.each([
    [0.345, undefined, "+0.34"],
    [-0.5, undefined, "−0.50"],
    [0, 2, "0.00"],
    [-0.001, 2, "0.00"],
    [0.001, 2, "0.00"],
    [-12.34, 1, "−12.3"],
  ])("with a sign: %d with %s decimals is %s", (value, decimals, text) => {
    expect(signed(value, decimals)).toBe(text);
  });

  test.each([
    [0.5, undefined, "0.50"],
    [-0.5, 1, "−0.5"],
    [3, 0, "3"],
  ])("without a sign: %d with %s decimals is %s", (value, decimals, text) => {
    expect(plain(value, decimals)).toBe(text);
  });

  test("has as many decimals as it needs to differ from another, at least three", () => {
    expect(apart(0.1, 0.2, plain)).toEqual(["0.100", "0.200"]);
    expect(apart(0.1, 0.10004, plain)).toEqual(["0.10000", "0.10004"]);
    expect(apart(0.1, 0.1000001, signed)).toEqual(["+0.1000000", "+0.1000001"]);
  });

  test("is the same as another that differs less than seven decimals show", () => {
    expect(apart(0.1, 0.10000001, plain)).toBeNull();
    expect(apart(0.1, 0.1, plain)).toBeNull();
  });
});

describe("A share", () => {
  test.each([
    [0, "0 %"],
    [0.0049, "<1 %"],
    [0.005, "1 %"],
    [0.5, "50 %"],
    [0.994, "99 %"],
    [0.995, ">99 %"],
    [0.9999, ">99 %"],
    [1, "100 %"],
    [-0.1, "-10 %"],
  ])("of %d is %s", (share, text) => {
    expect(percent(share)).toBe(text);
  });
});

test("A count has a plural, except of one, and groups of thousands", () => {
  expect(counted(1, "person")).toBe("1 person");
  expect(counted(0, "person")).toBe("0 persons");
  expect(counted(12345, "line")).toBe("12,345 lines");
});

describe("Valence in words", () => {
  test.each([
    [0, "neutral"],
    [0.0999, "neutral"],
    [0.1, "slightly positive"],
    [-0.1, "slightly negative"],
    [0.349, "slightly positive"],
    [0.35, "positive"],
    [-0.69, "negative"],
    [0.7, "very positive"],
    [-1, "very negative"],
  ])("of %d is %s", (valence, word) => {
    expect(valenceWord(valence)).toBe(word);
  });
});

describe("A zone", () => {
  test.each([
    ["Unknown", "no zone", ""],
    ["LookingAtRobot", "at the robot", "●"],
    ["LookingUp", "up", "↑"],
    ["LookingUpRight", "up right", "↗"],
    ["LookingRight", "right", "→"],
    ["LookingDownRight", "down right", "↘"],
    ["LookingDown", "down", "↓"],
    ["LookingDownLeft", "down left", "↙"],
    ["LookingLeft", "left", "←"],
    ["LookingUpLeft", "up left", "↖"],
    ["LookingFarDownLeft", "far down left", ""],
  ])("%s is %s %s", (name, word, arrow) => {
    expect(zoneWord(name)).toBe(word);
    expect(zoneArrow(name)).toBe(arrow);
  });
});
