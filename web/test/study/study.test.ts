import { afterEach, describe, expect, test, vi } from "vitest";
import { Drawn, drawOnPage, figureCard, paperWidth } from "../../study/card";
import { captionOf, Comparison, Group, groupName, optionsText, personOf, Study, titleOf, valueIn } from "../../study/data";
import { axisOf, chartHeight, colorOf, drawDots, groupsInRows, leavesLinksOut, valueText } from "../../study/dots";
import { csvOfGroups, groupsCard, groupsNote } from "../../study/groups";
import { agreementCard, verdictsCard } from "../../study/verdicts";
import { logOf, newContext } from "../drawing";

const group = (value: string, more: Partial<Group> = {}): Group => ({
  value,
  role: "",
  count: 2,
  mean: 0.5,
  interval: [0.25, 0.75],
  persons: [
    [0, 0.25, 1],
    [1, 0.75, 2],
  ],
  ...more,
});
const comparison = (groups: Group[], more: Partial<Comparison> = {}): Comparison => ({
  quantity: "valence",
  scope: "greeting",
  by: "condition",
  groupCount: groups.length,
  groups,
  ...more,
});
const study = {
  study: [["name", "Greetings"], ["version", "1.0.0"]],
  options: [["cycle", "5"], ["updates", "false"], ["forces", "true"]],
  files: ["a.sqlite", "b.sqlite"],
  scopes: ["greeting", "task"],
  participants: ["p1", "p2"],
  labels: {
    verdicts: [
      { scope: "greeting", counts: { positive: 3, neutral: 1 } },
      { scope: "task", counts: {} },
    ],
    agreement: null,
  },
} as unknown as Study;

afterEach(() => {
  vi.restoreAllMocks();
  document.body.replaceChildren();
});

describe("A study", () => {
  test("has the name of its file where it has none of its own", () => {
    expect(titleOf(study)).toBe("Greetings");
    expect(titleOf({ ...study, study: [] })).toBe("a.sqlite + b.sqlite");
    expect(titleOf({ ...study, study: [], files: [] })).toBe("Study");
    expect(valueIn(study.study, "none")).toBe("");
  });

  test("has the options that are set", () => {
    expect(optionsText(study)).toBe("cycle = 5, forces = true");
    expect(optionsText({ ...study, options: [["updates", "true"], ["forces", "false"], ["other", "false"]] })).toBe("updates = true, other = false");
  });

  test("has a caption", () => {
    expect(captionOf(study, "first")).toEqual([
      "first", "Study Greetings, a.sqlite + b.sqlite. Options: cycle = 5, forces = true. Made by skeigiot 1.0.0.",
    ]);
    expect(captionOf({ ...study, options: [] })[0]).toContain("Options: the defaults.");
  });

  test("names persons by name, role or number", () => {
    const person = { id: 3, name: "Ada", role: "guest", participant: "" };
    expect([personOf(person), personOf({ ...person, name: "" }), personOf({ ...person, name: "", role: "" })]).toEqual(["Ada", "guest", "person 3"]);
  });
});

test.each([
  ["value", "friendly", "", [["friendly", ""], ["neutral", ""]], "friendly"],
  ["value and role", "friendly", "guest", [["friendly", "guest"], ["neutral", "host"]], "friendly, guest"],
  ["a value that is missing beside others", "", "guest", [["", "guest"], ["neutral", "guest"]], "without condition, guest"],
  ["a role that is missing beside others", "friendly", "", [["friendly", ""], ["friendly", "guest"]], "friendly, without role"],
  ["nothing that differs", "", "", [["", ""]], "all"],
])("A group is named by %s", (_, value, role, groups, name) => {
  expect(groupName(group(value, { role }), comparison(groups.map(([one, other]) => group(one, { role: other }))))).toBe(name);
});

describe("The chart of groups", () => {
  const many = (count: number, more: Partial<Group> = {}) =>
    group("a", { persons: Array.from({ length: count }, (_, i): [number, number, number] => [i, i / count, 1]), ...more });

  test("has colours and numbers by quantity", () => {
    expect((["valence", "attention", "engaged", "seen"] as const).map((quantity) => [colorOf(quantity), valueText(quantity, 0.5), valueText(quantity, 0.5, 3)])).toEqual([
      ["valence", "+0.50", "+0.500"], ["attention", "0.50", "0.500"], ["source-2", "0.50", "0.500"], ["source-6", "0.50", "0.500"],
    ]);
  });

  test("has groups of one role below each other", () => {
    const roles = ["guest", "host", "guest"].map((role, i) => group(String(i), { role }));
    expect(groupsInRows(comparison(roles)).map(({ value }) => value)).toEqual(["0", "2", "1"]);
    expect(chartHeight(comparison(roles))).toBe(6 + 3 * 58 + 24);
  });

  test("leaves out lines between groups of many persons", () => {
    expect(leavesLinksOut(comparison([many(80), many(80)]))).toBe(false);
    expect(leavesLinksOut(comparison([many(80), many(81)]))).toBe(true);
    expect(leavesLinksOut(comparison([many(81), many(2)]))).toBe(true);
    expect(leavesLinksOut(comparison([many(81, { role: "guest" }), many(81)]))).toBe(false);
    expect(leavesLinksOut(comparison([many(81)]))).toBe(false);
  });

  test.each<[string, number[], object, object]>([
    ["a narrow span", [0.5, 0.5], {}, { from: 0.49, to: 0.51, step: 0.01 }],
    ["a span of 0.5", [0.25, 0.75], {}, { from: 0.2, to: 0.8, step: 0.1 }],
    ["a span of 0.1", [0.42, 0.52], {}, { from: 0.4, to: 0.54, step: 0.02 }],
    ["all of valence", [-1, 1], {}, { from: -1, to: 1, step: 0.5 }],
    ["all of attention", [0, 1], { quantity: "attention" }, { from: 0, to: 1, step: 0.2 }],
  ])("has an axis of round numbers around %s", (_, values, more, expected) => {
    const persons = values.map((value, i): [number, number, number] => [i, value, 1]);
    const { from, to, step } = axisOf(comparison([group("a", { persons, mean: values[0], interval: null })], more));
    const rounded = (value: number) => Math.round(value * 1e6) / 1e6;
    expect({ from: rounded(from), to: rounded(to), step }).toEqual(expected);
  });

  test("has an axis around means and intervals as well", () => {
    const { from, to } = axisOf(comparison([group("a", { persons: [[0, 0.5, 1]], mean: 0.1, interval: [0.5, 0.9] })]));
    expect([from, to].map((value) => value.toFixed(1))).toEqual(["0.0", "1.0"]);
  });

  test("ends after its beginning where all values are at the end", () => {
    const { from, to, step } = axisOf(comparison([group("a", { persons: [[0, 1, 1]], mean: 1, interval: null })]));
    expect(to).toBeGreaterThan(from);
    expect(step).toBe(0.01);
  });

  const drawn = (one: Comparison, width = 400) => {
    const { context, log } = newContext();
    return { placed: drawDots(context, width, one), log };
  };

  test("is drawn", () => {
    const { log, placed } = drawn(comparison([group("friendly"), group("a very long name of a condition", { interval: null, count: 1 })]));
    expect(log.join("\n")).toMatchSnapshot();
    expect(placed.map(({ participant, value, rows }) => [participant, value, rows])).toEqual([[0, 0.25, 1], [1, 0.75, 2], [0, 0.25, 1], [1, 0.75, 2]]);
  });

  test("of shares has labels without signs", () => {
    const { log } = drawn(comparison([group("a", { persons: [[0, 0, 1], [1, 0.05, 1]], mean: 0.02, interval: null })], { quantity: "seen" }));
    expect(log.filter((line) => line.startsWith("fillText")).slice(0, 3).map((line) => line.split(" ")[1])).toEqual(["0.00", "0.01", "0.02"]);
    expect(log).toContain("strokeStyle = color(--muted)");
  });

  test("has dots of one value above and below each other, closer where many are", () => {
    const same = (count: number) => group("a", { persons: Array.from({ length: count }, (_, i): [number, number, number] => [i, 0.5, 1]) });
    const middle = 6 + 13 + 3.2 + 5;
    const heights = (count: number) => drawn(comparison([same(count)])).placed.map(({ y }) => Math.round((y - middle) * 1000) / 1000);
    expect(heights(4)).toEqual([expect.closeTo(0), -6.4, 6.4, -12.8]);
    expect(heights(13).slice(0, 3)).toEqual([expect.closeTo(0), -2, 2]);
  });

  test("draws many dots fainter", () => {
    expect(drawn(comparison([many(500)])).log).toContain("globalAlpha = 0.6");
    expect(drawn(comparison([many(501)])).log).toContain("globalAlpha = 0.25");
  });

  test("links the dots of one person in groups of one role", () => {
    const links = (...groups: Group[]) => {
      const { log } = drawn(comparison(groups));
      const from = log.indexOf("globalAlpha = 0.35");
      return from < 0 ? 0 : log.slice(from, log.indexOf("globalAlpha = 1", from)).filter((line) => line === "stroke").length;
    };
    expect(links(group("a"), group("b"))).toBe(2);
    expect(links(group("a"), group("b", { persons: [[1, 0.5, 1], [7, 0.5, 1]] }))).toBe(1);
    expect(links(group("a", { role: "guest" }), group("b"))).toBe(0);
    expect(links(many(81), group("b"))).toBe(0);
  });
});

describe("The card of groups", () => {
  const card = (one: Comparison) => groupsCard(study, one, () => 400);

  test("has the chart, its table and its save buttons", () => {
    const { card: made, show } = card(comparison([group("friendly"), group("neutral", { interval: null, count: 3 })], { groupCount: 4 }));
    show();
    expect(made).toMatchSnapshot();
    expect(logOf(made.querySelector("canvas[role]") as HTMLCanvasElement).length).toBeGreaterThan(50);
    expect(groupsNote).toContain("Each dot is a person");
  });

  test("has scopes in the order of the sessions", () => {
    const { card: made } = card(comparison([group("task"), group("greeting")], { by: "scope", quantity: "seen", scope: "" }));
    expect([...made.querySelectorAll("tbody tr")].map((row) => row.firstChild?.textContent)).toEqual(["greeting", "task"]);
    expect(made.dataset.figure).toBe("scopes-seen");
    expect(made.querySelector("h2")?.textContent).toBe("Seen by scope: share of the time in which the person was seen");
  });

  test.each([
    ["whole recording", "attention", "Attention whole recording, by condition: mean of each person, from 0 to 1"],
    ["task", "engaged", "Engaged scope task, by condition: share of the time in which the person looked at the robot"],
    ["task", "valence", "Valence scope task, by condition: mean of each person, from −1 (negative) to 1 (positive)"],
  ] as const)("says that it is of the %s", (scope, quantity, text) => {
    expect(card(comparison([group("a")], { scope, quantity })).card.querySelector("h2")?.textContent).toBe(text);
  });

  test("says what it leaves out", () => {
    const persons = Array.from({ length: 81 }, (_, i): [number, number, number] => [0, i / 100, 1]);
    const limits = (one: Comparison) => [...card(one).card.querySelectorAll(".limit")].map(({ textContent }) => textContent);
    expect(limits(comparison([group("a")]))).toEqual([]);
    expect(limits(comparison([group("a", { persons, count: 100 }), group("b", { persons, count: 81 })], { groupCount: 3 }))).toEqual([
      "The page shows 2 of 3 groups.",
      "Groups of many persons: dots are persons at equal distances in the order of their values; means and intervals are of all.",
      "Lines link the dots of one person only between groups of 80 persons or less.",
    ]);
  });

  test("names the person whose dot is nearest to the mouse, within 10 pixels", () => {
    const one = comparison([group("a")]);
    const { placed } = { placed: drawDots(newContext().context, 400, one) };
    const { card: made, show } = card(one);
    show();
    const canvas = made.querySelector("canvas[role]") as HTMLCanvasElement;
    const at = (x: number, y: number) => {
      const event = new MouseEvent("mousemove");
      Object.defineProperties(event, { offsetX: { value: x }, offsetY: { value: y } });
      canvas.dispatchEvent(event);
      return made.querySelector(".dot")?.textContent;
    };
    expect(at(placed[0].x + 3, placed[0].y - 3)).toBe("p1: +0.250");
    expect(at(placed[1].x - 9.9, placed[1].y)).toBe("p2: +0.750, mean of 2 summaries");
    expect(at(placed[1].x, placed[1].y + 10)).toBe("");
    expect(at(placed[1].x + 8, placed[1].y + 8)).toBe("");
  });

  test("has a table of comma-separated values", () => {
    expect(csvOfGroups(study, comparison([group("a"), group("b", { interval: null, role: "guest", persons: [] })]), ["caption"])).toBe(
      "# Groups by condition.\n# caption\nquantity,scope,group,role,kind,participant,value,count,low,high\n" +
        "valence,greeting,a,,person,p1,0.25,1,,\nvalence,greeting,a,,person,p2,0.75,2,,\nvalence,greeting,a,,mean,,0.5,2,0.25,0.75\n" +
        "valence,greeting,b,guest,mean,,0.5,2,,\n",
    );
    expect(csvOfGroups(study, comparison([group("task", { persons: [] })], { by: "scope" }), [])).toBe(
      "# Groups by scope.\nquantity,group,role,kind,participant,value,count,low,high\nvalence,task,,mean,,0.5,2,0.25,0.75\n",
    );
  });
});

describe("The card of verdicts", () => {
  test("has a bar for each scope", () => {
    const { card, show } = verdictsCard(study, () => 600);
    show();
    expect(card).toMatchSnapshot();
    expect(logOf(card.querySelector("canvas[role]") as HTMLCanvasElement).join("\n")).toMatchSnapshot();
  });
});

test("The verdicts can be saved as a table of comma-separated values", async () => {
  const blobs: Blob[] = [];
  URL.createObjectURL = (blob) => `blob:${blobs.push(blob as Blob)}`;
  vi.spyOn(HTMLAnchorElement.prototype, "click").mockImplementation(() => {});
  const { card } = verdictsCard(study, () => 600);
  [...card.querySelectorAll("button")].find(({ textContent }) => textContent === "Save CSV")?.click();
  const reader = new FileReader();
  await new Promise((done) => {
    reader.onload = done;
    reader.readAsText(blobs[0]);
  });
  const lines = String(reader.result).split("\n");
  expect(lines.slice(2)).toEqual(["scope,positive,neutral,negative,unknown", "greeting,3,1,0,0", "task,0,0,0,0", ""]);
  expect(lines.slice(0, 2).every((line) => line.startsWith("# "))).toBe(true);
});

describe("The card of the agreement", () => {
  const agreement = { words: ["positive", "neutral", "negative"], counts: [[1, 2, 3], [0, 1, 0], [0, 0, 1]], persons: 1, unknown: 2, accuracy: 0.5, kappa: 0.25, interval: [0.1, 0.4] as [number, number] };
  const sentence = (more: object) => agreementCard({ ...agreement, ...more }).querySelector(".sentence")?.textContent?.replace(/^.*are unknown\. /, "");

  test("says what is compared, and how well it agrees", () => {
    expect(agreementCard(agreement)).toMatchSnapshot();
    expect(sentence({ interval: null })).toBe("The verdict is the label in 50 % of them. Cohen's kappa is 0.25.");
    expect(sentence({ kappa: null })).toBe("The verdict is the label in 50 % of them. Cohen's kappa is not defined, because both sides have only one word.");
    expect(sentence({ accuracy: null })).toBe("No verdict on such a scope is known.");
  });
});

describe("A card whose content can be saved", () => {
  const saved: { name: string; blob: Blob }[] = [];

  function made(hasLegend = true) {
    saved.length = 0;
    const blobs: Blob[] = [];
    URL.createObjectURL = (blob) => `blob:${blobs.push(blob as Blob) - 1}`;
    URL.revokeObjectURL = () => {};
    vi.spyOn(HTMLAnchorElement.prototype, "click").mockImplementation(function (this: HTMLAnchorElement) {
      saved.push({ name: this.download, blob: blobs[Number(this.href.replace("blob:", ""))] });
    });
    const chart = document.createElement("div");
    chart.className = "chart";
    const legend = (text: string) => {
      const list = document.createElement("ul");
      list.className = "legend";
      list.append(Object.assign(document.createElement("li"), { textContent: text }));
      return list;
    };
    const seen: string[] = [];
    const drawing: Drawn = {
      height: (width) => width / 2,
      draw: (context, width) => {
        seen.push(`${width} ${document.documentElement.hasAttribute("data-print")}`);
        context.fillRect(0, 0, 7, 7);
      },
    };
    const other = document.createElement("div");
    other.className = "chart";
    const card = figureCard(
      "My study",
      { figure: "verdicts", title: "all verdicts", caption: ["The caption"], ...(hasLegend ? { legend: () => legend("on paper") } : {}), csv: () => "a,b" },
      new Map([[chart, drawing]]),
      hasLegend ? legend("on the page") : null,
      chart,
      other,
    );
    const press = (kind: string) => ([...card.querySelectorAll("button")].find(({ textContent }) => textContent === `Save ${kind}`) as HTMLElement).click();
    const text = async () => {
      const reader = new FileReader();
      await new Promise((done) => {
        reader.onload = done;
        reader.readAsText(saved[0].blob);
      });
      return String(reader.result);
    };
    return { card, press, seen, text };
  }

  test("saves its numbers", async () => {
    const { press, text, card } = made();
    press("CSV");
    expect([saved[0].name, saved[0].blob.type]).toEqual(["My_study-verdicts.csv", "text/csv"]);
    expect(await text()).toBe("a,b");
    expect(card.dataset.figure).toBe("verdicts");
    expect(card.querySelector("button")?.getAttribute("aria-label")).toBe("Save SVG of all verdicts");
  });

  test("saves its drawing in the colours of paper, and stays as it is", async () => {
    const { press, text, seen, card } = made();
    press("SVG");
    expect([saved[0].name, saved[0].blob.type]).toEqual(["My_study-verdicts.svg", "image/svg+xml"]);
    expect(seen).toEqual([`${paperWidth} true`]);
    expect(document.documentElement.hasAttribute("data-print")).toBe(false);
    const svg = await text();
    for (const part of ["on paper", "The caption", "M0 0h7v7h-7z", 'width="694"']) expect(svg).toContain(part);
    expect(svg).not.toContain("on the page");
    expect(card.querySelector(".legend")?.textContent).toBe("on the page");
  });

  test("leaves the colours of paper if it was printed before", () => {
    document.documentElement.setAttribute("data-print", "");
    made(false).press("SVG");
    expect(document.documentElement.hasAttribute("data-print")).toBe(true);
    document.documentElement.removeAttribute("data-print");
    expect(saved.length).toBe(1);
  });

  test("saves pixels", async () => {
    const { press, card } = made();
    press("PNG");
    expect(saved).toEqual([]); // only once the browser has read the picture
    expect(card.querySelector(".complaint")?.textContent).toBe("");
  });
});

test("A drawing on the page has the pixels of the screen", () => {
  const chart = document.createElement("div");
  chart.textContent = "before";
  const canvas = drawOnPage(chart, { height: () => 50.2, draw: (context, width) => context.fillRect(0, 0, width, 1) }, 100.3, "what it is");
  expect(chart.outerHTML).toBe(
    '<div><canvas role="img" aria-label="what it is" width="201" height="100" style="width: 100.3px; height: 50.2px;"></canvas></div>',
  );
  expect(logOf(canvas)).toEqual(["fillRect 0 0 100.3 1"]);
});
