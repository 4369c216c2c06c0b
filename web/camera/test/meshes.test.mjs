// Tests when faces are looked for without those of the frame before. The face mesh here gives results that each test chooses.
//
// usage: node meshes.test.mjs, beside the modules that esbuild made of meshes.ts and of its imports

import assert from "node:assert/strict";
import { finish, test } from "./cases.mjs";
import { Meshes } from "./meshes.mjs";
import { whole } from "./zoom.mjs";

const canvas = { width: 640, height: 480 };
const faceWidth = 80;

/** A face whose box has this left edge [pixels]; all have the same height. */
const faceAt = (left) => [
  { x: left / canvas.width, y: 0.2, z: 0 },
  { x: (left + faceWidth) / canvas.width, y: 0.4, z: 0 },
];

const geometry = {
  getMesh: () => ({ getVertexBufferList: () => new Float32Array(10) }),
  getPoseTransformMatrix: () => ({ getPackedDataList: () => Array(16).fill(0) }),
};

/** Finds faces at the left edges that `seen` returns, which is asked whether the mesh was reset. */
function meshThatSees(seen) {
  return class {
    resets = 0;
    sent = 0;
    wasReset = false;
    reset() {
      ++this.resets;
      this.wasReset = true;
    }
    setOptions() {}
    onResults(listener) {
      this.listener = listener;
    }
    async initialize() {
      made.push(this);
    }
    async send() {
      ++this.sent;
      const lefts = seen(this.wasReset);
      this.wasReset = false;
      this.listener({ multiFaceLandmarks: lefts.map(faceAt), multiFaceGeometry: lefts.map(() => geometry) });
    }
  };
}

let made = [];
async function load(seen) {
  made = [];
  globalThis.window = { FaceMesh: meshThatSees(seen) };
  const meshes = await Meshes.load((name) => name);
  const [poses, irises] = made;
  return { meshes, poses, irises, leftEdges: async () => (await meshes.faces(canvas, whole)).map(({ box }) => Math.round(box.x)) };
}

await test("follows faces that do not touch from frame to frame", async () => {
  const { poses, leftEdges } = await load(() => [100, 181]);
  for (let i = 0; i < 3; ++i) assert.deepEqual(await leftEdges(), [100, 181]);
  assert.deepEqual([poses.resets, poses.sent], [0, 3]);
});

await test("looks anew, in the same picture, for faces that touch", async () => {
  const { poses, leftEdges } = await load((wasReset) => (wasReset ? [100] : [100, 179]));
  for (let i = 1; i <= 3; ++i) {
    assert.deepEqual(await leftEdges(), [100], "the face that lagged behind is gone");
    assert.deepEqual([poses.resets, poses.sent], [i, 2 * i]);
  }
});

await test("looks anew for the irises as well, once", async () => {
  let lefts = [100, 150];
  const { meshes, irises, leftEdges } = await load((wasReset) => (wasReset ? [100] : lefts));
  await leftEdges();
  await meshes.points(canvas, whole);
  assert.equal(irises.resets, 1);
  lefts = [100];
  await leftEdges();
  await meshes.points(canvas, whole);
  assert.equal(irises.resets, 1);
});

await test("leaves faces alone for thirty frames that touch when they are looked for anew as well", async () => {
  const { poses, leftEdges } = await load(() => [100, 150]);
  for (let i = 0; i < 30; ++i) assert.deepEqual(await leftEdges(), [100, 150]);
  assert.equal(poses.resets, 1);
  await leftEdges();
  assert.equal(poses.resets, 2);
});

finish();
