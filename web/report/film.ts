// A video beside the curves, in step with the cursor.

import { element } from "../shared/dom";
import { clock } from "../shared/text";

/** Times that differ by less than this are equal [s]. */
const sameTime = 0.02;

export class Film {
  private readonly video: HTMLVideoElement;
  private readonly note = element("p", { class: "note" });
  private wanted: number | null = null;
  private placed: number | null = null;

  /** `moved` is called with the time of the recording that the video shows, when the video is moved or plays. */
  constructor(
    target: HTMLElement,
    private readonly source: { address: string; offset: number },
    private readonly moved: (time: number) => void,
  ) {
    this.video = element("video", { src: source.address, controls: "", preload: "auto", playsinline: "" });
    this.video.addEventListener("play", () => this.playing());
    this.video.addEventListener("pause", () => this.tell());
    this.video.addEventListener("seeking", () => this.seeking());
    this.video.addEventListener("seeked", () => this.goOn());
    this.video.addEventListener("loadedmetadata", () => this.goOn());
    this.video.addEventListener("error", () => this.failed());
    target.append(element("div", { class: "card" }, this.video, this.note));
  }

  get isPlaying(): boolean {
    return !this.video.paused && !this.video.ended;
  }

  /** Shows that time of the recording. Times that come while the video still seeks wait for it; the last one counts. */
  show(time: number): void {
    this.wanted = time - this.source.offset;
    if (this.video.readyState > 0 && !this.video.seeking) this.goOn();
  }

  toggle(): void {
    if (this.isPlaying) this.video.pause();
    else void this.video.play().catch(() => this.failed());
  }

  private goOn(): void {
    const { wanted, video } = this;
    this.wanted = null;
    if (wanted === null) return;
    const end = Number.isFinite(video.duration) ? video.duration : Infinity;
    this.sayWhereItEnds(wanted, end);
    const place = Math.min(Math.max(wanted, 0), end);
    if (Math.abs(place - video.currentTime) < sameTime) return;
    this.placed = place;
    video.currentTime = place;
  }

  /** The video seeks because we asked it to, or because a person moved its own slider. */
  private seeking(): void {
    const isOurs = this.placed !== null && Math.abs(this.video.currentTime - this.placed) < sameTime;
    this.placed = null;
    if (!isOurs) this.tell();
  }

  private playing(): void {
    const step = () => {
      if (!this.isPlaying) return;
      this.tell();
      requestAnimationFrame(step);
    };
    step();
  }

  private tell(): void {
    this.note.textContent = "";
    this.moved(this.video.currentTime + this.source.offset);
  }

  private sayWhereItEnds(wanted: number, end: number): void {
    const { offset } = this.source;
    if (wanted < -sameTime) this.note.textContent = `The video begins at ${clock(offset)}.`;
    else if (wanted > end + sameTime) this.note.textContent = `The video ends at ${clock(offset + end)}.`;
    else this.note.textContent = "";
  }

  private failed(): void {
    const name = decodeURIComponent(this.source.address);
    this.note.textContent =
      `The browser cannot play ${name}. The page looks for it there, as seen from its own folder: ` +
      "move both together, and take a format that browsers play, such as WebM or MP4.";
  }
}
