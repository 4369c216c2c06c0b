import { describe, expect, test } from "vitest";
import { lastMoment, personName, Session, shownTime } from "../../live/session";

const second = 1e9;
export const raw = (id: number, time: number, more: object = {}) => ({
  id,
  name: "",
  time: time * second,
  updates: 2,
  seen: true,
  valence: [0.5, 0.25, true],
  attention: [0.75, 0.5, true],
  zone: "LookingAtRobot",
  pleasure: "positive",
  ease: [0.25, 0.5, "at ease"],
  inputs: { smile: 0.5 },
  forces: [[0, 0, 0.5, 0.25, 0, 0.5]],
  ...more,
});
const facts = { sources: ["Smile"], sourceNames: ["The smile"], boundaries: [], scopes: ["a"], verdicts: [], warnings: [], room: null };

function session(...news: object[]): Session {
  const made = new Session();
  made.takeFacts(JSON.stringify(facts));
  for (const one of news) made.takeNews(JSON.stringify(one));
  return made;
}

test("A person has a name and a number", () => {
  expect(personName({ id: 3, name: "" })).toBe("Person 3");
  expect(personName({ id: 3, name: "Ada" })).toBe("Ada (3)");
});

describe("A session", () => {
  test("begins with nothing", () => {
    const made = new Session();
    expect([made.now, made.sources, made.boundaries, made.scopes, made.verdicts, made.warnings, made.room, made.input]).toEqual([0, [], [], [], [], [], null, null]);
    expect(made.sourceName("Smile")).toBe("Smile");
  });

  test("has facts, which news change", () => {
    const made = session();
    expect([made.scopes, made.sourceName("Smile"), made.sourceName("Touch")]).toEqual([["a"], "The smile", "Touch"]);
    const news = {
      now: 1.5 * second,
      scopes: ["b"],
      boundaries: [{ option: "x" }],
      room: { agitation: 0.5, excited: true },
      input: { name: "in" },
      sources: ["Touch"],
      sourceNames: ["The touch"],
    };
    made.takeNews(JSON.stringify(news));
    expect([made.now, made.scopes, made.boundaries, made.room, made.input, made.sourceName("Touch")]).toEqual([
      1.5, ["b"], [{ option: "x" }], { agitation: 0.5, excited: true }, { name: "in" }, "The touch",
    ]);
    made.takeNews(JSON.stringify({ now: 2 * second }));
    expect([made.now, made.scopes, made.boundaries, made.room, made.input, made.sources]).toEqual([
      2, ["b"], [{ option: "x" }], { agitation: 0.5, excited: true }, { name: "in" }, ["Touch"],
    ]);
  });

  test("has the moments of a person", () => {
    const made = session({ now: second, persons: [raw(3, 1)] });
    const person = made.persons.get(3);
    expect(person).toEqual({
      id: 3,
      name: "",
      moments: [
        {
          time: 1, updates: 2, seen: true, valence: 0.5, valenceConfidence: 0.25, valenceKnown: true, attention: 0.75, attentionConfidence: 0.5,
          attentionKnown: true, zone: "LookingAtRobot", pleasure: "positive", ease: { level: 0.25, confidence: 0.5, word: "at ease" },
          inputs: [["smile", 0.5]],
          forces: [{ source: "Smile", quantity: "valence", target: 0.5, weight: 0.25, before: 0, after: 0.5 }],
        },
      ],
    });
  });

  test("takes unknown numbers for no numbers, and unknown sources for none", () => {
    const made = session({ now: second, persons: [raw(3, 1, { valence: [null, null, false], attention: [null, null, false], ease: [null, null, ""], forces: [[7, 4, 1, 1, 1, 1]] })] });
    const [moment] = made.persons.get(3)?.moments ?? [];
    expect([moment.valence, moment.valenceConfidence, moment.attention, moment.attentionConfidence, moment.ease.level, moment.ease.confidence]).toEqual(
      new Array(6).fill(NaN),
    );
    expect([moment.forces[0].source, moment.forces[0].quantity]).toEqual(["", "attention"]);
  });

  test("keeps the name of a person once it came", () => {
    const made = session({ now: second, persons: [raw(3, 1, { name: "Ada" })] }, { now: second, persons: [raw(3, 1.5)] });
    expect(made.persons.get(3)?.name).toBe("Ada");
  });

  test("does not take moments again that come again, but those of the same time", () => {
    const made = session({ now: second, persons: [raw(3, 1)] }, { now: second, persons: [raw(3, 0.5)] }, { now: second, persons: [raw(3, 1)] });
    expect(made.persons.get(3)?.moments.map(({ time }) => time)).toEqual([1, 1]);
  });

  test("removes persons who left", () => {
    const made = session({ now: second, persons: [raw(3, 1), raw(4, 1)] }, { now: second, left: [3] });
    expect([...made.persons.keys()]).toEqual([4]);
  });

  test("removes persons whose leaving it did not hear of", () => {
    const made = session({ now: second, persons: [raw(3, 1), raw(4, 1.1)] }, { now: 63 * second });
    expect([...made.persons.keys()]).toEqual([3, 4]);
    made.takeNews(JSON.stringify({ now: 63.05 * second }));
    expect([...made.persons.keys()]).toEqual([4]);
  });

  test("keeps the moments of the last minute, one before it, and the last one of all", () => {
    const made = session(...[0, 1, 2, 3].map((time) => ({ now: time * second, persons: [raw(3, time)] })));
    const times = () => made.persons.get(3)?.moments.map(({ time }) => time);
    expect(shownTime).toBe(60);
    made.takeNews(JSON.stringify({ now: 61 * second }));
    expect(times()).toEqual([0, 1, 2, 3]);
    made.takeNews(JSON.stringify({ now: 61.5 * second }));
    expect(times()).toEqual([1, 2, 3]);
    made.takeNews(JSON.stringify({ now: 64.9 * second }));
    expect(times()).toEqual([3]);
    const person = made.persons.get(3);
    expect(person && lastMoment(person).time).toBe(3);
  });

  test("keeps 1500 moments of a person at most", () => {
    const made = session();
    for (let i = 0; i < 1502; ++i) made.takeNews(JSON.stringify({ now: second, persons: [raw(3, i / 1e6)] }));
    expect(made.persons.get(3)?.moments.length).toBe(1500);
    expect(made.persons.get(3)?.moments[0].time).toBeCloseTo(2e-6, 12);
  });

  test("adds verdicts and warnings that are new, and keeps the last 50", () => {
    const warnings = (...numbers: number[]) => ({ now: 0, warnings: numbers.map((number) => ({ number, text: "" })), verdicts: numbers.map((number) => ({ number })) });
    const made = session(warnings(1, 2), warnings(2, 3), warnings());
    expect(made.warnings.map(({ number }) => number)).toEqual([1, 2, 3]);
    expect(made.verdicts.map(({ number }) => number)).toEqual([1, 2, 3]);
    made.takeNews(JSON.stringify(warnings(...Array.from({ length: 60 }, (_, i) => i))));
    expect([made.warnings.length, made.warnings[0].number, made.warnings[49].number]).toEqual([50, 10, 59]);
  });
});
