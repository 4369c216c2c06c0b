// Elements whose texts are texts: no part of a recording is ever read as markup.

type Child = Node | string | null;

export function element<Tag extends keyof HTMLElementTagNameMap>(
  tag: Tag,
  attributes: Record<string, string> = {},
  ...children: Child[]
): HTMLElementTagNameMap[Tag] {
  const node = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) node.setAttribute(name, value);
  for (const child of children) if (child !== null) node.append(child);
  return node;
}

export function byId(id: string): HTMLElement {
  const found = document.getElementById(id);
  if (!found) throw new Error(`The page has no element "${id}"`);
  return found;
}

export function table(caption: string, headings: string[], rows: Child[][], numeric: number[] = []): HTMLTableElement {
  const kind = (column: number): Record<string, string> => (numeric.includes(column) ? { class: "number" } : {});
  return element(
    "table",
    {},
    caption ? element("caption", {}, caption) : null,
    element(
      "thead",
      {},
      element("tr", {}, ...headings.map((text, column) => element("th", { scope: "col", ...kind(column) }, text))),
    ),
    element(
      "tbody",
      {},
      ...rows.map((row) => element("tr", {}, ...row.map((cell, column) => element("td", kind(column), cell)))),
    ),
  );
}

/** Returns a list of names and their values. */
export function facts(entries: [string, string][]): HTMLElement {
  return element(
    "dl",
    { class: "facts" },
    ...entries.map(([name, value]) => element("div", {}, element("dt", {}, name), element("dd", {}, value))),
  );
}
