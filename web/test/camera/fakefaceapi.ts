// In the place of face-api in tests: says what it was asked.

export const asked: unknown[] = [];
export const net = { answer: {} as Record<string, number>, runs: true };

export const tf = {
  setWasmPaths: (paths: Record<string, string>) => void asked.push(["setWasmPaths", paths]),
  setBackend: async (name: string) => {
    asked.push(["setBackend", name]);
    return net.runs;
  },
  ready: async () => void asked.push(["ready"]),
  io: { decodeWeights: (bytes: ArrayBuffer, specifications: object[]) => ({ bytes: bytes.byteLength, specifications }) },
};

export class FaceExpressionNet {
  loadFromWeightMap(weights: object): void {
    asked.push(["loadFromWeightMap", weights]);
  }

  async predictExpressions(picture: HTMLCanvasElement): Promise<Record<"neutral" | "happy" | "sad" | "angry" | "fearful" | "disgusted" | "surprised", number>> {
    asked.push(["predictExpressions", picture.width, picture.height]);
    return net.answer as never;
  }
}
