// The interface of the face finders, and the numbers of each face that they give.

import { Matrix, Point } from "./geometry";
import { Box } from "./tracker";
import { Part, pointInWhole } from "./zoom";

/** So many faces are found at a time. */
export const mostFaces = 4;
/** Numbers that are less sure are not sent. */
export const leastConfidence = 0.1;

/** Numbers of the expression, by the names of a frame's members. Numbers of a face that cannot be seen are left out. */
export interface FaceNumbers {
  /** Degree and confidence. */
  smile?: [number, number];
  /** Scores by the names of MediaPipe. */
  blendshapes?: Record<string, number>;
  blendshapeConfidence?: number;
}

/** A face, its points and its pose as in the whole picture. */
export interface FoundFace {
  box: Box;
  points: Point[];
  matrix: Matrix;
  numbers(): FaceNumbers;
}

export interface FaceFinder {
  /** Whether the numbers of its faces lack expressions, so that a classifier has to find them. */
  readonly needsClassifier: boolean;

  /** Returns the faces in a canvas that shows the part of the picture. */
  faces(canvas: HTMLCanvasElement, part: Part): Promise<FoundFace[]>;

  /** Returns the points of each face, those of the irises among them, in a canvas whose faces were found just now. */
  points(canvas: HTMLCanvasElement, part: Part): Promise<Point[][]>;
}

export interface Size {
  width: number;
  height: number;
}

/** A point as MediaPipe gives it: in shares of the width and the height; z as x. */
export interface RawPoint {
  x: number;
  y: number;
  z: number;
}

/** Returns the points in pixels of the picture of which a canvas of this size shows the part; z in the same measure. */
export function inPixels(points: RawPoint[], { width, height }: Size, part: Part): Point[] {
  return points.map(({ x, y, z }) => pointInWhole({ x: x * width, y: y * height, z: z * width }, part));
}

/** A part that follows a face moves little: the faces in it are still where they were [shares of the canvas]. */
const smallMove = 0.1;

/** Returns whether the faces in a part are not where they were in the part before. */
export function hasMoved(before: Part, part: Part, { width }: Size): boolean {
  return before.zoom !== part.zoom || (Math.hypot(before.x - part.x, before.y - part.y) * part.zoom) / width > smallMove;
}

/** Numbers are sent with five digits after the point. */
export const rounded = (value: number) => Math.round(1e5 * value) / 1e5;
