// Tests the numbers that are made of a result of the face landmarker, and that it forgets faces when the picture jumps.
//
// usage: node landmarker.test.mjs, beside what esbuild made of landmarker.ts and the modules that it imports

import assert from "node:assert/strict";
import { finish, test } from "./cases.mjs";
import { gazeOf, turnOf } from "./geometry.mjs";
import { blendshapesOf, facesOf, Landmarker } from "./landmarker.mjs";
import { whole } from "./zoom.mjs";

const radians = Math.PI / 180;
const near = (expected, value, tolerance = 1e-6) => assert.ok(Math.abs(value - expected) <= tolerance, `${value} is not ${expected}`);
const size = { width: 640, height: 480 };
const ahead = { yaw: 0, pitch: 0, roll: 0 };

/** A head that is turned to the right in the picture by so many degrees, 80 cm away. */
function head(turn = 0) {
  const [sine, cosine] = [Math.sin(turn * radians), Math.cos(turn * radians)];
  return { rows: 4, columns: 4, data: [cosine, 0, -sine, 0, 0, 1, 0, 0, sine, 0, cosine, 0, 0, 0, -80, 1] };
}

/** Points of a face in shares of the picture, with eyes 40 pixels wide whose irises are aside by so many pixels. */
function landmarks(left = 0.4, aside = 0) {
  const points = Array.from({ length: 478 }, (_, i) => ({ x: left + (i % 3) * 0.1, y: 0.3 + (i % 2) * 0.4, z: 0.01 }));
  const put = (number, x, y) => (points[number] = { x: x / size.width, y: y / size.height, z: 0 });
  for (const [corners, lids, iris, middle] of [
    [[33, 133], [159, 145], 468, 300],
    [[362, 263], [386, 374], 473, 350],
  ]) {
    put(corners[0], middle - 20, 200);
    put(corners[1], middle + 20, 200);
    put(lids[0], middle, 194);
    put(lids[1], middle, 206);
    put(iris, middle + aside, 198);
  }
  return points;
}

const scores = (values) => Object.entries(values).map(([categoryName, score], index) => ({ index, categoryName, score, displayName: "" }));
const shapes = (values) => ({ headIndex: 0, headName: "", categories: scores(values) });
const result = (faces) => ({
  faceLandmarks: faces.map(({ points = landmarks() }) => points),
  faceBlendshapes: faces.map(({ values = { mouthSmileLeft: 0.5 } }) => shapes(values)),
  facialTransformationMatrixes: faces.map(({ matrix = head() }) => matrix),
});
const nobody = { faceLandmarks: [], faceBlendshapes: [], facialTransformationMatrixes: [] };

await test("gives points in pixels, the box around them, and the pose", () => {
  const [face, other] = facesOf(result([{}, { points: landmarks(0.7), matrix: head(20) }]), size, whole);
  assert.equal(face.points.length, 478);
  assert.deepEqual(face.points[33], { x: 280, y: 200, z: 0 });
  near(0.01 * 640, face.points[0].z);
  for (const [edge, value] of Object.entries({ x: 256, y: 144, width: 128, height: 192 })) near(value, face.box[edge]);
  assert.deepEqual(face.matrix, head().data);
  near(20, turnOf(other.matrix).yaw);
  near(448 + 128, other.box.x + other.box.width);
});

await test("finds the gaze in the irises of the same points", () => {
  const gaze = (aside) => facesOf(result([{ points: landmarks(0.4, aside) }]), size, whole).map(({ points, matrix }) => gazeOf(points, matrix))[0];
  near(0, gaze(0)[0], 1e-3);
  assert.ok(gaze(5)[0] > 0.25, "to the right in the picture");
  assert.ok(gaze(-5)[0] < -0.25);
});

await test("puts a face of an enlarged part where it is, at its distance", () => {
  const part = { x: 160, y: 120, zoom: 2 };
  const [face] = facesOf(result([{}]), size, part);
  assert.deepEqual(face.points[33], { x: 160 + 140, y: 120 + 100, z: 0 });
  near(-160, face.matrix[14]);
});

await test("leaves out a face without a pose, and gives one without blendshapes", () => {
  const { faceLandmarks } = result([{}, {}]);
  assert.deepEqual(facesOf({ faceLandmarks, faceBlendshapes: [], facialTransformationMatrixes: [] }, size, whole), []);
  assert.deepEqual(facesOf({ faceLandmarks, faceBlendshapes: [], facialTransformationMatrixes: [{ rows: 3, columns: 3, data: [1, 0, 0] }] }, size, whole), []);
  const found = facesOf({ faceLandmarks, faceBlendshapes: [], facialTransformationMatrixes: [head(), head()] }, size, whole);
  assert.deepEqual(
    found.map((face) => face.numbers()),
    [{}, {}],
  );
  assert.deepEqual(facesOf(nobody, size, whole), []);
});

await test("sends blendshapes as they are, with a confidence, and none of the eyes' directions", () => {
  const values = { _neutral: 0.00001, browDownLeft: 0.123456789, eyeLookInLeft: 0.5, eyeLookOutRight: 0.5, eyeBlinkLeft: 1.0000001, jawOpen: -1e-9, mouthSmileLeft: NaN };
  assert.deepEqual(blendshapesOf(scores(values), ahead), {
    blendshapes: { browDownLeft: 0.12346, eyeBlinkLeft: 1, jawOpen: 0 },
    blendshapeConfidence: 0.9,
  });
  assert.deepEqual(blendshapesOf(scores({ _neutral: 1 }), ahead), {});
  const [face] = facesOf(result([{ values: { mouthSmileLeft: 0.75, mouthSmileRight: 0.5 } }]), size, whole);
  assert.deepEqual(face.numbers(), { blendshapes: { mouthSmileLeft: 0.75, mouthSmileRight: 0.5 }, blendshapeConfidence: 0.9 });
});

await test("trusts blendshapes less the more the head is turned or bent, and sends none in the end", () => {
  const confidence = (yaw, pitch, roll = 0) => blendshapesOf(scores({ jawOpen: 0.5 }), { yaw, pitch, roll }).blendshapeConfidence;
  near(0.9, confidence(20, -15, 80));
  near(0.45, confidence(40, 0));
  near(0.45, confidence(-40, 0));
  near(0.45, confidence(0, 32.5));
  assert.equal(confidence(56, 0), undefined);
  assert.equal(confidence(0, -48), undefined);
  const [face] = facesOf(result([{ matrix: head(58) }]), size, whole);
  assert.deepEqual(face.numbers(), {});
});

/** A detector that notes its pictures and their times, and finds what a test gives it. */
function fakeDetector() {
  const detector = { finds: nobody, pictures: [], times: [] };
  detector.detectForVideo = (picture, time) => {
    detector.pictures.push(picture);
    detector.times.push(time);
    return picture === "blank" ? nobody : detector.finds;
  };
  return detector;
}

await test("forgets where faces were when the part of the picture moves", async () => {
  const detector = fakeDetector();
  const landmarker = new Landmarker(detector, "blank");
  const picture = { ...size };
  const left = { x: 0, y: 0, zoom: 2 };
  await landmarker.faces(picture, whole);
  await landmarker.faces(picture, left);
  assert.deepEqual(detector.pictures, [picture, picture], "nobody is there who could be forgotten");
  detector.finds = result([{}]);
  assert.equal((await landmarker.faces(picture, left)).length, 1);
  await landmarker.faces(picture, { ...left, x: 10 });
  assert.equal(detector.pictures.length, 4, "a part that moves a little");
  await landmarker.faces(picture, { ...left, x: 200 });
  assert.deepEqual(detector.pictures.slice(4), ["blank", picture]);
  await landmarker.faces(picture, whole);
  assert.deepEqual(detector.pictures.slice(6), ["blank", picture]);
  const rises = detector.times.every((time, i) => i === 0 || time > detector.times[i - 1]);
  assert.ok(rises, `each picture is later than the one before: ${detector.times}`);
});

await test("gives the points of the faces that were found last, without another look", async () => {
  const detector = fakeDetector();
  const landmarker = new Landmarker(detector, "blank");
  assert.equal(landmarker.needsClassifier, false);
  detector.finds = result([{}]);
  const [face] = await landmarker.faces({ ...size }, whole);
  assert.deepEqual(await landmarker.points(), [face.points]);
  assert.equal(detector.pictures.length, 1);
  detector.finds = nobody;
  await landmarker.faces({ ...size }, whole);
  assert.deepEqual(await landmarker.points(), []);
});

finish();
