import { expect, test } from "vitest";
import { byId, element, facts, table } from "../../shared/dom";

test("An element takes texts as texts, and leaves out what is null", () => {
  expect(element("p", { class: "note", title: '"a"' }, "<b>", null, element("i")).outerHTML).toBe(
    '<p class="note" title="&quot;a&quot;">&lt;b&gt;<i></i></p>',
  );
});

test("An element of the page is found by its id, or its name is in the error", () => {
  document.body.innerHTML = '<p id="here"></p>';
  expect(byId("here").tagName).toBe("P");
  expect(() => byId("there")).toThrow(new Error('The page has no element "there"'));
});

test("A table has a caption, headings and rows, and marks the columns of numbers", () => {
  expect(table("Means", ["who", "mean"], [["a", "1"], [element("b"), null]], [1]).outerHTML).toBe(
    "<table><caption>Means</caption>" +
      '<thead><tr><th scope="col">who</th><th scope="col" class="number">mean</th></tr></thead>' +
      '<tbody><tr><td>a</td><td class="number">1</td></tr><tr><td><b></b></td><td class="number"></td></tr></tbody></table>',
  );
});

test("A table without a caption has none, and by default no column of numbers", () => {
  expect(table("", ["a"], [["1"]]).outerHTML).toBe(
    '<table><thead><tr><th scope="col">a</th></tr></thead><tbody><tr><td>1</td></tr></tbody></table>',
  );
});

test("Facts are a list of names and values", () => {
  expect(facts([["a", "1"], ["b", "2"]]).outerHTML).toBe(
    '<dl class="facts"><div><dt>a</dt><dd>1</dd></div><div><dt>b</dt><dd>2</dd></div></dl>',
  );
});
