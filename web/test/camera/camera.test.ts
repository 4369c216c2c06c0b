// The camera without its models: sending, drawing, and the choice of the part of a picture.

import { afterEach, beforeEach, describe, expect, test, vi } from "vitest";
import { ExpressionClassifier } from "../../camera/expressions";
import { draw, Shown } from "../../camera/overlay";
import { openCamera, openVideo } from "../../camera/pictures";
import { quantile, Sender } from "../../camera/sender";
import { poseInWhole, whole, Zoom } from "../../camera/zoom";
import { logOf } from "../drawing";
import { asked, net } from "./fakefaceapi";

afterEach(() => {
  vi.restoreAllMocks();
  vi.useRealTimers();
});

describe("The sender", () => {
  let news: (now: number) => void = () => {};
  let answer: () => Promise<Response>;
  const frames: { address: string; request: RequestInit }[] = [];
  const host = {
    looksAt: "camera",
    model: "",
    addressOf: (path: string) => `${path}?token=1`,
    estimateOf: () => undefined,
    onNews: (took: (now: number) => void) => void (news = took),
  };

  beforeEach(() => {
    frames.length = 0;
    answer = async () => new Response(JSON.stringify({ time: 5, persons: { 1: 3 } }));
    vi.stubGlobal("fetch", (address: string, request: RequestInit) => {
      frames.push({ address, request });
      return answer();
    });
  });

  test("sends frames of one page, and returns the answer", async () => {
    const sender = new Sender(host);
    expect(await sender.send({ faces: [] }, null)).toEqual({ time: 5, persons: { 1: 3 } });
    await sender.send({ faces: [1] }, null);
    expect(frames.map(({ address, request: { method, headers } }) => [address, method, headers])).toEqual(
      new Array(2).fill(["/frame?token=1", "POST", { "Content-Type": "application/json" }]),
    );
    const [first, second] = frames.map(({ request }) => JSON.parse(String(request.body)));
    expect(first.page).toBe(second.page);
    expect(first.page.length).toBeGreaterThan(10);
    expect(second.faces).toEqual([1]);
  });

  test("names the page at random where the browser has no such names", async () => {
    vi.stubGlobal("crypto", {});
    await new Sender(host).send({}, null);
    await new Sender(host).send({}, null);
    const [first, second] = frames.map(({ request }) => JSON.parse(String(request.body)).page);
    expect(first).toMatch(/^0\.\d+/);
    expect(first).not.toBe(second);
  });

  test("says why there is no answer", async () => {
    const sender = new Sender(host);
    answer = async () => new Response(" full \n", { status: 409 });
    await expect(sender.send({}, 1)).rejects.toThrow(new Error("full"));
    answer = () => Promise.reject(new Error("network"));
    await expect(sender.send({}, 1)).rejects.toThrow(new Error("The session does not answer: has it ended?"));
  });

  test("measures the time from a picture to the news with its estimate", async () => {
    const now = vi.spyOn(performance, "now").mockReturnValue(1000);
    const sender = new Sender(host);
    await sender.send({}, 900);
    expect(sender.delays).toEqual([]);
    now.mockReturnValue(1050);
    news(4);
    expect(sender.delays).toEqual([]);
    news(5);
    expect(sender.delays).toEqual([150]);
    news(6);
    expect(sender.delays).toEqual([150]);
    await sender.send({}, 1000); // its estimate is there already
    expect(sender.delays).toEqual([150, 50]);
    await sender.send({}, null);
    expect(sender.delays).toEqual([150, 50]);
  });

  test("keeps the last 600 delays, and waits for as many", async () => {
    vi.spyOn(performance, "now").mockReturnValue(1000);
    const sender = new Sender(host);
    for (let i = 0; i < 602; ++i) await sender.send({}, i);
    news(5);
    expect([sender.delays.length, sender.delays[0], sender.delays[599]]).toEqual([600, 998, 399]);
    await sender.send({}, 1000);
    expect([sender.delays.length, sender.delays[0], sender.delays[599]]).toEqual([600, 997, 0]);
  });
});

test("A quantile is the value below which that share of the values lies", () => {
  expect([0, 0.5, 0.95, 1].map((share) => quantile([10, 9, 1, 2, 3, 4, 5, 6, 7, 8], share))).toEqual([1, 6, 10, 10]);
  expect(quantile([], 0.5)).toBeNaN();
});

describe("The zoom", () => {
  const [width, height] = [1100, 660];
  const face = (x: number, y: number, size = 50) => ({ x: x - size / 2, y: y - size / 2, width: size, height: size });
  const round = ({ x, y, zoom }: { x: number; y: number; zoom: number }) => [Math.round(x), Math.round(y), zoom];

  test("looks at the whole picture, and at parts in turn while nobody is found", () => {
    const zoom = new Zoom();
    const parts = Array.from({ length: 11 }, () => {
      const part = zoom.next(width, height);
      expect(zoom.found(part, [], width, height)).toEqual([]);
      return round(part);
    });
    const all = [0, 0, 1];
    expect(parts).toEqual([all, [300, 147, 2.2], all, [25, 114, 2.2], all, [575, 114, 2.2], all, [300, 345, 2.2], all, [300, 147, 2.2], all].map((part, i) => (i % 2 ? part : all)));
  });

  test("keeps a part in which somebody is found, and follows the face", () => {
    const zoom = new Zoom();
    zoom.found(zoom.next(width, height), [], width, height);
    const part = zoom.next(width, height);
    expect(zoom.found(part, [face(500, 300), face(700, 400)], width, height)).toEqual([true, true]);
    expect(round(zoom.next(width, height))).toEqual([350, 200, 2.2]);
    zoom.found({ x: 350, y: 200, zoom: 2.2 }, [face(400, 250)], width, height);
    expect(round(zoom.next(width, height))).toEqual([150, 100, 2.2]);
  });

  test("stays within the picture", () => {
    const zoom = new Zoom();
    zoom.found(zoom.next(width, height), [], width, height);
    zoom.next(width, height);
    zoom.found({ x: 0, y: 0, zoom: 2.2 }, [face(30, 30)], width, height);
    expect(round(zoom.next(width, height))).toEqual([0, 0, 2.2]);
    zoom.found({ x: 600, y: 360, zoom: 2.2 }, [face(1070, 630)], width, height);
    expect(round(zoom.next(width, height))).toEqual([600, 360, 2.2]);
  });

  test("looks again at the whole picture from time to time, and when nobody was found twice", () => {
    const zoom = new Zoom();
    zoom.found(zoom.next(width, height), [], width, height);
    zoom.found(zoom.next(width, height), [face(550, 300)], width, height);
    const looks = Array.from({ length: 90 }, () => zoom.next(width, height).zoom);
    expect(looks.flatMap((one, i) => (one === 1 ? [i + 3] : []))).toEqual([45, 90]);
    const kept = zoom.next(width, height);
    zoom.found(whole, [], width, height); // a glance at the whole says nothing
    zoom.found(kept, [], width, height);
    expect(zoom.next(width, height).zoom).toBe(2.2);
    zoom.found(kept, [], width, height);
    expect(zoom.next(width, height)).toEqual(whole);
  });

  test("goes back to the whole picture for a face that is found there, or that a part does not show well", () => {
    const part = { x: 300, y: 150, zoom: 2.2 }; // to 800, 450 px
    const after = (boxes: { x: number; y: number; width: number; height: number }[], at = part) => {
      const zoom = new Zoom();
      zoom.found(zoom.next(width, height), [], width, height);
      zoom.next(width, height);
      zoom.found(part, [face(550, 300)], width, height);
      const counts = zoom.found(at, boxes, width, height);
      return [counts, zoom.next(width, height).zoom];
    };
    expect(after([face(550, 300)], whole)).toEqual([[true], 1]);
    expect(after([face(325, 300)])).toEqual([[true], 2.2]);
    expect(after([face(324, 300)])).toEqual([[false], 1]);
    expect(after([face(775, 300)])).toEqual([[true], 2.2]);
    expect(after([face(776, 300), face(550, 300)])).toEqual([[false, true], 1]);
    expect(after([face(550, 175)])).toEqual([[true], 2.2]);
    expect(after([face(550, 174)])).toEqual([[false], 1]);
    expect(after([face(550, 425)])).toEqual([[true], 2.2]);
    expect(after([face(550, 426)])).toEqual([[false], 1]);
    const wide = (size: number) => ({ x: 400, y: 200, width: size, height: 50 });
    expect(after([wide(224)])).toEqual([[true], 2.2]);
    expect(after([wide(226)])).toEqual([[false], 1]);
    expect(after([face(10, 10)], { x: 0, y: 0, zoom: 2.2 })).toEqual([[true], 2.2]);
    expect(after([face(1095, 655)], { x: 600, y: 360, zoom: 2.2 })).toEqual([[true], 2.2]);
  });

  test("leaves a pose in the whole picture as it is", () => {
    const matrix = Array.from({ length: 16 }, (_, i) => i);
    expect(poseInWhole(matrix, whole, width, height)).toBe(matrix);
  });

  test("puts the pose of the middle of the picture further away, and turns that of another part", () => {
    const straight = [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, -40, 1];
    const middle = { x: 300, y: 180, zoom: 2.2 };
    const pose = poseInWhole(straight, middle, width, height);
    [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, -88, 1].forEach((value, i) => expect(pose[i]).toBeCloseTo(value, 9));
    // A face in the middle of a part at the lower right lies where that part does, and looks at the camera.
    const part = { x: 600, y: 360, zoom: 2.2 };
    const turned = poseInWhole(straight, part, width, height);
    const focal = 330 / Math.tan((31.5 * Math.PI) / 180);
    const length = Math.hypot(300 / focal, 180 / focal, 1);
    const place = [(300 / focal / length) * 88, (-180 / focal / length) * 88, -88 / length];
    place.forEach((value, i) => expect(turned[12 + i]).toBeCloseTo(value, 9));
    [0, 1, 2].forEach((row) => expect(turned[8 + row]).toBeCloseTo(-place[row] / 88, 9));
    const column = (at: number) => turned.slice(4 * at, 4 * at + 3);
    const product = (one: number[], other: number[]) => one.reduce((sum, value, i) => sum + value * other[i], 0);
    for (const [one, other] of [[0, 1], [0, 2], [1, 2]]) expect(product(column(one), column(other))).toBeCloseTo(0, 9);
    for (const one of [0, 1, 2]) expect(product(column(one), column(one))).toBeCloseTo(1, 9);
    expect(turned[1]).toBe(0);
    expect(turned[0]).toBeGreaterThan(0);
    expect(turned[5]).toBeGreaterThan(0);
    expect([turned[3], turned[7], turned[11], turned[15]]).toEqual([0, 0, 0, 1]);
  });
});

describe("The drawing over the picture", () => {
  const face: Shown = {
    box: { x: 40, y: 30, width: 100, height: 120 },
    eyes: { x: 90, y: 70 },
    gaze: [0.5, -0.25, 0.8],
    estimate: { name: "Ada", zone: "LookingUp", valence: -0.25 },
  };
  function drawnWith(faces: Shown[], width = 640, canvas = document.createElement("canvas")): string[] {
    const picture = document.createElement("canvas");
    picture.width = width;
    picture.height = 480;
    draw(canvas, picture, faces);
    expect([canvas.width, canvas.height]).toEqual([width, 480]);
    return logOf(canvas);
  }

  test("is mirrored, with box, gaze and words", () => {
    expect(drawnWith([face]).join("\n")).toMatchSnapshot();
  });

  test("has only a box of a person whose estimate and gaze are not known", () => {
    const log = drawnWith([{ ...face, gaze: null, estimate: undefined }]);
    expect(log.slice(5)).toEqual(["lineWidth = 2", "fillStyle = color(--muted)", "strokeStyle = color(--muted)", "strokeRect 500 30 100 120"]);
  });

  test("has no arrow of a gaze to the camera, and thicker lines in a larger picture", () => {
    const log = drawnWith([{ ...face, gaze: [0.01, 0, 1], estimate: { name: "Ada", zone: "Unknown", valence: NaN } }], 1280);
    expect(log).toContain("lineWidth = 4");
    expect(log).not.toContain("stroke");
    expect(log.find((line) => line.startsWith("fillText"))).toMatch(/^fillText Ada: \?,  no zone /);
    expect(drawnWith([], 320)).toContain("lineWidth = 1.5");
  });

  test("keeps words within the picture", () => {
    const label = (x: number, y: number) => drawnWith([{ ...face, gaze: null, box: { ...face.box, x, y } }]).filter((line) => /^fill(Rect|Text)/.test(line));
    expect(label(600, 5)).toEqual(["fillRect 0 0 149.5 18.2", "fillText Ada: −0.25, ↑ up 6.5 13.65"].map((line) => expect.stringMatching(line.split(" ")[0] === "fillRect" ? /^fillRect 0 0 / : /^fillText Ada: −0.25, ↑ up 6.5 13.65$/)));
    const [rect] = label(-60, 100);
    const [, left, top, wide] = rect.split(" ").map(Number);
    expect(left + wide).toBeCloseTo(640, 3);
    expect(top).toBe(80.5);
  });

  test("does not change the size of the canvas if it is the same, nor draws without a context", () => {
    const canvas = document.createElement("canvas");
    drawnWith([], 640, canvas);
    const set = vi.spyOn(canvas, "width", "set");
    drawnWith([], 640, canvas);
    expect(set).not.toHaveBeenCalled();
    vi.spyOn(HTMLCanvasElement.prototype, "getContext").mockReturnValue(null);
    draw(canvas, document.createElement("canvas"), [face]);
    expect(set).not.toHaveBeenCalled();
  });

  test("has a colour where the style sheet has none", () => {
    vi.stubGlobal("getComputedStyle", () => ({ getPropertyValue: () => "" }));
    expect(drawnWith([{ ...face, gaze: null }])).toContain("strokeStyle = #4a90d9");
    vi.stubGlobal("getComputedStyle", () => ({ getPropertyValue: (name: string) => ` color(${name}) ` }));
  });
});

describe("The expressions", () => {
  beforeEach(() => {
    asked.length = 0;
    net.runs = true;
    vi.stubGlobal("fetch", async (address: string) =>
      address.endsWith("json") ? new Response(JSON.stringify([{ weights: [{ name: "w" }] }])) : new Response(new Uint8Array(5)),
    );
  });

  test("are read by a net that is loaded from the server", async () => {
    await ExpressionClassifier.load((name) => `/camera/${name}`);
    const wasm = "/camera/tfjs-backend-wasm-simd.wasm";
    expect(asked).toEqual([
      ["setWasmPaths", { "tfjs-backend-wasm.wasm": wasm, "tfjs-backend-wasm-simd.wasm": wasm, "tfjs-backend-wasm-threaded-simd.wasm": wasm }],
      ["setBackend", "wasm"], ["ready"], ["loadFromWeightMap", { bytes: 5, specifications: [{ name: "w" }] }],
    ]);
    net.runs = false;
    await expect(ExpressionClassifier.load((name) => name)).rejects.toThrow(new Error("WebAssembly does not run here."));
  });

  test("are those of the face, put upright, in four decimals", async () => {
    const classifier = await ExpressionClassifier.load((name) => name);
    net.answer = { neutral: 0.123456, happy: 1.00001, sad: -0.00001, angry: 0.4, fearful: 0.5, disgusted: 0.6, surprised: 0.7 };
    const logs: string[][] = [];
    const getContext = HTMLCanvasElement.prototype.getContext;
    vi.spyOn(HTMLCanvasElement.prototype, "getContext").mockImplementation(function (this: HTMLCanvasElement, ...values: unknown[]) {
      expect(values).toEqual(["2d", { willReadFrequently: true }]);
      logs.push(logOfOwn(this));
      return getContext.call(this, "2d") as never;
    } as never);
    const logOfOwn = (canvas: HTMLCanvasElement) => (getContext.call(canvas, "2d") as unknown as { log: string[] }).log;
    expect(await classifier.classify(document.createElement("canvas"), { x: 100, y: 50, width: 50, height: 112 / 1.15 }, 90)).toEqual({
      neutral: 0.1235, happy: 1, sad: 0, surprise: 0.7, fear: 0.5, disgust: 0.6, anger: 0.4,
    });
    expect(logs[0]).toEqual([
      "setTransform 1 0 0 1 0 0", "clearRect 0 0 112 112", "translate 56 56", "rotate 1.57", "scale 1 1", "drawImage canvas -125 -98.7",
    ]);
    expect(asked[asked.length - 1]).toEqual(["predictExpressions", 112, 112]);
  });

  test("need a canvas", async () => {
    const classifier = await ExpressionClassifier.load((name) => name);
    vi.spyOn(HTMLCanvasElement.prototype, "getContext").mockReturnValue(null);
    await expect(classifier.classify(document.createElement("canvas"), { x: 0, y: 0, width: 1, height: 1 }, 0)).rejects.toThrow(new Error("There is no canvas."));
  });
});

describe("Pictures of a camera", () => {
  const track = { readyState: "live", stop: vi.fn() };
  const stream = { getVideoTracks: () => [track] };
  const play = vi.fn(async () => {});
  let wanted: unknown;
  const give = (answer: () => Promise<unknown>) =>
    Object.defineProperty(navigator, "mediaDevices", {
      configurable: true,
      value: {
        getUserMedia: (what: unknown) => {
          wanted = what;
          return answer();
        },
      },
    });

  beforeEach(() => {
    track.readyState = "live";
    HTMLMediaElement.prototype.play = play;
    Object.defineProperty(HTMLMediaElement.prototype, "srcObject", { configurable: true, writable: true, value: null });
  });

  test("need a page of the own machine", async () => {
    Object.defineProperty(navigator, "mediaDevices", { configurable: true, value: undefined });
    await expect(openCamera()).rejects.toThrow(
      new Error("The browser gives its camera to pages of its own machine only: open the page at 127.0.0.1, or through ssh -L."),
    );
  });

  test.each([
    ["NotAllowedError", "The camera was refused. Allow it for this page in the browser, and start it again."],
    ["NotFoundError", "There is no camera."],
    ["NotReadableError", "The camera does not start: busy"],
  ])("do not come after a %s", async (name, message) => {
    give(() => Promise.reject(Object.assign(new Error("busy"), { name })));
    await expect(openCamera()).rejects.toThrow(new Error(message));
  });

  test("come as the browser has them, until the camera ends", async () => {
    give(async () => stream);
    const pictures = await openCamera();
    expect(wanted).toEqual({ audio: false, video: { width: { ideal: 1280 }, height: { ideal: 720 }, facingMode: "user" } });
    expect([pictures.video.muted, pictures.video.playsInline, pictures.video.srcObject, play.mock.calls.length > 0]).toEqual([true, true, stream, true]);
    vi.spyOn(performance, "now").mockReturnValue(500);
    const callback = (metadata: object) =>
      Object.assign(pictures.video, { requestVideoFrameCallback: (took: (now: number, metadata: object) => void) => took(0, metadata) });
    callback({ captureTime: 400, presentationTime: 450 });
    expect(await pictures.next()).toEqual({ captured: 400, time: null });
    callback({ presentationTime: 450 });
    expect(await pictures.next()).toEqual({ captured: 450, time: null });
    callback({ presentationTime: 550 });
    expect(await pictures.next()).toEqual({ captured: 500, time: null });
    track.readyState = "ended";
    expect(await pictures.next()).toBeNull();
    pictures.stop();
    expect(track.stop).toHaveBeenCalled();
  });

  test.each([
    ["250 ms in a window in the background", 250, () => {}],
    ["33 ms where the browser does not say when they come", 33, undefined],
  ])("come after %s", async (_, wait, requestVideoFrameCallback) => {
    give(async () => stream);
    const pictures = await openCamera();
    Object.assign(pictures.video, { requestVideoFrameCallback });
    vi.useFakeTimers({ toFake: ["setTimeout"] });
    vi.spyOn(performance, "now").mockReturnValue(700);
    let picture: unknown;
    void pictures.next().then((one) => (picture = one));
    await vi.advanceTimersByTimeAsync(wait - 1);
    expect(picture).toBeUndefined();
    await vi.advanceTimersByTimeAsync(1);
    expect(picture).toEqual({ captured: 700, time: null });
  });
});

describe("Pictures of a video", () => {
  let video: HTMLVideoElement;
  let duration: number;
  let times: number[];
  let next: string;

  beforeEach(() => {
    [duration, times, next] = [0.5, [], "loadeddata"];
    const create = document.createElement.bind(document);
    vi.spyOn(document, "createElement").mockImplementation(((tag: string) => {
      const made = create(tag);
      if (tag === "video") {
        video = made as HTMLVideoElement;
        let time = 0;
        Object.defineProperties(video, {
          duration: { get: () => duration },
          error: { writable: true, value: null },
          src: { set: () => queueMicrotask(() => video.dispatchEvent(new Event(next))) },
          currentTime: {
            get: () => time,
            set: (value: number) => {
              times.push(value);
              time = Math.min(value, 0.75);
              queueMicrotask(() => video.dispatchEvent(new Event(next === "loadeddata" ? "seeked" : next)));
            },
          },
        });
      }
      return made;
    }) as never);
  });

  test("are so many of a second, up to its end", async () => {
    const pictures = await openVideo("/video", 5);
    vi.spyOn(performance, "now").mockReturnValue(9);
    expect([await pictures.next(), await pictures.next(), await pictures.next(), await pictures.next()]).toEqual([
      { captured: 9, time: 0 }, { captured: 9, time: 0.2 }, { captured: 9, time: 0.4 }, null,
    ]);
    expect(times).toEqual([0, 0.2, 0.4]);
    expect([video.preload, video.muted]).toEqual(["auto", true]);
    video.setAttribute("src", "x");
    pictures.stop();
    expect(video.hasAttribute("src")).toBe(false);
  });

  test("are looked for up to the end of a video that does not say how long it is", async () => {
    duration = Infinity;
    const pictures = await openVideo("/video", 2);
    expect(times).toEqual([1e7]);
    expect([(await pictures.next())?.time, (await pictures.next())?.time, await pictures.next()]).toEqual([0, 0.5, null]);
  });

  test("are not there if the browser cannot play the video, or read on", async () => {
    next = "error";
    await expect(openVideo("/video", 5)).rejects.toThrow(new Error("The browser cannot play this video. WebM and MP4 with H.264 can be played by most."));
    next = "loadeddata";
    const pictures = await openVideo("/video", 5);
    next = "error";
    const cannotGoOn = new Error("The browser cannot read the rest of this video. The recording up to here can be saved below.");
    await expect(pictures.next()).rejects.toThrow(cannotGoOn);
    next = "loadeddata";
    Object.assign(video, { error: {} });
    await expect(pictures.next()).rejects.toThrow(cannotGoOn);
  });
});
