// The parts of face-api that are used. Its own types take in all of TensorFlow.

export declare const tf: {
  setBackend(name: string): Promise<boolean>;
  ready(): Promise<void>;
  setWasmPaths(paths: Record<string, string>): void;
  io: { decodeWeights(bytes: ArrayBuffer, specifications: object[]): object };
};

export interface Expressions {
  neutral: number;
  happy: number;
  sad: number;
  angry: number;
  fearful: number;
  disgusted: number;
  surprised: number;
}

export declare class FaceExpressionNet {
  loadFromWeightMap(weights: object): void;
  predictExpressions(picture: HTMLCanvasElement): Promise<Expressions>;
}
