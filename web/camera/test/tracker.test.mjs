// Tests the tracker on synthetic faces.
//
// usage: node tracker.test.mjs, beside the folder of tracker.ts that esbuild made tracker.mjs of

import assert from "node:assert/strict";
import { finish, test } from "./cases.mjs";
import { overlap, Tracker } from "./tracker.mjs";

const rate = 15;
const face = (x, y = 200, size = 100) => ({ x: x - size / 2, y: y - size / 2, width: size, height: size });

/** Plays frames; `at` gives the boxes of a frame by the names of persons. Returns the tracks that each person had. */
function play(seconds, at, tracker = new Tracker(), from = 0) {
  const tracks = new Map();
  const frames = [];
  for (let frame = 0; frame <= seconds * rate; ++frame) {
    const time = from + frame / rate;
    const boxes = at(frame / rate);
    const names = Object.keys(boxes);
    // The order in which faces are found has no meaning.
    if (frame % 2 === 1) names.reverse();
    const found = tracker.update(
      names.map((name) => boxes[name]),
      time,
    );
    names.forEach((name, i) => {
      if (found.of[i] !== null) tracks.set(name, (tracks.get(name) ?? new Set()).add(found.of[i]));
    });
    frames.push(found);
  }
  return { tracks, frames, tracker };
}

const only = (tracks, name) => {
  assert.equal(tracks.get(name)?.size, 1, `${name} has the tracks ${[...(tracks.get(name) ?? [])]}`);
  return [...tracks.get(name)][0];
};

/** Random numbers that are the same each time. */
function random(seed) {
  let state = seed;
  return () => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return state / 2 ** 32 - 0.5;
  };
}

await test("gives a face that stays one track", () => {
  const { tracks } = play(3, () => ({ a: face(300) }));
  assert.equal(only(tracks, "a"), 1);
});

await test("counts a face from its third frame on", () => {
  const { frames } = play(1, () => ({ a: face(300) }));
  assert.deepEqual(
    frames.slice(0, 4).map(({ of }) => of[0]),
    [null, null, 1, 1],
  );
});

await test("says nothing of what was found once", () => {
  const { frames, tracks } = play(2, (time) => (time < 0.05 ? { a: face(300) } : {}));
  assert.equal(tracks.size, 0);
  assert.ok(frames.every(({ lost, left }) => lost.length === 0 && left.length === 0));
});

await test("keeps the tracks of faces that tremble", () => {
  const noise = random(7);
  const { tracks } = play(20, () => ({ a: face(200 + 12 * noise(), 200 + 12 * noise()), b: face(330 + 12 * noise(), 200 + 12 * noise()) }));
  assert.notEqual(only(tracks, "a"), only(tracks, "b"));
});

await test("keeps the tracks of faces that cross, both being found all the time", () => {
  const { tracks } = play(4, (time) => ({ a: face(100 + 110 * time), b: face(540 - 110 * time, 215) }));
  assert.notEqual(only(tracks, "a"), only(tracks, "b"));
});

for (const [width, name] of [
  [0.6, "a little"],
  [1, "by a whole face"],
])
  await test(`keeps the tracks of faces that cross while one is hidden ${name}`, () => {
    const { tracks } = play(4, (time) => {
      const [a, b] = [face(100 + 110 * time), face(540 - 110 * time, 215)];
      const isHidden = Math.abs(a.x - b.x) < 100 * width;
      return isHidden ? { a } : { a, b };
    });
    assert.notEqual(only(tracks, "a"), only(tracks, "b"));
  });

await test("keeps the tracks of three faces that cross", () => {
  const { tracks } = play(4, (time) => ({
    a: face(100 + 110 * time),
    b: face(540 - 110 * time, 240),
    c: face(320, 100 + 60 * time),
  }));
  assert.equal(new Set(["a", "b", "c"].map((name) => only(tracks, name))).size, 3);
});

await test("knows a face that turns back before it would cross", () => {
  const { tracks } = play(4, (time) => ({ a: face(320 - 60 - 80 * Math.abs(time - 2)), b: face(320 + 60 + 80 * Math.abs(time - 2)) }));
  assert.notEqual(only(tracks, "a"), only(tracks, "b"));
});

await test("keeps the track of a face that comes back where it was", () => {
  for (const gone of [0.3, 1, 5, 9]) {
    const { tracks, frames } = play(12, (time) => (time > 1 && time < 1 + gone ? {} : { a: face(300 + 5 * time) }));
    only(tracks, "a");
    assert.deepEqual(frames[rate + 2].lost, [1], "it is looked for meanwhile");
  }
});

await test("gives a face that was gone for longer another track, and says that the first one is over", () => {
  const { tracks, frames } = play(14, (time) => (time > 1 && time < 12.5 ? {} : { a: face(300) }));
  assert.equal(tracks.get("a").size, 2);
  assert.deepEqual(
    frames.flatMap(({ left }) => left),
    [1],
  );
});

await test("gives a face that appears far away another track", () => {
  const { tracks } = play(3, (time) => (time < 1 ? { a: face(60) } : { b: face(600) }));
  assert.notEqual(only(tracks, "a"), only(tracks, "b"));
});

await test("keeps the track of a face that doubles or halves", () => {
  for (const size of [50, 200]) only(play(3, (time) => ({ a: face(300, 200, time < 1 ? 100 : size) })).tracks, "a");
});

await test("keeps the tracks when time stands still", () => {
  const tracker = new Tracker();
  for (let i = 0; i < 10; ++i) tracker.update([face(300), face(500)], 1);
  assert.deepEqual(tracker.update([face(500), face(300)], 1).of, [2, 1]);
});

await test("follows a crowd of a dozen", () => {
  const { tracks } = play(3, (time) =>
    Object.fromEntries(Array.from({ length: 12 }, (_, i) => [String(i), face(60 + 110 * (i % 6) + 10 * Math.sin(time + i), 100 + 200 * Math.floor(i / 6))])),
  );
  assert.equal(new Set([...tracks.keys()].map((name) => only(tracks, name))).size, 12);
});

await test("measures overlap as the share of the common area", () => {
  assert.equal(overlap(face(100), face(100)), 1);
  assert.equal(overlap(face(100), face(150)), 1 / 3);
  assert.equal(overlap(face(100), face(300)), 0);
});

finish();
