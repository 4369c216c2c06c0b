// Finds faces and their points with the face mesh of MediaPipe. It has two forms, and each gives what the other one
// cannot: one the pose of the head, the other one the irises.

import { boxAround, Matrix, Point, Vector } from "./geometry";
import { Box } from "./tracker";
import { Part, pointInWhole, poseInWhole, whole } from "./zoom";

interface RawPoint {
  x: number;
  y: number;
  z: number;
}

interface Geometry {
  getMesh(): { getVertexBufferList(): Float32Array };
  getPoseTransformMatrix(): { getPackedDataList(): number[] };
}

interface Results {
  multiFaceLandmarks?: RawPoint[][];
  multiFaceGeometry?: Geometry[];
}

interface FaceMesh {
  reset(): void;
  setOptions(options: object): void;
  onResults(listener: (results: Results) => void): void;
  initialize(): Promise<void>;
  send(inputs: { image: HTMLCanvasElement }): Promise<void>;
}

declare global {
  interface Window {
    FaceMesh?: new (settings: { locateFile(name: string): string }) => FaceMesh;
  }
}

const mostFaces = 4;
/** Of a vertex in the buffer: x, y, z and two numbers of the texture. */
const numbersOfVertex = 5;

export interface FoundFace {
  box: Box;
  points: Point[];
  matrix: Matrix;
  mesh(point: number): Vector;
}

/** Returns the points in pixels of the picture of which the canvas shows the part; z in the same measure. */
function inPixels(points: RawPoint[], { width, height }: HTMLCanvasElement, part: Part): Point[] {
  return points.map(({ x, y, z }) => pointInWhole({ x: x * width, y: y * height, z: z * width }, part));
}

/** Finds faces in a canvas that shows the part. Results of the frame before are used if its part was the same. */
type Finder = (canvas: HTMLCanvasElement, part: Part) => Promise<Results>;

/** A part that follows a face moves little: the faces in it are still where they were [shares of the canvas]. */
const smallMove = 0.1;
const hasMoved = (before: Part, part: Part, { width }: HTMLCanvasElement) =>
  before.zoom !== part.zoom || (Math.hypot(before.x - part.x, before.y - part.y) * part.zoom) / width > smallMove;

async function finder(addressOf: (name: string) => string, options: object): Promise<Finder> {
  if (!window.FaceMesh) throw new Error("The face mesh was not loaded.");
  const mesh = new window.FaceMesh({ locateFile: addressOf });
  let last: Results = {};
  mesh.onResults((results) => (last = results));
  mesh.setOptions({ maxNumFaces: mostFaces, useCpuInference: true, minDetectionConfidence: 0.5, minTrackingConfidence: 0.5, ...options });
  await mesh.initialize();
  let before = whole;
  return async (image, part) => {
    if (hasMoved(before, part, image)) mesh.reset();
    before = part;
    last = {};
    await mesh.send({ image });
    return last;
  };
}

export class Meshes {
  private constructor(
    private readonly poses: Finder,
    private readonly irises: Finder,
  ) {}

  static async load(addressOf: (name: string) => string): Promise<Meshes> {
    const poses = await finder(addressOf, { enableFaceGeometry: true, refineLandmarks: false });
    const irises = await finder(addressOf, { enableFaceGeometry: false, refineLandmarks: true });
    return new Meshes(poses, irises);
  }

  /** Returns the faces in a canvas that shows the part of the picture, with their poses; all as in the whole picture. */
  async faces(canvas: HTMLCanvasElement, part: Part): Promise<FoundFace[]> {
    const { multiFaceLandmarks = [], multiFaceGeometry = [] } = await this.poses(canvas, part);
    return multiFaceLandmarks.slice(0, multiFaceGeometry.length).map((raw, i) => {
      const points = inPixels(raw, canvas, part);
      const vertices = multiFaceGeometry[i].getMesh().getVertexBufferList().slice();
      return {
        box: boxAround(points),
        points,
        matrix: poseInWhole([...multiFaceGeometry[i].getPoseTransformMatrix().getPackedDataList()], part, canvas.width, canvas.height),
        mesh: (point) => [0, 1, 2].map((part) => vertices[numbersOfVertex * point + part]) as Vector,
      };
    });
  }

  /** Returns the points of each face, those of the irises among them, as in the whole picture. */
  async points(canvas: HTMLCanvasElement, part: Part): Promise<Point[][]> {
    const { multiFaceLandmarks = [] } = await this.irises(canvas, part);
    return multiFaceLandmarks.map((raw) => inPixels(raw, canvas, part));
  }
}
