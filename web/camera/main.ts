// Looks at the camera or a video: finds faces, sends their numbers, and shows what was understood. No picture is sent.

import { element } from "../shared/dom";
import { expressionConfidence, facialPointsOf, gazeOf, Point, turnOf, Vector } from "./geometry";
import { Emotions, ExpressionClassifier } from "./expressions";
import { FaceFinder, FoundFace, leastConfidence, rounded } from "./faces";
import { Host } from "../shared/camerascript";
import { Landmarker } from "./landmarker";
import { Meshes } from "./meshes";
import { draw, Shown } from "./overlay";
import { openCamera, openVideo, Picture, Pictures } from "./pictures";
import { Answer, quantile, Sender } from "./sender";
import { Tracker } from "./tracker";
import { Part, whole, Zoom } from "./zoom";

/** [pixels]: wider pictures are made smaller before faces are looked for. */
const widest = 640;
/**
 * Irises are looked for, and expressions are classified, when so much time has passed since the last time [s]: each update of the
 * estimate, ten times a second, needs an expression of its own.
 */
const readingPause = 0.06;
const rateOver = 2000; // [ms]

interface Classified {
  emotions: Emotions;
  confidence: number;
}

interface TrackedFace extends FoundFace {
  track: number;
  gaze: Vector | null;
}

function nearest(points: Point[][], face: FoundFace): Point[] | null {
  const away = (others: Point[]) => Math.hypot(others[1].x - face.points[1].x, others[1].y - face.points[1].y);
  const best = points.reduce<Point[] | null>((before, others) => (before && away(before) <= away(others) ? before : others), null);
  return best && away(best) < face.box.width / 4 ? best : null;
}

/** Takes the part of the picture as it is now, in the size in which faces are looked for. Parts count in pixels of that size. */
function take(video: HTMLVideoElement, { x, y, zoom }: Part, canvas: HTMLCanvasElement): void {
  const scale = Math.min(1, widest / video.videoWidth);
  const [width, height] = [Math.round(scale * video.videoWidth), Math.round(scale * video.videoHeight)];
  if (canvas.width !== width || canvas.height !== height) {
    canvas.width = width;
    canvas.height = height;
  }
  const context = canvas.getContext("2d", { willReadFrequently: true });
  context?.drawImage(video, x / scale, y / scale, width / scale / zoom, height / scale / zoom, 0, 0, width, height);
}

class Camera {
  private readonly canvas = element("canvas", { role: "img", "aria-label": "The picture, mirrored, with the faces that were found" });
  private readonly status = element("p", { class: "note", role: "status" });
  private readonly numbers = element("dl", { class: "facts" });
  private readonly button = element("button", { type: "button", disabled: "" });
  private readonly picture = document.createElement("canvas");
  /** The part of the picture in which faces are looked for, enlarged. */
  private readonly enlarged = document.createElement("canvas");
  private readonly tracker = new Tracker();
  private readonly zoom = new Zoom();
  private readonly sender: Sender;
  private readonly isVideo: boolean;
  private readonly gazes = new Map<number, Vector>();
  /** Those that are looked at; null: none are. */
  private pictures: Pictures | null = null;
  /** Ends when the last run looks at no picture any more. */
  private looking: Promise<void> = Promise.resolve();
  /** The session takes a video once. */
  private wasVideoOpened = false;
  private finder: FaceFinder | null = null;
  private classifier: ExpressionClassifier | null = null;
  /** [s], of the frames in which irises were looked for and expressions were classified. */
  private irisesAt = -Infinity;
  private expressionsAt = -Infinity;
  private persons: Answer["persons"] = {};
  private frames = 0;
  private framesWithFaces = 0;
  private times: number[] = [];

  constructor(
    target: HTMLElement,
    private readonly host: Host,
  ) {
    this.isVideo = host.looksAt.startsWith("video");
    this.sender = new Sender(host);
    const licences = element("a", { href: host.addressOf("/camera/LICENSES.txt"), target: "_blank", rel: "noopener" }, "licences");
    target.append(
      element("h2", {}, this.isVideo ? "Video " : "Camera ", element("small", {}, "as in a mirror; right and left in the readings are the person's own")),
      element("div", { class: "camera" }, this.canvas, element("div", {}, this.numbers, element("p", { class: "row" }, this.button), this.status)),
      element(
        "p",
        { class: "note" },
        "No picture leaves this page. The browser finds the faces, and sends numbers to the session: angles, distances, scores and points of faces. ",
        host.model ? `Faces and blendshapes: the face landmarker of MediaPipe with the model ${host.model} (` : "Faces: MediaPipe face mesh; expressions: face-api (",
        licences,
        ").",
      ),
    );
    this.button.addEventListener("click", () => (this.pictures ? this.stop() : void this.run()));
    this.showButton();
  }

  /** Runs until the pictures end, or are stopped. */
  async run(): Promise<void> {
    this.button.disabled = true;
    await this.looking;
    let pictures: Pictures | null = null;
    try {
      this.say("The models are being loaded…");
      await this.load();
      this.say(this.isVideo ? "The video is being opened…" : "Please allow the camera.");
      pictures = await this.open();
      this.pictures = pictures;
      this.wasVideoOpened = this.isVideo;
      this.say("");
      this.showButton();
      const look = this.look(pictures);
      this.looking = look.catch(() => undefined);
      await look;
    } catch (error) {
      if (this.pictures === pictures) this.say((error as Error).message);
    }
    pictures?.stop();
    if (this.pictures !== pictures) return; // stopped, and perhaps started again
    this.pictures = null;
    this.showButton();
  }

  private async load(): Promise<void> {
    const addressOf = (name: string) => this.host.addressOf(`/camera/${name}`);
    const { model } = this.host;
    this.finder ??= await (model ? Landmarker.load(addressOf, model) : Meshes.load(addressOf));
    if (this.finder.needsClassifier) this.classifier ??= await ExpressionClassifier.load(addressOf);
  }

  private open(): Promise<Pictures> {
    return this.isVideo ? openVideo(this.host.addressOf("/video"), Number(this.host.looksAt.split(" ")[1])) : openCamera();
  }

  private stop(): void {
    this.pictures?.stop();
    this.pictures = null;
    if (this.isVideo) this.say("The video was stopped. The recording can be saved below. To look at the video again, start the command again.");
    this.showButton();
  }

  private async look(pictures: Pictures): Promise<void> {
    while (this.pictures === pictures) {
      const picture = await pictures.next();
      if (this.pictures !== pictures) return;
      if (!picture) {
        await this.endVideo();
        return;
      }
      await this.lookAt(pictures.video, picture);
    }
  }

  private async endVideo(): Promise<void> {
    if (!this.isVideo) return;
    await this.sender.send({ ended: true }, null);
    this.say("The video has ended. The recording can be saved below.");
  }

  private async lookAt(video: HTMLVideoElement, { captured, time }: Picture): Promise<void> {
    if (!this.finder || video.videoWidth === 0) return;
    take(video, whole, this.picture);
    const { width, height } = this.picture;
    const part = this.zoom.next(width, height);
    if (part.zoom > 1) take(video, part, this.enlarged);
    const canvas = part.zoom > 1 ? this.enlarged : this.picture;
    const found = await this.finder.faces(canvas, part);
    const counts = this.zoom.found(
      part,
      found.map(({ box }) => box),
      width,
      height,
    );
    const faces = found.filter((_, i) => counts[i]);
    const boxes = faces.map(({ box }) => box);
    const at = time ?? captured / 1000;
    const tracks = this.tracker.update(boxes, at);
    const looksForIrises = faces.length > 0 && at - this.irisesAt >= readingPause;
    if (looksForIrises) this.irisesAt = at;
    const points = looksForIrises ? await this.finder.points(canvas, part) : [];
    const tracked = faces.flatMap((face, i) => {
      const track = tracks.of[i];
      const irises = nearest(points, face);
      return track === null ? [] : [{ ...face, track, gaze: irises && gazeOf(irises, face.matrix) }];
    });
    const emotions = await this.emotions(tracked, at);
    const frame = {
      ...(time === null ? { age: Math.max(0, Math.min(performance.now() - captured, 10_000)) / 1000 } : { time }),
      faces: tracked.map((face) => this.numbersOf(face, emotions.get(face.track))),
      lost: tracks.lost,
      left: tracks.left,
    };
    this.persons = (await this.sender.send(frame, tracked.length > 0 ? captured : null)).persons;
    ++this.frames;
    if (tracked.length > 0) ++this.framesWithFaces;
    this.show(tracked);
  }

  /** Classifies the expressions of faces that are not turned away too far; by their tracks. */
  private async emotions(faces: TrackedFace[], at: number): Promise<Map<number, Classified>> {
    const classified = new Map<number, Classified>();
    if (!this.classifier || at - this.expressionsAt < readingPause) return classified;
    for (const { track, box, matrix } of faces) {
      const turn = turnOf(matrix);
      const confidence = expressionConfidence(turn);
      if (confidence < leastConfidence) continue;
      this.expressionsAt = at;
      classified.set(track, { emotions: await this.classifier.classify(this.picture, box, turn.roll), confidence });
    }
    return classified;
  }

  /** Readings that cannot be seen are left out. */
  private numbersOf(face: TrackedFace, classified: Classified | undefined): object {
    return {
      track: face.track,
      matrix: face.matrix.map(rounded),
      points: facialPointsOf(face.points, this.picture.width, this.picture.height),
      ...(face.gaze ? { gaze: face.gaze.map(rounded) } : {}),
      ...face.numbers(),
      ...(classified ? { emotions: classified.emotions, emotionConfidence: rounded(classified.confidence) } : {}),
    };
  }

  private show(faces: TrackedFace[]): void {
    for (const { track, gaze } of faces) if (gaze) this.gazes.set(track, gaze);
    for (const track of this.gazes.keys()) if (!faces.some((face) => face.track === track)) this.gazes.delete(track);
    const shown: Shown[] = faces.map(({ box, points, track }) => ({
      box,
      eyes: { x: points[168].x, y: points[168].y },
      gaze: this.gazes.get(track) ?? null,
      estimate: this.host.estimateOf(this.persons[track]),
    }));
    draw(this.canvas, this.picture, shown);
    this.showNumbers(faces.length);
  }

  private showNumbers(faces: number): void {
    const now = performance.now();
    this.times = [...this.times.filter((time) => time > now - rateOver), now];
    const rate = this.times.length < 2 ? NaN : (1000 * (this.times.length - 1)) / (now - this.times[0]);
    const { delays } = this.sender;
    const entries: [string, string, number, string][] = [
      ["frames a second", "rate", rate, Number.isFinite(rate) ? rate.toFixed(1) : "?"],
      ["faces", "faces", faces, String(faces)],
    ];
    if (!this.isVideo && delays.length > 0) {
      const [median, late] = [quantile(delays, 0.5), quantile(delays, 0.99)];
      entries.push(["from frame to estimate", "delay", median, `${Math.round(median)} ms (99 %: ${Math.round(late)} ms)`]);
      this.numbers.dataset.lateDelay = String(late);
    }
    this.numbers.dataset.frames = String(this.frames);
    this.numbers.dataset.framesWithFaces = String(this.framesWithFaces);
    this.numbers.replaceChildren(
      ...entries.map(([name, key, value, text]) =>
        element("div", {}, element("dt", {}, name), element("dd", { "data-camera": key, "data-value": String(value) }, text)),
      ),
    );
  }

  private showButton(): void {
    this.button.disabled = false;
    this.button.hidden = this.wasVideoOpened && !this.pictures;
    const what = this.isVideo ? "video" : "camera";
    this.button.textContent = this.pictures ? `Stop the ${what}` : `Start the ${what}`;
  }

  private say(text: string): void {
    this.status.textContent = text;
  }
}

window.skeigiotCamera = {
  start(target, host) {
    void new Camera(target, host).run();
  },
};
