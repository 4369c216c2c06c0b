// The interface between the live page and its camera. The camera is a script of its own, since it is large.

/** The present estimate of a person. */
export interface Estimate {
  name: string;
  zone: string;
  /** NaN: unknown. */
  valence: number;
}

export interface Host {
  /** "camera", or "video" and how many frames of a second are looked at. */
  looksAt: string;
  /** The name of the user's model of faces; empty: the built-in ones find them. */
  model: string;
  addressOf(path: string): string;
  estimateOf(person: number): Estimate | undefined;
  /** Has `took` called with the time of the session [ns] whenever news have come in. */
  onNews(took: (now: number) => void): void;
}

export interface CameraScript {
  start(target: HTMLElement, host: Host): void;
}

declare global {
  interface Window {
    skeigiotCamera?: CameraScript;
  }
}
