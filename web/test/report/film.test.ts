import { beforeEach, describe, expect, test, vi } from "vitest";
import { Film } from "../../report/film";

let state: { paused: boolean; ended: boolean; readyState: number; seeking: boolean; duration: number; error: boolean };
let set: number[];
let moved: number[];
let film: Film;
let video: HTMLVideoElement;
let now: number;
const target = document.createElement("div");
const note = () => target.querySelector(".note")?.textContent;
const said = (name: string) => video.dispatchEvent(new Event(name));

beforeEach(() => {
  state = { paused: true, ended: false, readyState: 1, seeking: false, duration: 10, error: false };
  [set, moved, now] = [[], [], 0];
  target.replaceChildren();
  film = new Film(target, { address: "a%20b.webm", offset: 2 }, (time) => void moved.push(time));
  video = target.querySelector("video") as HTMLVideoElement;
  const getters = Object.fromEntries(
    (["paused", "ended", "readyState", "seeking", "duration"] as const).map((name) => [name, { get: () => state[name] }]),
  );
  Object.defineProperties(video, {
    ...getters,
    currentTime: {
      get: () => now,
      set: (value: number) => {
        set.push(value);
        now = value;
      },
    },
  });
  video.pause = vi.fn();
  video.play = vi.fn(() => (state.error ? Promise.reject(new Error("no")) : Promise.resolve()));
});

describe("The video", () => {
  test("is in a card of its own", () => {
    expect(target).toMatchSnapshot();
  });

  test("shows the time of the recording, less when it begins", () => {
    film.show(7);
    expect(set).toEqual([5]);
    film.show(7.019);
    expect(set).toEqual([5]);
    film.show(7.03);
    expect(set).toEqual([5, 5.03]);
    expect(note()).toBe("");
  });

  test("waits until it can seek, and then goes to the last time that was wanted", () => {
    state.readyState = 0;
    film.show(3);
    film.show(4);
    expect(set).toEqual([]);
    said("loadedmetadata");
    expect(set).toEqual([2]);
    [state.readyState, state.seeking] = [1, true];
    film.show(5);
    film.show(6);
    expect(set).toEqual([2]);
    said("seeked");
    expect(set).toEqual([2, 4]);
    said("seeked");
    expect(set).toEqual([2, 4]);
  });

  test("reports where it is when it is paused", () => {
    now = 4.5;
    said("pause");
    expect(moved).toEqual([6.5]);
  });

  test("says where it begins and ends", () => {
    film.show(1.99);
    expect([set, note()]).toEqual([[], ""]);
    film.show(1.9);
    expect([set, note()]).toEqual([[], "The video begins at 0:02.0."]);
    film.show(12.01);
    expect([set, note()]).toEqual([[10], ""]);
    film.show(12.1);
    expect([set, note()]).toEqual([[10], "The video ends at 0:12.0."]);
    film.show(5);
    expect([set, note()]).toEqual([[10, 3], ""]);
    state.duration = NaN;
    film.show(100);
    expect([set, note()]).toEqual([[10, 3, 98], ""]);
  });

  test("says when a person moves its slider, but not when it was asked to move", () => {
    film.show(7);
    said("seeking");
    expect(moved).toEqual([]);
    said("seeking");
    expect(moved).toEqual([7]);
    film.show(9);
    now = 8;
    said("seeking");
    expect(moved).toEqual([7, 10]);
  });

  test("forgets its note when it moves", () => {
    film.show(0);
    expect(note()).not.toBe("");
    said("seeking");
    expect(note()).toBe("");
  });

  test("says its time while it plays", () => {
    const frames: (() => void)[] = [];
    vi.stubGlobal("requestAnimationFrame", (next: () => void) => frames.push(next));
    state.paused = false;
    now = 1;
    said("play");
    now = 1.5;
    frames.pop()?.();
    expect(moved).toEqual([3, 3.5]);
    expect(film.isPlaying).toBe(true);
    state.ended = true;
    expect(film.isPlaying).toBe(false);
    frames.pop()?.();
    expect([moved.length, frames.length]).toEqual([2, 0]);
  });

  test("plays and pauses", async () => {
    film.toggle();
    expect(video.play).toHaveBeenCalledTimes(1);
    state.paused = false;
    film.toggle();
    expect([vi.mocked(video.play).mock.calls.length, vi.mocked(video.pause).mock.calls.length]).toEqual([1, 1]);
  });

  test("says that it cannot be played", async () => {
    const why =
      "The browser cannot play a b.webm. The page looks for it there, as seen from its own folder: " +
      "move both together, and take a format that browsers play, such as WebM or MP4.";
    said("error");
    expect(note()).toBe(why);
    said("seeking");
    expect(note()).toBe("");
    state.error = true;
    film.toggle();
    await new Promise((done) => setTimeout(done, 0));
    expect(note()).toBe(why);
  });
});
