// The live page: tabs, the moment, the charts, and the session as a whole.

import { afterEach, beforeEach, describe, expect, test, vi } from "vitest";
import { Charts } from "../../live/charts";
import { showForces, showReadout } from "../../live/momentview";
import { Input, Moment, Person, Session } from "../../live/session";
import { SessionView } from "../../live/sessionview";
import { Tabs } from "../../live/tabs";
import { drawn } from "../charts";
import { logOf } from "../drawing";

const moment = (more: Partial<Moment> = {}): Moment => ({
  time: 61.5,
  updates: 3,
  seen: true,
  valence: 0.5,
  valenceConfidence: 0.25,
  valenceKnown: true,
  attention: 0.75,
  attentionConfidence: 0.5,
  attentionKnown: true,
  zone: "LookingDownLeft",
  pleasure: "positive",
  ease: { level: 0.25, confidence: 0.5, word: "at ease" },
  inputs: [["smile", 0.5]],
  forces: [{ source: "Smile", quantity: "valence", target: 0.5, weight: 0.25, before: 0, after: 0.5 }],
  ...more,
});
const person = (id: number, more: Partial<Moment> = {}): Person => ({ id, name: "", moments: [moment(more)] });
const target = document.createElement("div");

afterEach(() => vi.restoreAllMocks());

describe("The tabs", () => {
  let select: ReturnType<typeof vi.fn<(id: number) => void>>;
  let tabs: Tabs;
  let place: HTMLElement;
  const texts = () => [...place.querySelectorAll("button")].map((button) => [...button.children].map((part) => part.textContent).join(" | "));

  beforeEach(() => {
    place = document.createElement("div");
    document.body.replaceChildren(place);
    select = vi.fn();
    tabs = new Tabs(place, select);
  });

  test("say how each person is", () => {
    tabs.show([person(3), person(5, { seen: false, valenceKnown: false }), person(7, { zone: "Elsewhere" }), { ...person(8), name: "Ada" }], 5);
    expect(texts()).toEqual([
      "Person 3 | 1 | +0.50 positive, ↙ down left", "Person 5 | 2 | unknown, not visible", "Person 7 | 3 | +0.50 positive, elsewhere",
      "Ada (8) | 4 | +0.50 positive, ↙ down left",
    ]);
    expect(place).toMatchSnapshot();
  });

  test("stay the same elements in their order, while persons come and go", () => {
    tabs.show([person(3), person(5)], 3);
    const [first, second] = place.querySelectorAll("button");
    const name = second.firstChild?.firstChild;
    tabs.show([person(1), person(5)], 5);
    expect([...place.children].map(({ id }) => id)).toEqual(["tab-1", "tab-5"]);
    expect(place.children[1]).toBe(second);
    expect(second.firstChild?.firstChild).toBe(name);
    expect(second.getAttribute("aria-selected")).toBe("true");
    expect(first.isConnected).toBe(false);
    const insert = vi.spyOn(place, "insertBefore");
    tabs.show([person(1), person(5)], 5);
    expect(insert).not.toHaveBeenCalled();
    tabs.show([person(1), person(3), person(5)], 5);
    expect([...place.children].map(({ id }) => id)).toEqual(["tab-1", "tab-3", "tab-5"]);
    expect(place.hidden).toBe(false);
    tabs.show([], undefined);
    expect(place.hidden).toBe(true);
    expect(place.children.length).toBe(0);
  });

  test("select by click", () => {
    tabs.show([person(3), person(5)], 3);
    place.querySelectorAll("button")[1].click();
    expect(select.mock.calls).toEqual([[5]]);
  });

  test.each([
    ["ArrowRight", 3, 5],
    ["ArrowRight", 7, 3],
    ["ArrowLeft", 3, 7],
    ["ArrowLeft", 7, 5],
    ["Home", 7, 3],
    ["End", 3, 7],
    ["ArrowRight", undefined, 5],
    ["ArrowRight", 99, 5],
  ])("take the key %s at %s as %d, which gets the focus", (key, at, next) => {
    tabs.show([person(3), person(5), person(7)], at);
    expect(tabs.hasFocus()).toBe(false);
    expect(tabs.keyPressed(key, at)).toBe(true);
    expect(select.mock.calls).toEqual([[next]]);
    expect(document.activeElement?.id).toBe(`tab-${next}`);
    expect(tabs.hasFocus()).toBe(true);
  });

  test("take no other key, and none without persons", () => {
    expect(tabs.keyPressed("Home", 3)).toBe(false);
    tabs.show([person(3)], 3);
    expect(tabs.keyPressed("Enter", 3)).toBe(false);
    expect(select).not.toHaveBeenCalled();
  });

  test("take digits that come quickly as one number, if there are so many persons", () => {
    tabs.show(Array.from({ length: 12 }, (_, i) => person(100 + i)), 100);
    const typed = (digit: string, now: number) => {
      select.mockClear();
      tabs.digitTyped(digit, now);
      return select.mock.calls.flat();
    };
    expect(typed("1", 1000)).toEqual([100]);
    expect(typed("2", 1899)).toEqual([111]);
    expect(typed("1", 5000)).toEqual([100]);
    expect(typed("2", 5900)).toEqual([101]);
    expect(typed("1", 9000)).toEqual([100]);
    expect(typed("3", 9001)).toEqual([102]);
    expect(typed("0", 20000)).toEqual([]);
    tabs.show([person(3)], 3);
    expect(typed("2", 30000)).toEqual([]);
    expect(typed("1", 40000)).toEqual([3]);
  });
});

describe("The readout", () => {
  const lines = () => [...target.querySelectorAll("dl div")].map((line) => [...line.children].map((part) => part.textContent).filter(Boolean).join(" | "));

  test("has the estimate and the readings of a moment", () => {
    showReadout(target, person(3), moment(), "now");
    expect(target).toMatchSnapshot();
    expect(lines()).toEqual([
      "time | Person 3, now | 1:01.50", "valence | positive, confidence 0.25 | +0.50", "attention | confidence 0.50 | 0.75", "zone | down left",
      "pleasure | positive", "ease | confidence 0.50 | at ease", "smile | 0.50",
    ]);
  });

  test("says what is unknown", () => {
    showReadout(target, person(3), moment({ seen: false, valenceKnown: false, attentionKnown: false, ease: { level: 0, confidence: 0, word: "at ease" }, inputs: [] }), "now");
    expect(lines()).toEqual([
      "time | Person 3, now | 1:01.50", "valence | confidence 0.25 | unknown", "attention | confidence 0.50 | unknown", "zone | not visible",
      "pleasure | positive", "ease | unknown",
    ]);
    expect(target.querySelector(".group")?.textContent).toBe("no readings");
  });
});

test("The forces of a moment are in their order, and it can be unpinned", () => {
  const session = new Session();
  session.takeFacts(JSON.stringify({ sources: ["Smile"], sourceNames: ["The smile"] }));
  const unpin = vi.fn();
  showForces(target, session, moment(), true, unpin);
  expect(target).toMatchSnapshot();
  target.querySelector<HTMLButtonElement>("button.link")?.click();
  expect(unpin).toHaveBeenCalledTimes(1);
  showForces(target, session, moment({ updates: 1 }), false, unpin);
  expect(target.textContent).not.toContain("not shown");
  expect(target.textContent).toContain("Of the last update. Click a moment in a chart to pin it.");
  expect(target.querySelector("[data-pinned]")).toBeNull();
});

describe("The charts of a person", () => {
  const seen: (number | null)[] = [];
  const actions = { hover: (time: number | null) => void seen.push(time), pick() {} };
  const moments = [
    moment({ time: 1, zone: "LookingUp" }),
    moment({ time: 1.5, zone: "LookingUp", pleasure: "negative" }),
    moment({ time: 2, seen: false, valenceKnown: false, attentionKnown: false }),
    moment({ time: 2.5, zone: "LookingAtRobot" }),
  ];
  let charts: Charts;

  beforeEach(() => {
    seen.length = 0;
    document.body.replaceChildren();
    charts = new Charts(document.body, 672, actions);
  });
  afterEach(() => charts.destroy());

  test("have headings", () => {
    expect([...document.body.children].map((node) => (node.matches(".chart") ? "(chart)" : node.outerHTML))).toMatchSnapshot();
  });

  test("draw the last minute", async () => {
    charts.show({ id: 3, name: "", moments }, 61, 30, 2);
    await drawn();
    const logs = [...document.querySelectorAll("canvas")].map((canvas) => logOf(canvas));
    expect(logs.length).toBe(3);
    const [, , ribbons] = logs;
    const from = ribbons.lastIndexOf("clearRect 0 0 1344 222");
    expect(ribbons.slice(from).filter((line) => line.startsWith("fill"))).toMatchSnapshot();
    for (const log of logs) expect(log).toContain("strokeStyle = color(--accent)"); // pinned
    charts.resize(372);
    await drawn();
    expect(document.querySelector<HTMLElement>(".u-wrap")?.style.width).toBe("372px");
  });

  test("say where the mouse is over one of them, and that it left", async () => {
    charts.show({ id: 3, name: "", moments }, 61, 30, null);
    await drawn();
    expect(seen).toEqual([]);
    const over = document.querySelector(".u-over") as HTMLElement;
    over.dispatchEvent(new MouseEvent("mouseenter"));
    charts.show({ id: 3, name: "", moments }, 61, 30, null);
    await drawn();
    expect(seen).toEqual([]);
    vi.spyOn(Element.prototype, "getBoundingClientRect").mockReturnValue({ left: 0, top: 0, width: 600, height: 100 } as DOMRect);
    window.dispatchEvent(new Event("scroll"));
    over.dispatchEvent(new MouseEvent("mousemove", { clientX: 300, clientY: 5, bubbles: true }));
    await new Promise((done) => setTimeout(done, 50));
    over.dispatchEvent(new MouseEvent("mouseleave"));
    expect(seen[seen.length - 1]).toBeNull();
    const count = seen.length;
    charts.show({ id: 3, name: "", moments }, 61, 20, null);
    await drawn();
    expect(seen.length).toBe(count);
  });
});

describe("The session as a whole", () => {
  const asked: { address: string; body: unknown }[] = [];
  const says: string[] = [];
  let answers: () => Promise<Response>;
  let session: Session;
  let view: SessionView;
  const input: Input = { name: "/a/b.jsonl", unit: "lines", speed: 1, lines: 5, refused: 1234, lastError: "", rate: 9.96, delay: 0.0456, ended: false, others: 0 };
  const settled = () => new Promise((done) => setTimeout(done, 0));

  beforeEach(() => {
    asked.length = says.length = 0;
    document.body.innerHTML = ["title", "input", "others", "scopes", "boundaries", "warnings", "save"].map((id) => `<div id="${id}"></div>`).join("");
    answers = async () => new Response("ok");
    vi.stubGlobal("fetch", (address: string, request?: RequestInit) => {
      asked.push({ address, body: request?.body && JSON.parse(String(request.body)) });
      return answers();
    });
    session = new Session();
    view = new SessionView(session, (message) => void says.push(message));
  });

  const part = (id: string) => document.getElementById(id) as HTMLElement;
  const facts = () => Object.fromEntries([...part("input").children].map((line) => [line.children[0].textContent, line.children[1].textContent]));

  test("has its headings, and nothing before the first news", () => {
    view.show();
    expect(document.body).toMatchSnapshot();
  });

  test("has the input", () => {
    session.input = input;
    session.now = 61;
    session.persons.set(3, person(3));
    view.show();
    expect(part("title").textContent).toBe("b.jsonl");
    expect(document.title).toBe("b.jsonl · skeigiot live");
    expect(facts()).toEqual({
      persons: "1", time: "1:01.0", "lines a second": "10.0", "delay of readings": "46 ms", room: "unknown", "lines refused": "1,234",
    });
    expect(part("others").textContent).toBe("");
    session.input = { ...input, others: 2, speed: 0.5, ended: true, delay: -0.5 };
    session.room = { agitation: 0.25, excited: true };
    view.show();
    expect(facts()).toMatchObject({ persons: "3", "lines a second": "ended", "delay of readings": "−500 ms", room: "excited, agitation 0.25", speed: "0.5×" });
    expect(part("others").textContent).toBe("2 more persons not shown: the page shows 64 at most.");
    session.input = { ...input, name: "", speed: 2, delay: null };
    session.room = { agitation: 0, excited: false };
    view.show();
    expect(part("title").textContent).toBe("Live session");
    expect(facts()).toMatchObject({ "delay of readings": "unknown", room: "calm, agitation 0.00" });
    expect(facts()).not.toHaveProperty("speed");
    for (const [delay, text] of [[10, "10.0 s"], [-12.34, "−12.3 s"], [9.999, "9999 ms"]] as const) {
      session.input = { ...input, delay };
      view.show();
      expect(facts()["delay of readings"]).toBe(text);
    }
  });

  test("keeps the title as it is while it is the same", () => {
    session.input = input;
    view.show();
    document.title = "mine";
    view.show();
    expect(document.title).toBe("mine");
  });

  test("starts a scope, and clears the field once it is started", async () => {
    const field = part("scope") as HTMLInputElement;
    const start = () => part("scopes").querySelector("form")?.dispatchEvent(new SubmitEvent("submit", { cancelable: true }));
    field.value = " greeting ";
    expect(start()).toBe(false);
    await settled();
    expect(asked).toEqual([{ address: expect.stringMatching(/\?token=/), body: { startScope: "greeting" } }]);
    expect([field.value, says]).toEqual(["", [""]]);
    field.value = "x";
    answers = async () => new Response(" no such thing ", { status: 400 });
    start();
    await settled();
    expect([field.value, says[1]]).toEqual(["x", "no such thing"]);
    answers = async () => new Response("", { status: 500 });
    start();
    await settled();
    expect(says[2]).toBe("The session refuses this (500).");
    answers = () => Promise.reject(new Error("network"));
    start();
    await settled();
    expect(says[3]).toBe("The session does not answer: has it ended?");
    answers = async () => new Response("ok");
    start();
    field.value = "typed since";
    await settled();
    expect(field.value).toBe("typed since");
  });

  test("stops a scope that is open", async () => {
    session.scopes = ["greeting"];
    view.show();
    expect(part("scopes").querySelector(".open")).toMatchSnapshot();
    part("scopes").querySelector<HTMLButtonElement>(".open button")?.click();
    await settled();
    expect(asked.map(({ body }) => body)).toEqual([{ stopScope: "greeting" }]);
  });

  test("has the verdicts, the newest first", () => {
    const verdict = (number: number, end: string, persons: object[]) => ({ number, scope: `s${number}`, from: 1e9, to: 61e9, end, persons });
    session.verdicts = [
      verdict(1, "stopped", [{ id: 3, name: "Ada", verdict: "positive", updates: 7 }, { id: 4, name: "", verdict: "neutral", updates: 1 }]),
      verdict(2, "not open", []),
      verdict(3, "stopped", []),
    ] as Session["verdicts"];
    view.show();
    expect(part("scopes").querySelector("table")).toMatchSnapshot();
  });

  test("has the boundaries, which can be changed and put back", async () => {
    const boundary = { option: "positive-from", description: "positive from", interval: "in [0, 1]", value: 0.30000001192, first: 0.3 };
    session.boundaries = [boundary];
    view.show();
    expect(part("boundaries")).toMatchSnapshot();
    const field = part("positive-from") as HTMLInputElement;
    field.value = "0.5";
    field.dispatchEvent(new Event("change"));
    await settled();
    expect(asked.map(({ body }) => body)).toEqual([{ boundary: "positive-from", value: 0.5 }]);
    expect(field.value).toBe("0.5");
    answers = async () => new Response("too large", { status: 400 });
    field.dispatchEvent(new Event("change"));
    await settled();
    expect(field.value).toBe("0.3");
    part("boundaries").querySelector<HTMLButtonElement>("button")?.click();
    await settled();
    expect(asked[2].body).toEqual({ putBack: true });
    field.focus();
    session.boundaries = [{ ...boundary, value: 0.3 }];
    view.show();
    expect(document.activeElement).toBe(part("positive-from"));
    expect(part("positive-from")).not.toBe(field);
    expect(part("boundaries").querySelector<HTMLButtonElement>("button")?.disabled).toBe(true);
    view.show();
    session.boundaries = [{ ...boundary, value: 0.3 }, boundary];
    view.show();
    expect(part("boundaries").querySelector<HTMLButtonElement>("button")?.disabled).toBe(false);
  });

  test("has the warnings, the newest first", () => {
    session.warnings = [{ number: 1, text: "<old>" }, { number: 2, text: "new" }];
    view.show();
    expect([...part("warnings").querySelectorAll("li")].map(({ outerHTML }) => outerHTML)).toEqual(["<li>new</li>", "<li>&lt;old&gt;</li>"]);
  });

  test("shows a part again only after a change", () => {
    session.scopes = ["a"];
    view.show();
    const item = part("scopes").querySelector(".open li");
    view.show();
    expect(part("scopes").querySelector(".open li")).toBe(item);
  });

  test("saves the recording and the report", async () => {
    const later = vi.spyOn(globalThis, "setTimeout");
    const revoked: string[] = [];
    URL.createObjectURL = () => "blob:1";
    URL.revokeObjectURL = (address) => void revoked.push(address);
    const saved: string[] = [];
    vi.spyOn(HTMLAnchorElement.prototype, "click").mockImplementation(function (this: HTMLAnchorElement) {
      saved.push(`${this.download} ${this.href}`);
    });
    const [recording, report] = part("save").querySelectorAll("button");
    recording.click();
    expect([recording.disabled, says]).toEqual([true, ["recording.jsonl is being made."]]);
    await vi.waitFor(() => expect(recording.disabled).toBe(false));
    expect(says[1]).toBe("recording.jsonl is saved.");
    expect(saved).toEqual(["recording.jsonl blob:1"]);
    expect(asked[0].address).toBe("/recording.jsonl?token=");
    expect(revoked).toEqual([]);
    const [giveBack] = later.mock.calls.find(([, after]) => after === 60_000) ?? [];
    (giveBack as () => void)();
    expect(revoked).toEqual(["blob:1"]);
    answers = async () => new Response("too long", { status: 413 });
    report.click();
    await vi.waitFor(() => expect(report.disabled).toBe(false));
    expect([asked[1].address, ...says.slice(2)]).toEqual(["/report.html?token=", "report.html is being made.", "too long"]);
  });
});

test("A request has the token of the page's address", async () => {
  vi.resetModules();
  history.replaceState(null, "", "/?token=a%20b%26c");
  const { addressOf } = await import("../../live/orders");
  expect(addressOf("/frame")).toBe("/frame?token=a%20b%26c");
});
