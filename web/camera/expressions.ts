// Classifies the expression of a face by a small net, which has learned from photographs.

import { FaceExpressionNet, tf } from "@vladmandic/face-api/dist/face-api.esm.js";
import { Box } from "./tracker";

/** Shares of the seven expressions, by the names of the library. */
export type Emotions = Record<"neutral" | "happy" | "sad" | "surprise" | "fear" | "disgust" | "anger", number>;

/** [pixels]: of the square that the classifier looks at. */
const side = 112;
/** The square around a face, in its width or height. */
const margin = 1.15;

const share = (value: number) => Math.min(Math.max(Math.round(1e4 * value) / 1e4, 0), 1);

export class ExpressionClassifier {
  private readonly square = document.createElement("canvas");

  private constructor(private readonly net: FaceExpressionNet) {
    this.square.width = this.square.height = side;
  }

  static async load(addressOf: (name: string) => string): Promise<ExpressionClassifier> {
    const wasm = addressOf("tfjs-backend-wasm-simd.wasm");
    tf.setWasmPaths(Object.fromEntries(["", "-simd", "-threaded-simd"].map((kind) => [`tfjs-backend-wasm${kind}.wasm`, wasm])));
    if (!(await tf.setBackend("wasm"))) throw new Error("WebAssembly does not run here.");
    await tf.ready();
    const [manifest, bytes] = await Promise.all([
      fetch(addressOf("face_expression_model-weights_manifest.json")).then((answer) => answer.json() as Promise<{ weights: object[] }[]>),
      fetch(addressOf("face_expression_model.bin")).then((answer) => answer.arrayBuffer()),
    ]);
    const net = new FaceExpressionNet();
    net.loadFromWeightMap(tf.io.decodeWeights(bytes, manifest[0].weights));
    return new ExpressionClassifier(net);
  }

  /** @param roll [deg] of the head: the face is put upright */
  async classify(picture: HTMLCanvasElement, { x, y, width, height }: Box, roll: number): Promise<Emotions> {
    const context = this.square.getContext("2d", { willReadFrequently: true });
    if (!context) throw new Error("There is no canvas.");
    const scale = side / (margin * Math.max(width, height));
    context.setTransform(1, 0, 0, 1, 0, 0);
    context.clearRect(0, 0, side, side);
    context.translate(side / 2, side / 2);
    context.rotate((roll * Math.PI) / 180);
    context.scale(scale, scale);
    context.drawImage(picture, -(x + width / 2), -(y + height / 2));
    const { neutral, happy, sad, surprised, fearful, disgusted, angry } = await this.net.predictExpressions(this.square);
    return {
      neutral: share(neutral),
      happy: share(happy),
      sad: share(sad),
      surprise: share(surprised),
      fear: share(fearful),
      disgust: share(disgusted),
      anger: share(angry),
    };
  }
}
