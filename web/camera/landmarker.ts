// Finds faces with a model of the user: the FaceLandmarker of MediaPipe gives pose, irises and blendshapes in one.

import type { FaceLandmarker, FaceLandmarkerResult } from "@mediapipe/tasks-vision";
import { FaceFinder, FaceNumbers, FoundFace, hasMoved, inPixels, leastConfidence, mostFaces, rounded, Size } from "./faces";
import { boxAround, Point, pointsConfidence, Turn, turnOf } from "./geometry";
import { loadScript, scriptIsMissing } from "./scripts";
import { Part, poseInWhole, whole } from "./zoom";

declare global {
  interface Window {
    FaceLandmarker?: typeof FaceLandmarker;
  }
}

const matrixSize = 16;

/** The gaze comes from the irises. Scores of the eyes would give another one, also of eyes that cannot be seen. */
const isSent = ({ categoryName, score }: Score) => !/^(_|eyeLook)/.test(categoryName) && Number.isFinite(score);

interface Score {
  categoryName: string;
  score: number;
}

/** Returns the scores of the blendshapes of a face, and how sure they are; nothing of a face that is turned away. */
export function blendshapesOf(scores: Score[], turn: Turn): FaceNumbers {
  const confidence = pointsConfidence(turn);
  const sent = scores.filter(isSent);
  if (sent.length === 0 || confidence < leastConfidence) return {};
  const share = (score: number) => rounded(Math.min(Math.max(score, 0), 1));
  return {
    blendshapes: Object.fromEntries(sent.map(({ categoryName, score }) => [categoryName, share(score)])),
    blendshapeConfidence: rounded(confidence),
  };
}

/** Returns the faces of a result on a canvas of this size, which shows the part. A face without a pose is left out. */
export function facesOf({ faceLandmarks, faceBlendshapes, facialTransformationMatrixes }: FaceLandmarkerResult, size: Size, part: Part): FoundFace[] {
  return faceLandmarks.flatMap((landmarks, i) => {
    const pose = facialTransformationMatrixes[i]?.data ?? [];
    if (pose.length !== matrixSize) return [];
    const points = inPixels(landmarks, size, part);
    const matrix = poseInWhole([...pose], part, size.width, size.height);
    const scores = faceBlendshapes[i]?.categories ?? [];
    return [{ box: boxAround(points), points, matrix, numbers: () => blendshapesOf(scores, turnOf(matrix)) }];
  });
}

type Detector = Pick<FaceLandmarker, "detectForVideo">;

export class Landmarker implements FaceFinder {
  readonly needsClassifier = false;
  private found: FoundFace[] = [];
  private follows = false;
  private before = whole;
  /** [ms]; the detector wants each picture to be later than the one before. */
  private time = 0;

  /** @param blank a picture without a face */
  constructor(
    private readonly detector: Detector,
    private readonly blank: HTMLCanvasElement,
  ) {}

  /** @param name of the model, for messages */
  static async load(addressOf: (name: string) => string, name: string): Promise<Landmarker> {
    if (!window.FaceLandmarker) await loadScript(addressOf("tasks_vision.js"));
    if (!window.FaceLandmarker) throw new Error("The face landmarker was not loaded.");
    const response = await fetch(addressOf("model"));
    if (!response.ok) throw new Error(`The model ${name} was not loaded: ${(await response.text()).trim()}`);
    const model = new Uint8Array(await response.arrayBuffer());
    try {
      const detector = await window.FaceLandmarker.createFromOptions(
        { wasmLoaderPath: addressOf("vision_wasm_internal.js"), wasmBinaryPath: addressOf("vision_wasm_internal.wasm") },
        {
          baseOptions: { modelAssetBuffer: model, delegate: "CPU" },
          runningMode: "VIDEO",
          numFaces: mostFaces,
          outputFaceBlendshapes: true,
          outputFacialTransformationMatrixes: true,
        },
      );
      const landmarker = new Landmarker(detector, document.createElement("canvas"));
      landmarker.look(landmarker.blank); // a model of something else may fail only now
      return landmarker;
    } catch (error) {
      if (error instanceof Event) throw new Error(scriptIsMissing);
      const [reason] = String(error instanceof Error ? error.message : error).split(/[;\n]/);
      throw new Error(`The model ${name} cannot be used. It has to be the face_landmarker.task of MediaPipe. The reason: ${reason}`);
    }
  }

  private look(canvas: HTMLCanvasElement): FaceLandmarkerResult {
    this.time = Math.max(this.time + 1, performance.now());
    const result = this.detector.detectForVideo(canvas, this.time);
    this.follows = result.faceLandmarks.length > 0;
    return result;
  }

  /** Faces are looked for where they were in the picture before: a picture without a face makes the detector forget them. */
  async faces(canvas: HTMLCanvasElement, part: Part): Promise<FoundFace[]> {
    if (this.follows && hasMoved(this.before, part, canvas)) this.look(this.blank);
    this.before = part;
    this.found = facesOf(this.look(canvas), canvas, part);
    return this.found;
  }

  async points(): Promise<Point[][]> {
    return this.found.map(({ points }) => points);
  }
}
