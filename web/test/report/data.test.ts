import { describe, expect, test } from "vitest";
import { greatestChange, nearest, personName, sourceName, verdictIn } from "../../report/data";
import { bytes, counts, doubles, floats, labelLine, person, rawPerson, recording, ribbon } from "./recordings";

describe("A recording", () => {
  test("has the numbers of each person", () => {
    const { valence, time, updates, zone, pleasure, seen, valenceConfidence, attention, attentionConfidence, valenceKnown, attentionKnown, inputs, ...one } = person();
    expect({ time, updates, valence, valenceConfidence, attention, attentionConfidence, zone, pleasure, seen, valenceKnown, attentionKnown }).toEqual({
      time: Float64Array.of(0, 1, 2, 3),
      updates: Uint32Array.of(1, 2, 1, 3),
      valence: Float32Array.of(0, 0.5, -0.25, -0.75),
      valenceConfidence: Float32Array.of(0, 0.5, 1, 0.25),
      attention: Float32Array.of(0, 1, 0.5, 0.25),
      attentionConfidence: Float32Array.of(0, 0.25, 0.5, 0.75),
      zone: Uint8Array.of(0, 1, 2, 2),
      pleasure: Uint8Array.of(0, 1, 2, 2),
      seen: Uint8Array.of(1, 1, 1, 0),
      valenceKnown: Uint8Array.of(0, 1, 1, 1),
      attentionKnown: Uint8Array.of(0, 1, 1, 1),
    });
    expect([...inputs.keys()]).toEqual(["smile", "speech", "touch"]);
    expect(inputs.get("touch")).toEqual(Float32Array.of(NaN, 1, 0, NaN));
    expect([one.id, one.name, one.summary.updates]).toEqual([3, "Ada", 7]);
    expect(one.valenceChanges).toEqual([
      { source: "Smile", distances: Float32Array.of(0, 0.25, -0.25, -0.75) },
      { source: "Touch emotion", distances: Float32Array.of(0, 0.5, -0.5, 0) },
    ]);
    expect(one.attentionChanges.map(({ source }) => source)).toEqual(["Smile"]);
  });

  test("has the room and its facts", () => {
    const whole = recording();
    expect(whole.ambiance).toEqual({ time: Float64Array.of(0, 1, 2), agitation: Float32Array.of(0, 0.5, 1), excited: Uint8Array.of(0, 0, 1) });
    expect([whole.length, whole.zoneNames.length, whole.labelWarnings]).toEqual([4, 3, []]);
  });

  test("has the forces of a moment, in their order", () => {
    const { forcesAt } = person();
    expect(forcesAt(0)).toEqual([]);
    expect(forcesAt(1)).toEqual([
      { source: "Smile", quantity: "valence", target: 1, weight: 0.5, before: 0, after: 0.5 },
      { source: "Touch emotion", quantity: "attention", target: 0.5, weight: 0.25, before: 0, after: 1 },
    ]);
    expect(forcesAt(2).map(({ quantity }) => quantity)).toEqual(["unsmoothed valence"]);
    expect(forcesAt(3)).toEqual([]);
  });

  test("has the forces of the first moment", () => {
    const forces = { ...(rawPerson() as { forces: object }).forces, ends: counts(1, 1, 1, 3) };
    expect(person({ forces }).forcesAt(0).map(({ source }) => source)).toEqual(["Smile"]);
  });

  test("has the labels of the coders of each person", () => {
    const labels = { warnings: ["odd label"], persons: [{ person: 3, ribbons: [ribbon(), ribbon({ tier: "eyes", quantity: "" })], lines: [labelLine()] }] };
    const whole = recording({ labels }, [rawPerson(), rawPerson({ id: 4, name: undefined })]);
    expect(whole.labelWarnings).toEqual(["odd label"]);
    const [{ labels: own }, other] = whole.persons;
    expect(own.ribbons[0]).toEqual({
      coder: "Bo", quantity: "pleasure", tier: "", from: Float64Array.of(0, 1, 2), to: Float64Array.of(1, 2, 2), texts: ["positive", "negative", "contradiction"],
    });
    expect(own.ribbons[1].tier).toBe("eyes");
    expect(own.lines).toEqual([{ coder: "Bo", quantity: "valence", time: Float64Array.of(0.5, 1, 2, 2.5), value: Float32Array.of(0, 0.5, NaN, -0.5) }]);
    expect(other.labels).toEqual({ ribbons: [], lines: [] });
    expect(other.name).toBe("");
  });

  test("has plain words for sources", () => {
    expect(sourceName(recording(), "Touch emotion")).toBe("The touch");
    expect(sourceName(recording(), "Something else")).toBe("Something else");
  });
});

test("A person has a name and a number", () => {
  expect(personName(person())).toBe("Ada (3)");
  expect(personName(person({ name: "" }))).toBe("Person 3");
});

test("A verdict on a person without an update in the scope is unknown", () => {
  const scope = { name: "a", from: 0, to: 1, end: "", persons: [{ id: 4, verdict: "neutral", updates: 1 }, { id: 3, verdict: "positive", updates: 2 }] };
  expect(verdictIn(scope, 3)).toEqual({ id: 3, verdict: "positive", updates: 2 });
  expect(verdictIn(scope, 5)).toEqual({ verdict: "unknown", updates: 0 });
});

describe("The greatest change", () => {
  const change = (valence: number[], attention: number[], updates = valence.map(() => 1), confidence = valence.map(() => 1)) =>
    greatestChange(
      person({
        time: doubles(...valence.map((_, i) => i)),
        updates: counts(...updates),
        valence: floats(...valence),
        attention: floats(...attention),
        valenceConfidence: floats(...confidence),
        attentionConfidence: floats(...confidence),
        valenceKnown: bytes(...valence.map(() => 1)),
      }),
    );

  test("is that of valence or of attention, in either direction", () => {
    expect(change([0, 0.1, 0.4, 0.2], [0, 0, 0, 0])).toBe(2);
    expect(change([0, 0.1, 0.2, 0.2], [1, 0.9, 0.9, 0.2])).toBe(3);
  });

  test("is that of one update: of several, it is divided", () => {
    expect(change([0, 0.6, 0.6, 0.2], [0, 0, 0, 0], [1, 3, 1, 1])).toBe(3);
    expect(change([0, 0.6, 0.6, 0.2], [0, 0, 0, 0], [1, 0, 1, 1])).toBe(1);
  });

  test("is not the first one, nor one from an unknown estimate, if there is another", () => {
    expect(change([1, 0.9, 0.9], [0, 0, 0])).toBe(1);
    expect(change([0, 1, 0.9], [0, 0, 0], undefined, [0, 1, 1])).toBe(2);
    expect(change([0, 0.3, 0.9], [0, 0, 0], undefined, [0, 0, 0])).toBe(2);
    expect(change([0.5, 0.5, 0.5], [0, 0, 0])).toBe(0);
  });

  test("is the first of equal ones", () => {
    expect(change([0, 0.5, 0, 0.5], [0, 0, 0, 0])).toBe(1);
    expect(change([], [])).toBe(0);
  });
});

describe("The nearest time", () => {
  test.each([
    [-5, 0],
    [0, 0],
    [0.5, 0],
    [0.51, 1],
    [1, 1],
    [2.4, 1],
    [2.6, 2],
    [9, 2],
  ])("to %d is the one in place %d", (time, place) => {
    expect(nearest(Float64Array.of(0, 1, 4), time)).toBe(place);
  });
});
