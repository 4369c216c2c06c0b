// The words and numbers of the report: the moment, its table, the origin, the tabs, and the index of a folder.

import { beforeEach, describe, expect, test, vi } from "vitest";
import { readFolder, showFolder } from "../../report/folder";
import { showNothingPinned, showPinned, showReadout } from "../../report/momentview";
import { makerText, originCard, sizeText } from "../../report/origin";
import { PersonTabs } from "../../report/persons";
import { csvOf } from "../../report/tables";
import { doubles, labelLine, person, rawPerson, recording, ribbon, summary, counts, floats } from "./recordings";

const target = document.createElement("div");
const coded = { labels: { warnings: [], persons: [{ person: 3, ribbons: [ribbon(), ribbon({ quantity: "", tier: "eyes" }), ribbon({ quantity: "" })], lines: [labelLine()] }] } };

describe("The readout", () => {
  const shown = (moment: number, more: object = {}) => {
    const whole = recording(more);
    showReadout(target, whole, whole.persons[0], moment);
    return [...target.querySelectorAll("dl div")].map((line) => [...line.children].map((part) => part.textContent).filter(Boolean).join(" | "));
  };

  test("has the estimate and the readings of a moment", () => {
    expect(shown(1)).toEqual([
      "time | Ada (3) | 0:01.00", "valence | positive, confidence 0.50 | +0.50", "attention | confidence 0.25 | 1.00", "zone | at the robot",
      "pleasure | positive", "smile | 0.50", "words | +0.50", "touch | pleasant",
    ]);
    expect(target).toMatchSnapshot();
  });

  test("says what is unknown, and that a person is not visible", () => {
    expect(shown(0)).toEqual([
      "time | Ada (3) | 0:00.00", "valence | confidence 0.00 | unknown", "attention | confidence 0.00 | unknown", "zone | no zone", "pleasure | unknown",
    ]);
    expect(target.querySelector(".group")?.textContent).toBe("no readings");
    expect(shown(3)).toContain("zone | not visible");
  });

  test("has the labels of coders", () => {
    expect(shown(1, coded)).toContain("Bo, pleasure | negative");
    expect(target.querySelector(".card")).toMatchSnapshot();
  });
});

describe("A pinned moment", () => {
  test("has its forces, and says how many updates are not shown", () => {
    const whole = recording();
    showPinned(target, whole, whole.persons[0], 1);
    expect(target.querySelector(".sentence")?.textContent).toBe("Valence went from 0.000 to +0.500: The smile +0.500.");
    expect(target).toMatchSnapshot();
    showPinned(target, whole, whole.persons[0], 2);
    expect(target.querySelector("caption")?.textContent).toBe("Forces at 0:02.00, in order");
    expect(target.textContent).not.toContain("are not shown");
  });

  test("is asked for if there is none", () => {
    showNothingPinned(target);
    expect(target).toMatchSnapshot();
  });
});

describe("A table of a figure", () => {
  const whole = recording(coded, [rawPerson(), rawPerson({ id: 4, name: "" })]);
  const csv = (name: Parameters<typeof csvOf>[0], from = 1, to = 2) => csvOf(name, whole, whole.persons[0], { from, to }, 2, ["caption"]);

  test("of estimates has labels of coders, and unknown values empty", () => {
    expect(csv("estimates", 0, 2)).toBe(
      "# caption\n" +
        "time,seen,valence,valence_confidence,attention,attention_confidence,zone,pleasure,Bo: pleasure,Bo: eyes,Bo: labels,Bo: valence\n" +
        "0,1,,0,,0,Unknown,unknown,positive,positive,positive,\n" +
        "1,1,0.5,0.5,1,0.25,LookingAtRobot,positive,negative,negative,negative,0.5\n" +
        "2,1,-0.25,1,0.5,0.5,LookingDownLeft,negative,contradiction,contradiction,contradiction,\n",
    );
  });

  test("of estimates joins labels at one time", () => {
    const both = recording({ labels: { warnings: [], persons: [{ person: 3, ribbons: [ribbon({ from: doubles(0, 0, 0), to: doubles(9, 9, 9) })], lines: [] }] } });
    expect(csvOf("estimates", both, both.persons[0], { from: 0, to: 0 }, 2, [])).toContain("positive; negative; contradiction");
  });

  test("of the comparison has all persons", () => {
    expect(csv("comparison", 0, 1)).toBe(
      "# caption\ntime,person,valence,attention\n0,Ada (3),,\n1,Ada (3),0.5,1\n0,Person 4,,\n1,Person 4,0.5,1\n",
    );
  });

  test("of readings has those that came in", () => {
    expect(csv("inputs")).toBe("# caption\ntime,smile,speech,touch\n1,0.5,0.5,1\n2,0.25,,0\n");
  });

  test("of pulls has the bars that are shown", () => {
    expect(csv("valence-pulls")).toBe("# caption\ntime,The smile,The touch\n1.25,0.125,0.25\n1.75,-0.25,-0.5\n");
    expect(csv("attention-pulls")).toBe("# caption\ntime,The smile\n1.25,0.5\n1.75,-0.5\n");
  });

  test("of the room has its agitation in the span", () => {
    expect(csv("room")).toBe("# caption\ntime,agitation\n1,0.5\n2,1\n");
    expect(csv("room", 0.5, 1.5)).toBe("# caption\ntime,agitation\n1,0.5\n");
  });
});

describe("The origin", () => {
  test.each([
    [0, "0 bytes"],
    [1, "1 byte"],
    [999, "999 bytes"],
    [1000, "1.0 kB"],
    [12_340, "12.3 kB"],
    [99_940, "99.9 kB"],
    [99_950, "100 kB"],
    [999_499, "999 kB"],
    [999_500, "1.0 MB"],
    [1.5e9, "1.5 GB"],
    [2e12, "2.0 TB"],
    [5e15, "5000 TB"],
  ])("has the size %d as %s", (bytes, text) => {
    expect(sizeText(bytes)).toBe(text);
  });

  test("has the version and the date, if they are known", () => {
    const origin = { files: [], readAs: [], options: [] };
    expect(makerText({ ...origin, version: "1.0.0", made: "2026" })).toBe("skeigiot 1.0.0, 2026");
    expect(makerText({ ...origin, version: "", made: "" })).toBe("skeigiot");
  });

  test("has files, options and messages", () => {
    const origin = {
      files: [{ path: "a.csv", bytes: 1000, format: "openface" }, { path: "-", bytes: null, format: "" }],
      readAs: ["15 Hz", "2 persons"],
      options: ["--cycle", "5"],
      version: "1.0.0",
      made: "2026",
    };
    expect(originCard(recording({ origin, notes: ["odd"] }))).toMatchSnapshot();
    expect(originCard(recording({ origin: { ...origin, files: origin.files.slice(0, 1), readAs: [], options: [] } }))).toMatchSnapshot();
  });
});

describe("The tabs of persons", () => {
  const persons = (count: number) => recording({}, Array.from({ length: count }, (_, i) => rawPerson({ id: i + 1, name: "", summary: { ...summary, from: 1, to: 3 } })));
  let select: ReturnType<typeof vi.fn<(number: number) => void>>;

  function tabs(count: number, selected = 0) {
    const whole = persons(count);
    const place = document.createElement("div");
    document.body.replaceChildren(place);
    select = vi.fn();
    const made = new PersonTabs(place, whole, select);
    made.show(whole.persons[selected]);
    return { place, whole, made };
  }

  beforeEach(() => document.body.replaceChildren());

  test("show when each person was present, and which one is selected", () => {
    expect(tabs(2, 1).place).toMatchSnapshot();
  });

  test("are hidden if there is nobody", () => {
    const { place, made } = tabs(0);
    expect(place.hidden).toBe(true);
    made.show(undefined);
    expect(made.keyPressed("x", undefined)).toBe(false);
  });

  test("show presence in a recording without a length", () => {
    const whole = recording({ length: 0 });
    new PersonTabs(target, whole, () => {}).show(undefined);
    expect(target.querySelector(".presence span")?.getAttribute("style")).toBe("left:0.00%;width:max(2px,300000.00%)");
  });

  test("select by click", () => {
    const { place } = tabs(3);
    place.querySelectorAll("button")[2].click();
    expect(select.mock.calls).toEqual([[2]]);
  });

  test("keep the focus, if they have it", () => {
    const { place, whole, made } = tabs(3);
    made.show(whole.persons[1]);
    expect(made.hasFocus()).toBe(false);
    expect(document.activeElement).toBe(document.body);
    place.querySelectorAll("button")[1].focus();
    expect(made.hasFocus()).toBe(true);
    const focus = vi.spyOn(HTMLElement.prototype, "focus");
    made.show(whole.persons[2]);
    expect(document.activeElement?.id).toBe("tab-2");
    expect(focus).toHaveBeenCalledWith({ preventScroll: true });
    focus.mockRestore();
  });

  test.each([
    ["ArrowRight", 0, 1],
    ["ArrowRight", 2, 0],
    ["ArrowLeft", 0, 2],
    ["ArrowLeft", 2, 1],
    ["Home", 2, 0],
    ["End", 0, 2],
  ])("take the key %s at %d as %d", (key, at, next) => {
    const { whole, made } = tabs(3);
    expect(made.keyPressed(key, whole.persons[at])).toBe(true);
    expect(select.mock.calls).toEqual([[next]]);
  });

  test("take no other key, and begin with the first person", () => {
    const { made } = tabs(3);
    expect(made.keyPressed("Enter", undefined)).toBe(false);
    expect(made.keyPressed("ArrowRight", undefined)).toBe(true);
    expect(select.mock.calls).toEqual([[1]]);
  });

  test("take digits that come quickly as one number, if there are so many persons", () => {
    const { made } = tabs(12);
    const typed = (digit: string, now: number) => {
      select.mockClear();
      made.digitTyped(digit, now);
      return select.mock.calls.flat();
    };
    expect(typed("1", 1000)).toEqual([0]);
    expect(typed("2", 1899)).toEqual([11]);
    expect(typed("1", 2000)).toEqual([0]);
    expect(typed("2", 2900)).toEqual([1]);
    expect(typed("1", 9000)).toEqual([0]);
    expect(typed("3", 9001)).toEqual([2]);
    expect(typed("0", 20000)).toEqual([]);
  });

  test("take no digit beyond the last person", () => {
    const { made } = tabs(2);
    made.digitTyped("3", 1);
    expect(select).not.toHaveBeenCalled();
    made.digitTyped("2", 5000);
    expect(select.mock.calls).toEqual([[1]]);
  });

  test("scroll to the one that is selected, both ways", () => {
    const { place, whole, made } = tabs(3);
    const size = (name: string, value: number, of: object = HTMLElement.prototype) => Object.defineProperty(of, name, { value, configurable: true });
    size("offsetLeft", 100);
    size("offsetWidth", 50);
    size("offsetTop", 200);
    size("offsetHeight", 20);
    size("clientWidth", 80, place);
    size("clientHeight", 60, place);
    place.scrollLeft = place.scrollTop = 0;
    made.show(whole.persons[1]);
    expect([place.scrollLeft, place.scrollTop]).toEqual([70, 160]);
    place.scrollLeft = place.scrollTop = 500;
    made.show(whole.persons[1]);
    expect([place.scrollLeft, place.scrollTop]).toEqual([100, 200]);
    for (const name of ["offsetLeft", "offsetWidth", "offsetTop", "offsetHeight"]) delete (HTMLElement.prototype as unknown as Record<string, unknown>)[name];
  });
});

describe("The index of a folder", () => {
  const seen = { id: 3, name: "Ada", verdict: "positive", seen: 0.5, valence: 0.25, attention: 0.75, valenceCurve: [0, 1, null], attentionCurve: [0.5, 0.5, 1] };
  const unknown = { ...seen, id: 4, name: "", seen: null, valence: null, attention: null, valenceCurve: [null], attentionCurve: [null, null] };
  const one = { file: "a.csv", page: "a.html", length: 61, personCount: 5, persons: [seen, unknown], warnings: 1, error: "" };

  test("is read from its data, and not from those of one recording", () => {
    expect(readFolder(JSON.stringify({ recordings: [one] }))).toEqual([one]);
    expect(readFolder('{"inputs":[]}')).toBeNull();
  });

  test("has a row for each person, with small pictures", () => {
    const header = document.createElement("header");
    showFolder(
      [
        one,
        { ...one, file: "b.csv", persons: [], personCount: 0, warnings: 2, error: "cut" },
        { ...one, file: "c.csv", page: "", persons: [], personCount: 0, warnings: 0, error: "not a recording" },
        { ...one, file: "d.csv", personCount: 1, persons: [seen], warnings: 0 },
      ],
      header,
      target,
    );
    expect(document.title).toBe("4 recordings");
    expect(header.innerHTML).toBe("<h1>4 recordings</h1>");
    expect(target).toMatchSnapshot();
  });
});

test("A moment without other updates says nothing of them", () => {
  const whole = recording({}, [rawPerson({ updates: counts(1, 1, 1, 1), valence: floats(0, 0, 0, 0) })]);
  showPinned(target, whole, whole.persons[0], 1);
  expect(target.textContent).not.toContain("not shown");
  expect(person().id).toBe(3);
});
