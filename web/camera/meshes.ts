// Finds faces and their points with the face mesh of MediaPipe. It has two forms, and each gives what the other one
// cannot: one the pose of the head, the other one the irises.

import { FaceFinder, FaceNumbers, FoundFace, hasMoved, inPixels, leastConfidence, mostFaces, RawPoint, rounded } from "./faces";
import { boxAround, Point, smileOf, Turn, turnOf, Vector } from "./geometry";
import { loadScript } from "./scripts";
import { Part, poseInWhole, whole } from "./zoom";

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

/** Of a vertex in the buffer: x, y, z and two numbers of the texture. */
const numbersOfVertex = 5;

/** Finds faces in a canvas that shows the part. Results of the frame before are used if its part was the same. */
type Finder = (canvas: HTMLCanvasElement, part: Part) => Promise<Results>;

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

/** @param mesh x, y and z [cm] of each point in the directions of the face */
function numbersOf(mesh: (point: number) => Vector, turn: Turn): FaceNumbers {
  const [degree, confidence] = smileOf(mesh, turn);
  return confidence >= leastConfidence ? { smile: [rounded(degree), rounded(confidence)] } : {};
}

export class Meshes implements FaceFinder {
  readonly needsClassifier = true;

  private constructor(
    private readonly poses: Finder,
    private readonly irises: Finder,
  ) {}

  static async load(addressOf: (name: string) => string): Promise<Meshes> {
    if (!window.FaceMesh) await loadScript(addressOf("face_mesh.js"));
    const poses = await finder(addressOf, { enableFaceGeometry: true, refineLandmarks: false });
    const irises = await finder(addressOf, { enableFaceGeometry: false, refineLandmarks: true });
    return new Meshes(poses, irises);
  }

  async faces(canvas: HTMLCanvasElement, part: Part): Promise<FoundFace[]> {
    const { multiFaceLandmarks = [], multiFaceGeometry = [] } = await this.poses(canvas, part);
    return multiFaceLandmarks.slice(0, multiFaceGeometry.length).map((raw, i) => {
      const points = inPixels(raw, canvas, part);
      const vertices = multiFaceGeometry[i].getMesh().getVertexBufferList().slice();
      const mesh = (point: number) => [0, 1, 2].map((part) => vertices[numbersOfVertex * point + part]) as Vector;
      const matrix = poseInWhole([...multiFaceGeometry[i].getPoseTransformMatrix().getPackedDataList()], part, canvas.width, canvas.height);
      return { box: boxAround(points), points, matrix, numbers: () => numbersOf(mesh, turnOf(matrix)) };
    });
  }

  async points(canvas: HTMLCanvasElement, part: Part): Promise<Point[][]> {
    const { multiFaceLandmarks = [] } = await this.irises(canvas, part);
    return multiFaceLandmarks.map((raw) => inPixels(raw, canvas, part));
  }
}
