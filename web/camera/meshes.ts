// Finds faces and their points with the face mesh of MediaPipe. It has two forms, and each gives what the other one
// cannot: one the pose of the head, the other one the irises.

import { FaceFinder, FaceNumbers, FoundFace, hasMoved, inPixels, leastConfidence, mostFaces, RawPoint, rounded } from "./faces";
import { boxAround, Point, smileOf, Turn, turnOf, Vector } from "./geometry";
import { loadScript } from "./scripts";
import { overlap } from "./tracker";
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

/** Faces that still touch when they are looked for anew are left alone for so many frames: one may be in front of the other. */
const framesOfTouching = 30;
/** Of a vertex in the buffer: x, y, z and two numbers of the texture. */
const numbersOfVertex = 5;

/** Finds faces in a canvas that shows the part. Results of the frame before are used, unless its part was another or anew is set. */
type Finder = (canvas: HTMLCanvasElement, part: Part, anew: boolean) => Promise<Results>;

async function finder(addressOf: (name: string) => string, options: object): Promise<Finder> {
  if (!window.FaceMesh) throw new Error("The face mesh was not loaded.");
  const mesh = new window.FaceMesh({ locateFile: addressOf });
  let last: Results = {};
  mesh.onResults((results) => (last = results));
  mesh.setOptions({ maxNumFaces: mostFaces, useCpuInference: true, minDetectionConfidence: 0.5, minTrackingConfidence: 0.5, ...options });
  await mesh.initialize();
  let before = whole;
  return async (image, part, anew) => {
    if (anew || hasMoved(before, part, image)) mesh.reset();
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

const touch = (faces: FoundFace[]) => faces.some(({ box }, i) => faces.slice(0, i).some((other) => overlap(box, other.box) > 0));

export class Meshes implements FaceFinder {
  readonly needsClassifier = true;
  private framesUntilAnew = 0;
  private looksAnewForIrises = false;

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

  /**
   * The face mesh looks for a face where the face was. If few frames a second are found and a face moves far between two of them,
   * the mesh may find the face where it is, and a second one that lags behind it for many frames. Faces that touch are therefore
   * looked for again in the same picture, without those of the frame before.
   */
  async faces(canvas: HTMLCanvasElement, part: Part): Promise<FoundFace[]> {
    if (this.framesUntilAnew > 0) --this.framesUntilAnew;
    const faces = await this.find(canvas, part, false);
    if (this.framesUntilAnew > 0 || !touch(faces)) return faces;
    this.looksAnewForIrises = true;
    const foundAnew = await this.find(canvas, part, true);
    if (touch(foundAnew)) this.framesUntilAnew = framesOfTouching;
    return foundAnew;
  }

  private async find(canvas: HTMLCanvasElement, part: Part, anew: boolean): Promise<FoundFace[]> {
    const { multiFaceLandmarks = [], multiFaceGeometry = [] } = await this.poses(canvas, part, anew);
    return multiFaceLandmarks.slice(0, multiFaceGeometry.length).map((raw, i) => {
      const points = inPixels(raw, canvas, part);
      const vertices = multiFaceGeometry[i].getMesh().getVertexBufferList().slice();
      const mesh = (point: number) => [0, 1, 2].map((part) => vertices[numbersOfVertex * point + part]) as Vector;
      const matrix = poseInWhole([...multiFaceGeometry[i].getPoseTransformMatrix().getPackedDataList()], part, canvas.width, canvas.height);
      return { box: boxAround(points), points, matrix, numbers: () => numbersOf(mesh, turnOf(matrix)) };
    });
  }

  async points(canvas: HTMLCanvasElement, part: Part): Promise<Point[][]> {
    const { multiFaceLandmarks = [] } = await this.irises(canvas, part, this.looksAnewForIrises);
    this.looksAnewForIrises = false;
    return multiFaceLandmarks.map((raw) => inPixels(raw, canvas, part));
  }
}
