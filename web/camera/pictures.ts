// Where the pictures come from: the camera of the browser, or a video of the server.

/** A picture, and when it was taken. */
export interface Picture {
  /** [ms] of performance.now() at which the browser had it. */
  captured: number;
  /** [s] since the start of the video; of a video. */
  time: number | null;
}

export interface Pictures {
  readonly video: HTMLVideoElement;
  /** Returns the next picture; null: it was the last one. */
  next(): Promise<Picture | null>;
  stop(): void;
}

/** A window in the background gets no frames by itself [ms]. */
const longestWait = 250;
/** Between two pictures, where the browser does not say that there is a new one [ms]. */
const usualPause = 33;

/** Waits for an event of the video; an error of the video gives an error with that message. */
function event(video: HTMLVideoElement, name: string, message: string): Promise<void> {
  return new Promise((found, failed) => {
    const over = new AbortController();
    const once = (type: string, end: () => void) =>
      video.addEventListener(
        type,
        () => {
          over.abort();
          end();
        },
        { signal: over.signal },
      );
    once(name, found);
    once("error", () => failed(new Error(message)));
  });
}

function videoElement(): HTMLVideoElement {
  const video = document.createElement("video");
  video.muted = true;
  video.playsInline = true;
  return video;
}

function frameOf(video: HTMLVideoElement): Promise<number> {
  return new Promise((found) => {
    if (typeof video.requestVideoFrameCallback !== "function") {
      setTimeout(() => found(performance.now()), usualPause);
      return;
    }
    const timer = setTimeout(() => found(performance.now()), longestWait);
    video.requestVideoFrameCallback((_, metadata) => {
      clearTimeout(timer);
      found(Math.min(metadata.captureTime ?? metadata.presentationTime, performance.now()));
    });
  });
}

/** Asks for the camera. If it does not start, an error says why. */
export async function openCamera(): Promise<Pictures> {
  if (!navigator.mediaDevices) throw new Error("The browser gives its camera to pages of its own machine only: open the page at 127.0.0.1, or through ssh -L.");
  const stream = await navigator.mediaDevices
    .getUserMedia({ audio: false, video: { width: { ideal: 1280 }, height: { ideal: 720 }, facingMode: "user" } })
    .catch((error: DOMException) => {
      if (error.name === "NotAllowedError") throw new Error("The camera was refused. Allow it for this page in the browser, and start it again.");
      if (error.name === "NotFoundError") throw new Error("There is no camera.");
      throw new Error(`The camera does not start: ${error.message}`);
    });
  const video = videoElement();
  video.srcObject = stream;
  await video.play();
  const track = stream.getVideoTracks()[0];
  return {
    video,
    next: async () => (track.readyState === "ended" ? null : { captured: await frameOf(video), time: null }),
    stop: () => track.stop(),
  };
}

const cannotPlay = "The browser cannot play this video. WebM and MP4 with H.264 can be played by most.";
const cannotGoOn = "The browser cannot read the rest of this video. The recording up to here can be saved below.";

/** A video that was recorded by a browser does not say how long it is, until its end was looked for. */
async function durationOf(video: HTMLVideoElement): Promise<number> {
  if (!Number.isFinite(video.duration)) {
    const isThere = event(video, "seeked", cannotPlay);
    video.currentTime = 1e7;
    await isThere;
  }
  return Number.isFinite(video.duration) ? video.duration : video.currentTime;
}

/** Opens the video of the server, and looks at that many of its frames a second, as fast as they are taken. */
export async function openVideo(address: string, rate: number): Promise<Pictures> {
  const video = videoElement();
  video.preload = "auto";
  const isLoaded = event(video, "loadeddata", cannotPlay);
  video.src = address;
  await isLoaded;
  const duration = await durationOf(video);
  let number = 0;
  return {
    video,
    async next() {
      const time = number++ / rate;
      if (time >= duration) return null;
      if (video.error) throw new Error(cannotGoOn);
      const isThere = event(video, "seeked", cannotGoOn);
      video.currentTime = time;
      await isThere;
      return { captured: performance.now(), time };
    },
    stop: () => video.removeAttribute("src"),
  };
}
