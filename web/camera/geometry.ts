// Makes gaze, smile and the facial points of the library from the points of a face.
//
// Points are those of the face mesh, by number; "right" is the person's own right.

import { Box } from "./tracker";

/** In pixels of the picture, x to the right and y down; z grows away from the camera. */
export interface Point {
  x: number;
  y: number;
  z: number;
}

export type Vector = [number, number, number];

/** The pose of the head, column by column: x to the right in the picture, y up, z to the camera; [cm]. */
export type Matrix = number[];

const degrees = 180 / Math.PI;
const clamped = (value: number, least: number, most: number) => Math.min(Math.max(value, least), most);

export function boxAround(points: Point[]): Box {
  let [left, top, right, bottom] = [Infinity, Infinity, -Infinity, -Infinity];
  for (const { x, y } of points) {
    left = Math.min(left, x);
    top = Math.min(top, y);
    right = Math.max(right, x);
    bottom = Math.max(bottom, y);
  }
  return { x: left, y: top, width: right - left, height: bottom - top };
}

/** Angles of the head as the camera sees it [deg]; only how large they are matters here. */
export interface Turn {
  yaw: number;
  pitch: number;
  roll: number;
}

export function turnOf(matrix: Matrix): Turn {
  const angles = (x: number, y: number, z: number) => [Math.atan2(x, z) * degrees, Math.atan2(y, Math.hypot(x, z)) * degrees];
  const [yaw, pitch] = angles(matrix[8], matrix[9], matrix[10]);
  const [bearing, elevation] = angles(-matrix[12], -matrix[13], -matrix[14]);
  return { yaw: yaw - bearing, pitch: pitch - elevation, roll: Math.atan2(matrix[1], Math.hypot(matrix[0], matrix[2])) * degrees };
}

/** Returns 1 up to `full` degrees, and 0 from `none` on. */
const falling = (angle: number, full: number, none: number) => clamped((none - Math.abs(angle)) / (none - full), 0, 1);

/**
 * Returns how far a classifier of expressions can be trusted: it has learned from faces that look at the camera, and
 * calls a head that is bent down sad.
 */
export function expressionConfidence({ yaw, pitch, roll }: Turn): number {
  return 0.9 * falling(yaw, 12, 45) * falling(pitch, 8, 30) * falling(roll, 15, 45);
}

interface EyePoints {
  /** The corner at the left and at the right in the picture. */
  corners: [number, number];
  iris: number;
  lids: [number, number];
}

const eyes: EyePoints[] = [
  { corners: [33, 133], iris: 468, lids: [159, 145] },
  { corners: [362, 263], iris: 473, lids: [386, 374] },
];

/** The radius of an eyeball, in widths of an eye. */
const eyeballRadius = 0.42;
/** An iris that looks straight ahead is so far above the line between the corners, in widths of an eye. */
const irisAbove = 0.05;
/** An eye that is less open, in its width, shows no gaze. */
const leastOpening = 0.16;
/** [pixels]: the iris of a smaller eye cannot be found. */
const leastEye = 7;
/** [deg]: from so far on one eye is hidden by the nose. */
const furthestTurn = 40;

/** Returns how far the iris is from the middle of the eye, in radii of the eyeball: to the right in the picture, and up. */
function irisOffset(points: Point[], { corners, iris, lids }: EyePoints): [number, number] | null {
  const [left, right] = corners.map((number) => points[number]);
  const width = Math.hypot(right.x - left.x, right.y - left.y);
  const opening = Math.hypot(points[lids[0]].x - points[lids[1]].x, points[lids[0]].y - points[lids[1]].y);
  if (width < leastEye || opening < leastOpening * width) return null;
  const along = { x: (right.x - left.x) / width, y: (right.y - left.y) / width };
  const offset = { x: points[iris].x - (left.x + right.x) / 2, y: points[iris].y - (left.y + right.y) / 2 };
  const aside = (offset.x * along.x + offset.y * along.y) / width;
  const down = (offset.y * along.x - offset.x * along.y) / width;
  return [aside / eyeballRadius, (-down - irisAbove) / eyeballRadius];
}

const mean = (values: number[]) => values.reduce((sum, value) => sum + value, 0) / values.length;

/** Returns where the eyes look, in the directions of the matrix; null where they cannot be seen. */
export function gazeOf(points: Point[], matrix: Matrix): Vector | null {
  if (points.length < 478 || Math.abs(turnOf(matrix).yaw) > furthestTurn) return null;
  const offsets = eyes.map((eye) => irisOffset(points, eye)).filter((offset) => offset !== null);
  if (offsets.length === 0) return null;
  const aside = Math.asin(clamped(mean(offsets.map(([x]) => x)), -0.9, 0.9));
  const up = Math.asin(clamped(mean(offsets.map(([, y]) => y)), -0.9, 0.9));
  const [x, y, z] = [Math.sin(aside) * Math.cos(up), Math.sin(up), Math.cos(aside) * Math.cos(up)];
  const turned = [0, 1, 2].map((row) => matrix[row] * x + matrix[4 + row] * y + matrix[8 + row] * z);
  const length = Math.hypot(...turned);
  return turned.map((part) => clamped(part / length, -1, 1)) as Vector;
}

/** Returns how far what the points of a face say can be trusted: of a face that is turned away, half is guessed. */
export function pointsConfidence({ yaw, pitch }: Turn): number {
  return 0.9 * falling(yaw, 20, 60) * falling(pitch, 15, 50);
}

/** A face at rest has a mouth so wide, and corners so far above the middle of the lips [cm]; a full smile adds so much. */
const restingWidth = 5.1;
const smilingWidth = 1.6;
const restingCorners = 0.05;
const smilingCorners = 0.7;

/**
 * Returns how much the face smiles, from 0 to 1, and how sure that is. A smile widens the mouth and lifts its corners: one alone
 * does not count.
 *
 * @param mesh x, y and z [cm] of each point in the directions of the face, its turn taken off
 */
export function smileOf(mesh: (point: number) => Vector, turn: Turn): [number, number] {
  const [right, left, upper, lower] = [61, 291, 0, 17].map(mesh);
  const wider = clamped((left[0] - right[0] - restingWidth) / smilingWidth, 0, 1);
  const higher = clamped(((left[1] + right[1]) / 2 - (upper[1] + lower[1]) / 2 - restingCorners) / smilingCorners, 0, 1);
  return [Math.sqrt(wider * higher), pointsConfidence(turn)];
}

/** The landmarks, of the usual 68, that are facial points of the library, and the points of the mesh that they are. */
const facialPoints: [number, number][] = [
  [36, 33],
  [39, 133],
  [42, 362],
  [45, 263],
  [19, 105],
  [24, 334],
  [30, 1],
  [48, 61],
  [54, 291],
  [51, 0],
  [57, 17],
  [8, 152],
];

/** Returns the facial points [pixels of the picture] by the numbers of their landmarks; those that lie outside are left out. */
export function facialPointsOf(points: Point[], width: number, height: number): Record<string, [number, number]> {
  const inside = ({ x, y }: Point) => x >= 0 && y >= 0 && x <= width && y <= height;
  const rounded = (value: number) => Math.round(10 * value) / 10;
  return Object.fromEntries(
    facialPoints.filter(([, number]) => inside(points[number])).map(([landmark, number]) => [landmark, [rounded(points[number].x), rounded(points[number].y)]]),
  );
}
