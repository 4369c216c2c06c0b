import { expect, test } from "vitest";
import { curvePath, heightOf, svg } from "../../shared/smallpicture";

const box = { x: 10, y: 5, width: 40, height: 20 };

test("A picture is SVG with attributes and children", () => {
  const node = svg("svg", { viewBox: "0 0 1 1" }, svg("path", { d: "M0 0" }));
  expect(node.namespaceURI).toBe("http://www.w3.org/2000/svg");
  expect(node.outerHTML).toBe('<svg viewBox="0 0 1 1"><path d="M0 0"></path></svg>');
});

test("A box goes from 1 at its top to the least value at its bottom", () => {
  expect(heightOf(1, -1, box)).toBe(5);
  expect(heightOf(0, -1, box)).toBe(15);
  expect(heightOf(-1, -1, box)).toBe(25);
  expect(heightOf(0.75, 0, box)).toBe(10);
});

test("A curve goes through the middles of its stretches, with a gap where no value is known", () => {
  expect(curvePath([1, 0, null, 0.5], 0, box)).toBe("M15.0 5.0h0.01L25.0 25.0M45.0 15.0h0.01");
  expect(curvePath([null, null], 0, box)).toBe("");
});
