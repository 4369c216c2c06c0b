// Tests what the points of a face mean, and how poses of enlarged parts are put into the whole picture.
//
// usage: node geometry.test.mjs, beside what esbuild made of geometry.ts and zoom.ts

import assert from "node:assert/strict";
import { finish, test } from "./cases.mjs";
import { expressionConfidence, facialPointsOf, gazeOf, smileOf, turnOf } from "./geometry.mjs";
import { pointInWhole, poseInWhole, whole, Zoom } from "./zoom.mjs";

const radians = Math.PI / 180;
const near = (expected, value, tolerance = 1e-6) => assert.ok(Math.abs(value - expected) <= tolerance, `${value} is not ${expected}`);

/** A head that is turned to the right in the picture by so many degrees, at this place [cm]. */
function head(turn = 0, at = [0, 0, -80]) {
  const [sine, cosine] = [Math.sin(turn * radians), Math.cos(turn * radians)];
  return [cosine, 0, -sine, 0, 0, 1, 0, 0, sine, 0, cosine, 0, ...at, 1];
}

/** The points of eyes that are 40 pixels wide, whose irises are aside by so many pixels. */
function eyes(right, up, opening = 12) {
  const points = Array.from({ length: 478 }, () => ({ x: 0, y: 0, z: 0 }));
  const put = (number, x, y) => (points[number] = { x, y, z: 0 });
  const above = 0.05 * 40;
  for (const [corners, lids, iris, middle] of [
    [[33, 133], [159, 145], 468, 100],
    [[362, 263], [386, 374], 473, 200],
  ]) {
    put(corners[0], middle - 20, 100);
    put(corners[1], middle + 20, 100);
    put(lids[0], middle, 100 - opening / 2);
    put(lids[1], middle, 100 + opening / 2);
    put(iris, middle + right, 100 - above - up);
  }
  return points;
}

await test("measures turn and tilt from the line of sight", () => {
  near(0, turnOf(head()).yaw);
  near(30, turnOf(head(30)).yaw);
  near(45, turnOf(head(0, [80, 0, -80])).yaw);
  near(45, turnOf(head(0, [0, 80, -80])).pitch);
});

await test("trusts expressions less the more the head is turned or bent", () => {
  const at = (yaw, pitch, roll = 0) => expressionConfidence({ yaw, pitch, roll });
  near(0.9, at(0, 0));
  near(0.9, at(10, -5, 10));
  for (const sign of [-1, 1]) {
    assert.ok(at(sign * 25, 0) < 0.7 && at(sign * 25, 0) > 0.3);
    assert.ok(at(0, sign * 20) < 0.5);
    near(0, at(0, sign * 31));
    near(0, at(sign * 46, 0));
    near(0, at(0, 0, sign * 46));
  }
});

await test("finds the gaze in the irises, and turns it with the head", () => {
  const ahead = gazeOf(eyes(0, 0), head());
  near(0, ahead[0]);
  near(0, ahead[1]);
  near(1, ahead[2]);
  assert.ok(gazeOf(eyes(5, 0), head())[0] > 0.25, "to the right in the picture");
  assert.ok(gazeOf(eyes(0, 5), head())[1] > 0.25, "up");
  near(Math.sin(30 * radians), gazeOf(eyes(0, 0), head(30))[0], 1e-6);
  near(1, Math.hypot(...gazeOf(eyes(3, -2), head(-20))));
});

await test("says nothing of eyes that cannot be seen", () => {
  assert.equal(gazeOf(eyes(0, 0, 5), head()), null, "closed");
  assert.equal(gazeOf(eyes(0, 0), head(50)), null, "turned away");
  assert.equal(gazeOf(eyes(0, 0).slice(0, 468), head()), null, "no irises");
  assert.equal(gazeOf(eyes(0, 0).map(({ x, y, z }) => ({ x: x / 10, y: y / 10, z })), head()), null, "too small");
});

await test("takes a mouth for a smile that is wide and whose corners are raised", () => {
  const mouth = (width, corners) => (point) => ({ 61: [-width / 2, corners, 0], 291: [width / 2, corners, 0], 0: [0, 0.5, 0], 17: [0, -0.5, 0] })[point];
  const turn = { yaw: 0, pitch: 0, roll: 0 };
  assert.deepEqual(smileOf(mouth(5, 0), turn), [0, 0.9]);
  assert.deepEqual(smileOf(mouth(7, 1), turn), [1, 0.9]);
  assert.equal(smileOf(mouth(7, 0), turn)[0], 0, "wide alone");
  assert.equal(smileOf(mouth(5, 1), turn)[0], 0, "raised alone");
  const half = smileOf(mouth(5.9, 0.4), turn)[0];
  assert.ok(half > 0.4 && half < 0.6, String(half));
  assert.ok(smileOf(mouth(7, 1), { ...turn, yaw: 40 })[1] < 0.5);
});

await test("leaves out facial points beyond the picture", () => {
  const points = eyes(0, 0);
  points[33] = { x: -1, y: 100, z: 0 };
  const sent = facialPointsOf(points, 640, 480);
  assert.equal(Object.keys(sent).length, 11);
  assert.equal(sent[36], undefined);
  assert.deepEqual(sent[39], [120, 100]);
});

await test("puts points of an enlarged part where they are", () => {
  assert.deepEqual(pointInWhole({ x: 100, y: 50, z: 10 }, { x: 200, y: 100, zoom: 2 }), { x: 250, y: 125, z: 5 });
  assert.deepEqual(pointInWhole({ x: 100, y: 50, z: 10 }, whole), { x: 100, y: 50, z: 10 });
});

await test("puts a pose of an enlarged part at its distance and direction", () => {
  assert.deepEqual(poseInWhole(head(10), whole, 640, 480), head(10));
  const middle = poseInWhole(head(10, [0, 0, -50]), { x: 160, y: 120, zoom: 2 }, 640, 480);
  head(10, [0, 0, -100]).forEach((value, i) => near(value, middle[i]));
  const focal = 240 / Math.tan(31.5 * radians);
  const aside = poseInWhole(head(0, [0, 0, -50]), { x: 320, y: 120, zoom: 2 }, 640, 480);
  near(100, Math.hypot(aside[12], aside[13], aside[14]));
  near((160 / focal) * -aside[14], aside[12], 1e-9);
  near(0, turnOf(aside).yaw, 1e-9);
  near(0, turnOf(aside).pitch, 1e-9);
  const below = poseInWhole(head(0, [0, 0, -50]), { x: 160, y: 240, zoom: 2 }, 640, 480);
  assert.ok(below[13] < 0, "down");
  near(0, turnOf(below).pitch, 1e-9);
});

await test("looks at parts of the picture while nobody is found, and keeps the one in which somebody is", () => {
  const zoom = new Zoom();
  const seen = new Set();
  for (let i = 0; i < 12; ++i) {
    const part = zoom.next(640, 480);
    seen.add(`${part.x},${part.y},${part.zoom}`);
    assert.ok(part.x >= 0 && part.y >= 0 && part.x + 640 / part.zoom <= 640 + 1e-9 && part.y + 480 / part.zoom <= 480 + 1e-9);
    zoom.found(part, [], 640, 480);
  }
  assert.equal(seen.size, 5, "the whole, and four parts");
  let part = zoom.next(640, 480);
  while (part.zoom === 1) {
    zoom.found(part, [], 640, 480);
    part = zoom.next(640, 480);
  }
  zoom.found(part, [{ x: part.x + 100, y: part.y + 80, width: 50, height: 50 }], 640, 480);
  const kept = zoom.next(640, 480);
  assert.ok(kept.zoom > 1);
  assert.deepEqual(zoom.found(kept, [{ x: kept.x + 50, y: kept.y + 50, width: 60, height: 60 }], 640, 480), [true]);
  const following = zoom.next(640, 480);
  assert.deepEqual(zoom.found(following, [{ x: following.x + 50, y: following.y + 10, width: 200, height: 200 }], 640, 480), [false]);
  assert.equal(zoom.next(640, 480).zoom, 1, "a large face needs no zoom");
});

await test("does not count faces that the border of an enlarged part cuts", () => {
  const part = { x: 160, y: 120, zoom: 2 };
  const cut = (box) => new Zoom().found(part, [box], 640, 480)[0] === false;
  assert.ok(cut({ x: 150, y: 200, width: 60, height: 60 }));
  assert.ok(cut({ x: 440, y: 200, width: 60, height: 60 }));
  assert.ok(cut({ x: 200, y: 110, width: 60, height: 60 }));
  assert.ok(cut({ x: 200, y: 320, width: 60, height: 60 }));
  assert.ok(!cut({ x: 200, y: 200, width: 60, height: 60 }));
  assert.deepEqual(new Zoom().found({ x: 0, y: 0, zoom: 2 }, [{ x: -5, y: -5, width: 60, height: 60 }], 640, 480), [true], "the border of the picture");
  assert.deepEqual(new Zoom().found(whole, [{ x: -5, y: 0, width: 600, height: 400 }], 640, 480), [true]);
});

finish();
