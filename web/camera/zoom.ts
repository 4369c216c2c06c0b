// Looks closer where faces are too small for the face mesh: its detector misses faces of less than an eighth of the width of a
// picture. If nobody is found in the whole picture, parts of it are looked at in turn, each enlarged. A part in which somebody
// is found is kept, and follows the face, until nobody is found there any more.

import { Matrix, Point } from "./geometry";
import { Box } from "./tracker";

/** A part of the picture, in its pixels; of the same shape as the whole. */
export interface Part {
  x: number;
  y: number;
  /** How much it is enlarged; 1: the whole picture. */
  zoom: number;
}

export const whole: Part = { x: 0, y: 0, zoom: 1 };

/** So often the whole picture is looked at while a part is kept, in case somebody comes nearer [frames]. */
const framesUntilWhole = 45;
/** A part is kept until nobody was found in it so many times. */
const framesUntilSearch = 2;
const zoom = 2.2;
/** A face that is wider, as a share of the part, needs no zoom. */
const largeFace = 0.45;

/** The vertical angle of view for which the face mesh gives distances. */
const halfView = Math.tan((63 / 2) * (Math.PI / 180));

function partAround(x: number, y: number, width: number, height: number): Part {
  const clamped = (value: number, most: number) => Math.min(Math.max(value, 0), most);
  return { x: clamped(x - width / zoom / 2, width - width / zoom), y: clamped(y - height / zoom / 2, height - height / zoom), zoom };
}

/** The middles of the parts that are looked at, as shares of the picture: people are in the middle most often. */
const places = [
  [0.5, 0.45],
  [0.25, 0.4],
  [0.75, 0.4],
  [0.5, 0.75],
];

export class Zoom {
  private kept: Part = whole;
  private missed = 0;
  private frames = 0;

  /** Returns the part of a picture of this size to look at next. */
  next(width: number, height: number): Part {
    ++this.frames;
    if (this.kept.zoom > 1 && this.missed < framesUntilSearch) return this.frames % framesUntilWhole === 0 ? whole : this.kept;
    this.kept = whole;
    if (this.missed % 2 === 0) return whole; // where a face comes back most often
    const [x, y] = places[Math.floor(this.missed / 2) % places.length];
    return partAround(x * width, y * height, width, height);
  }

  /**
   * Takes what was found in the part: boxes in the pixels of the picture. Returns which of them count: a face that the border of an
   * enlarged part cuts, or that needs no zoom, is looked for in the whole picture.
   */
  found(part: Part, boxes: Box[], width: number, height: number): boolean[] {
    if (boxes.length === 0) {
      if (part.zoom > 1 || this.kept.zoom === 1) ++this.missed; // a glance at the whole says nothing of the part
      return [];
    }
    this.missed = 0;
    const counts = boxes.map((box) => part.zoom === 1 || isWithin(box, part, width, height));
    const inside = boxes.filter((_, i) => counts[i]);
    if (part.zoom === 1 || inside.length < boxes.length) {
      this.kept = whole;
      return counts;
    }
    const middle = (edges: number[]) => (Math.min(...edges) + Math.max(...edges)) / 2;
    this.kept = partAround(middle(inside.flatMap((box) => [box.x, box.x + box.width])), middle(inside.flatMap((box) => [box.y, box.y + box.height])), width, height);
    return counts;
  }
}

/** Returns whether an enlarged part shows the whole face, and it is not too large for zoom. */
function isWithin(box: Box, part: Part, width: number, height: number): boolean {
  const [right, bottom] = [part.x + width / part.zoom, part.y + height / part.zoom];
  const isCut =
    (part.x > 0 && box.x < part.x) || (part.y > 0 && box.y < part.y) || (right < width && box.x + box.width > right) || (bottom < height && box.y + box.height > bottom);
  return !isCut && box.width <= (largeFace * width) / part.zoom;
}

/** Returns the point of the part, which is `width` wide when enlarged, in the picture of the same width. */
export function pointInWhole({ x, y, z }: Point, part: Part): Point {
  return { x: part.x + x / part.zoom, y: part.y + y / part.zoom, z: z / part.zoom };
}

type Columns = [number, number, number][];

/** Returns the rotation from the axis of the part to that of the picture: the middle of the part lies in this direction. */
function rotationOf(part: Part, width: number, height: number): Columns {
  const focal = height / 2 / halfView;
  const right = (part.x + width / part.zoom / 2 - width / 2) / focal;
  const up = -(part.y + height / part.zoom / 2 - height / 2) / focal;
  const length = Math.hypot(right, up, 1);
  const back: [number, number, number] = [-right / length, -up / length, 1 / length];
  const across = Math.hypot(back[0], back[2]);
  const aside: [number, number, number] = [back[2] / across, 0, -back[0] / across];
  const above: [number, number, number] = [
    back[1] * aside[2] - back[2] * aside[1],
    back[2] * aside[0] - back[0] * aside[2],
    back[0] * aside[1] - back[1] * aside[0],
  ];
  return [aside, above, back];
}

/**
 * Returns the pose in the whole picture of a face that was found in the enlarged part. The face mesh takes each picture for one of
 * the same camera: in an enlarged one faces seem nearer, and to be seen along the axis.
 */
export function poseInWhole(matrix: Matrix, part: Part, width: number, height: number): Matrix {
  if (part.zoom === 1) return matrix;
  const columns = rotationOf(part, width, height);
  const turned = (at: number, scale: number) =>
    [0, 1, 2].map((row) => scale * (columns[0][row] * matrix[at] + columns[1][row] * matrix[at + 1] + columns[2][row] * matrix[at + 2]));
  return [...turned(0, 1), 0, ...turned(4, 1), 0, ...turned(8, 1), 0, ...turned(12, part.zoom), 1];
}
