// Opens the live page with a camera in a real browser, shows the camera a photograph, and checks what the page finds.
//
// usage: node camera.test.mjs CHROMIUM SKEIGIOT PHOTOGRAPH WORK [TEXT]
//   Leaves pictures of the page in the folder WORK. TEXT: only tests whose names have it.

import { chromium } from "playwright-core";
import assert from "node:assert/strict";
import { execFileSync, spawn } from "node:child_process";
import { mkdirSync, writeFileSync } from "node:fs";
import { join, resolve } from "node:path";
import { createInterface } from "node:readline";
import { finish, test as runCase } from "./cases.mjs";
import { addFakeCamera } from "./fakecamera.mjs";

const [browserPath, command, photograph, workPath, wanted = ""] = process.argv.slice(2);
assert.ok(workPath, "usage: node camera.test.mjs CHROMIUM SKEIGIOT PHOTOGRAPH WORK");
const work = resolve(workPath);
mkdirSync(work, { recursive: true });

const patience = 60_000; // [ms]

/** Runs a case if its name has the wanted text. */
async function test(name, body) {
  if (name.includes(wanted)) await runCase(name, body);
}

const pause = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));
const launch = (...options) => chromium.launch({ executablePath: browserPath, args: ["--no-sandbox", ...options] });
const browser = await launch();

async function serve(...options) {
  const child = spawn(command, ["serve", "--no-open", ...options], { stdio: ["ignore", "pipe", "ignore"] });
  const address = await new Promise((found) => createInterface(child.stdout).once("line", found));
  const ended = new Promise((found) => child.once("exit", found));
  return {
    address,
    pid: child.pid,
    async recording() {
      const answer = await fetch(new URL(`/recording.jsonl${new URL(address).search}`, address));
      return (await answer.text())
        .trim()
        .split("\n")
        .map((line) => JSON.parse(line));
    },
    end() {
      child.kill("SIGINT");
      return ended;
    },
  };
}

/** Opens the page; errors of it and requests to anywhere else are complaints. */
async function open(served, { inBrowser = browser, prepare = (page) => addFakeCamera(page, photograph) } = {}) {
  const context = await inBrowser.newContext({ viewport: { width: 1280, height: 1000 }, permissions: ["camera"] });
  context.setDefaultTimeout(patience);
  const page = await context.newPage();
  const complaints = [];
  const requests = [];
  page.on("console", (message) => message.type() === "error" && complaints.push(message.text()));
  page.on("pageerror", (error) => complaints.push(error.message));
  page.on("request", (request) => {
    requests.push(request);
    const { protocol, origin } = new URL(request.url());
    if (protocol !== "data:" && protocol !== "blob:" && origin !== new URL(served.address).origin) complaints.push(`asked for ${request.url()}`);
  });
  await prepare(page);
  await page.goto(served.address);
  return { page, complaints, requests };
}

const frames = (page) =>
  page.evaluate(() => {
    const { frames = "0", framesWithFaces = "0" } = document.querySelector("#camera dl")?.dataset ?? {};
    return { all: Number(frames), found: Number(framesWithFaces) };
  });
const number = (page, key) => page.locator(`#camera [data-camera="${key}"]`).getAttribute("data-value").then(Number);
const reading = (page, key) => page.locator(`#readout [data-key="${key}"]`).getAttribute("data-value", { timeout: 20_000 }).then(Number);

/** Waits for so many frames more. */
async function look(page, count) {
  const { all } = await frames(page);
  await page.waitForFunction((until) => Number(document.querySelector("#camera dl")?.dataset.frames) >= until, all + count);
}

const sees = (page, heads) => page.evaluate((seen) => window.cameraSees(seen), heads);
const follows = (page, movement) => page.evaluate((name) => window.cameraFollows(name), movement);
const ahead = { x: 320, y: 200, scale: 1.3 };
/** Returns the two persons whose faces were found last, the one on the left of the picture first. */
function placesIn(steps) {
  const places = new Map();
  for (const { person, observation } of steps) {
    const xs = (observation?.facialPoints?.points ?? []).flatMap(([x, , confidence]) => (confidence > 0 ? [x] : []));
    if (xs.length === 0) continue;
    places.delete(person);
    places.set(person, { person, x: xs.reduce((sum, x) => sum + x, 0) / xs.length });
  }
  return [...places.values()].slice(-2).sort((one, other) => one.x - other.x);
}

const personsIn = (steps) => [...new Set(steps.filter(({ person, seen }) => person !== undefined && seen !== false).map(({ person }) => person))];

async function withCamera(body) {
  const served = await serve("--camera");
  try {
    const opened = await open(served);
    await look(opened.page, 5);
    await body(opened, served);
    assert.deepEqual(opened.complaints, []);
    await opened.page.context().close();
  } finally {
    assert.equal(await served.end(), 0);
  }
}

await test("finds a person who smiles, and follows the person while the camera pans, blurs and loses the face", () =>
  withCamera(async ({ page }, served) => {
    await look(page, 10);
    assert.ok((await reading(page, "valence")) > 0.2, "somebody who smiles feels good");
    assert.ok((await reading(page, "attention")) > 0.6, "somebody who faces the camera attends");
    assert.ok((await reading(page, "smile")) > 0.5);
    const near = await reading(page, "distance");

    const before = await frames(page);
    await follows(page, "across");
    await pause(6500);
    await look(page, 5);
    await follows(page, "away");
    await pause(4000);
    await look(page, 10);
    const far = await reading(page, "distance");
    const after = await frames(page);
    const share = (after.found - before.found) / (after.all - before.all);
    console.log(`        found in ${(100 * share).toFixed(1)} % of ${after.all - before.all} frames; distances ${near} m, ${far} m`);
    assert.ok(share >= 0.95, `found in ${share} of the frames`);
    assert.ok(Math.abs(far / near - 2) < 0.3, `a face that is half as large is twice as far: ${near}, ${far}`);

    await sees(page, []);
    await page.waitForFunction(() => /not visible/.test(document.querySelector("#readout").innerText));
    await sees(page, [ahead]);
    await look(page, 14);
    const steps = await served.recording();
    assert.deepEqual(personsIn(steps), [1], "one person stays one person");
    assert.ok(steps.some(({ seen }) => seen === false));
    const joy = steps.flatMap(({ observation }) => observation?.expressions?.joy ?? []);
    assert.ok(joy.length > 5 && joy.every(({ value }) => value > 0.5), "joy in each of the expressions");
    await page.screenshot({ path: join(work, "camera.png") });
  }));

await test("finds less attention in a head that turns away, and counts its angles to the own right", () =>
  withCamera(async ({ page }) => {
    await look(page, 10);
    const attention = await reading(page, "attention");
    const values = [];
    for (const turn of [25, 50]) {
      await sees(page, [{ ...ahead, turn }]);
      await look(page, 15);
      values.push({ yaw: await reading(page, "headYaw"), attention: await reading(page, "attention") });
    }
    console.log(`        attention ${attention.toFixed(2)}; turned: ${values.map((value) => `${value.attention.toFixed(2)} at ${value.yaw.toFixed(0)}°`).join(", ")}`);
    assert.ok(values[0].yaw < -5 && values[1].yaw < values[0].yaw - 3, "to the right in the picture is to the own left");
    assert.ok(values[1].attention < attention - 0.2);
    for (const turn of [0, -35]) {
      await sees(page, [{ ...ahead, turn }]);
      await look(page, 12);
    }
    assert.ok((await reading(page, "headYaw")) > 8);
    await page.screenshot({ path: join(work, "turned.png") });
  }));

await test("finds two persons as two, and keeps them apart while they cross", () =>
  withCamera(async ({ page }, served) => {
    await page.evaluate(() => window.cameraSeesAt("crossing", 0));
    await look(page, 12);
    assert.equal(await number(page, "faces"), 2);
    const persons = personsIn(await served.recording());
    assert.ok(persons.length >= 2 && persons.length <= 3, "the one of the beginning may be one of the two");
    const rate = await number(page, "rate");
    await page.screenshot({ path: join(work, "two.png") });
    const before = placesIn(await served.recording());
    const [left, right] = [before[0].person, before[1].person];
    const steps = 60; // so few pixels a frame as a camera sees of persons who walk past each other
    for (let i = 0; i <= steps; ++i) {
      await page.evaluate((time) => window.cameraSeesAt("crossing", time), (2.5 * Math.PI * i) / steps);
      await look(page, i === 0 ? 6 : 1);
    }
    await look(page, 8);
    const after = placesIn(await served.recording());
    assert.deepEqual([after[0].person, after[1].person], [right, left], "each person is on the other side, under the same number");
    assert.ok(after[1].x - after[0].x > 200, "the faces have crossed");
    assert.deepEqual(personsIn(await served.recording()), persons, "nobody else was seen");
    console.log(`        ${rate.toFixed(1)} frames a second with two faces`);
  }));

await test("sends no picture anywhere, and asks nobody else for anything", () =>
  withCamera(async ({ page, requests }) => {
    await look(page, 20);
    const sent = requests.filter((request) => request.method() === "POST");
    assert.ok(sent.length > 20);
    for (const request of sent) {
      assert.equal(new URL(request.url()).pathname, "/frame");
      const body = request.postData();
      assert.ok(body.length < 4000, `${body.length} bytes hold no picture`);
      const { page: name, ...numbers } = JSON.parse(body);
      assert.match(name, /^[-0-9a-f.]{1,40}$/);
      // Numbers and true or false only: no text could hold a picture.
      JSON.stringify(numbers, (_, value) => assert.notEqual(typeof value, "string") ?? value);
    }
    assert.match(await page.locator("#camera").innerText(), /No picture leaves this page/);
  }));

await test("shows frames a second, and how long an estimate takes", () =>
  withCamera(async ({ page }, served) => {
    const used = () => execFileSync("ps", ["-o", "times=", "-p", String(served.pid)]).toString().trim();
    await look(page, 30);
    const [rate, delay] = [await number(page, "rate"), await number(page, "delay")];
    const late = Number(await page.locator("#camera dl").getAttribute("data-late-delay"));
    console.log(`        ${rate.toFixed(1)} frames a second; from frame to estimate ${Math.round(delay)} ms, 99 %: ${Math.round(late)} ms; server: ${used()} s of processor time`);
    assert.ok(rate > 0 && delay > 0 && late >= delay);
  }));

await test("measures no frame without a face", async () => {
  const served = await serve("--camera");
  const prepare = async (page) => {
    await addFakeCamera(page, photograph);
    await page.addInitScript(() => window.cameraSees([]));
  };
  const { page } = await open(served, { prepare });
  await look(page, 6);
  assert.equal(await page.locator('#camera [data-camera="faces"]').count(), 1);
  assert.equal(await page.locator('#camera [data-camera="delay"]').count(), 0);
  await sees(page, [ahead]);
  await page.locator('#camera [data-camera="delay"]').waitFor();
  await page.context().close();
  assert.equal(await served.end(), 0);
});

await test("opens the licences by the keyboard", () =>
  withCamera(async ({ page }) => {
    const [opened] = await Promise.all([page.context().waitForEvent("page"), page.getByRole("link", { name: "licences" }).press("Enter")]);
    await opened.waitForURL(/LICENSES\.txt/);
    assert.equal(await page.locator("#forces [data-pinned]").count(), 0);
  }));

await test("looks at a camera in a browser that does not announce its pictures", async () => {
  const served = await serve("--camera");
  const prepare = async (page) => {
    await addFakeCamera(page, photograph);
    await page.addInitScript(() => delete HTMLVideoElement.prototype.requestVideoFrameCallback);
  };
  const { page, complaints } = await open(served, { prepare });
  await look(page, 4);
  assert.deepEqual(complaints, []);
  await page.context().close();
  assert.equal(await served.end(), 0);
});

await test("says that the camera was refused, and starts it again", async () => {
  const served = await serve("--camera");
  const prepare = async (page) => {
    await addFakeCamera(page, photograph);
    await page.addInitScript(() => {
      const given = navigator.mediaDevices.getUserMedia;
      let asked = 0;
      navigator.mediaDevices.getUserMedia = (wanted) =>
        ++asked === 1
          ? Promise.reject(new DOMException("no", "NotAllowedError"))
          : given(wanted).then((stream) => {
              window.streams = [...(window.streams ?? []), stream];
              return stream;
            });
    });
  };
  const { page } = await open(served, { prepare });
  await page.getByText("The camera was refused.").waitFor();
  await page.getByRole("button", { name: "Start the camera" }).click();
  await look(page, 2);
  await page.getByRole("button", { name: "Stop the camera" }).click();
  await page.getByRole("button", { name: "Start the camera" }).waitFor();
  const { all } = await frames(page);
  await pause(1500);
  assert.ok((await frames(page)).all <= all + 1, "nothing is looked at any more");

  const camera = (what) => page.getByRole("button", { name: `${what} the camera` });
  await camera("Start").click();
  await look(page, 1);
  await camera("Stop").click(); // while a picture is looked at
  await camera("Start").click();
  await camera("Stop").waitFor();
  await look(page, 3);
  assert.ok(await camera("Stop").isVisible(), "the run before does not end this one");
  const states = () => page.evaluate(() => window.streams.map((stream) => stream.getVideoTracks()[0].readyState));
  assert.deepEqual(await states(), ["ended", "ended", "live"]);
  await camera("Stop").click();
  assert.deepEqual(await states(), ["ended", "ended", "ended"]);
  await page.context().close();
  assert.equal(await served.end(), 0);
});

await test("takes the numbers of one page at a time", async () => {
  const served = await serve("--camera");
  const first = await open(served);
  await look(first.page, 2);
  const second = await open(served);
  await second.page.getByText("Another page sends already.").waitFor();
  assert.equal(await served.end(), 0);
  await first.page.context().close();
  await second.page.context().close();
});

/** Writes the photograph as raw video, which Chromium takes for the pictures of a camera. */
async function writeRawVideo(path) {
  const page = await browser.newPage();
  await addFakeCamera(page, photograph);
  await page.goto("data:text/html,<title>recorder</title>");
  const { width, height, pixels } = await page.evaluate(async () => {
    await window.cameraIsReady;
    const { width, height } = window.drawCamera(0);
    const { data } = window.drawCamera(0).getContext("2d").getImageData(0, 0, width, height);
    return { width, height, pixels: btoa(data.reduce((text, byte) => text + String.fromCharCode(byte), "")) };
  });
  await page.close();
  const rgba = Buffer.from(pixels, "base64");
  const frame = Buffer.alloc((width * height * 3) / 2);
  const [blues, reds] = [width * height, (width * height * 5) / 4];
  for (let y = 0; y < height; ++y)
    for (let x = 0; x < width; ++x) {
      const [r, g, b] = rgba.subarray(4 * (y * width + x));
      frame[y * width + x] = 16 + (66 * r + 129 * g + 25 * b) / 256;
      if (x % 2 === 1 || y % 2 === 1) continue;
      const at = ((y / 2) * width) / 2 + x / 2;
      frame[blues + at] = 128 + (-38 * r - 74 * g + 112 * b) / 256;
      frame[reds + at] = 128 + (112 * r - 94 * g - 18 * b) / 256;
    }
  const parts = Array.from({ length: 10 }, () => [Buffer.from("FRAME\n"), frame]).flat();
  writeFileSync(path, Buffer.concat([Buffer.from(`YUV4MPEG2 W${width} H${height} F10:1 Ip A1:1 C420mpeg2\n`), ...parts]));
}

await test("finds the face in the pictures of a device", async () => {
  const path = join(work, "device.y4m");
  await writeRawVideo(path);
  const device = await launch("--use-fake-ui-for-media-stream", "--use-fake-device-for-media-stream", `--use-file-for-fake-video-capture=${path}`);
  const served = await serve("--camera");
  const { page, complaints } = await open(served, { inBrowser: device, prepare: async () => {} });
  await look(page, 15);
  const { all, found } = await frames(page);
  console.log(`        found in ${found} of ${all} frames, the first two of which do not count`);
  assert.ok(found >= all - 3);
  assert.ok((await reading(page, "valence")) > 0.2);
  assert.deepEqual(complaints, []);
  await device.close();
  assert.equal(await served.end(), 0);
});

/** Records what the camera sees as a WebM video. */
async function recordVideo(path, seconds) {
  const page = await browser.newPage();
  await addFakeCamera(page, photograph);
  await page.goto("data:text/html,<title>recorder</title>").catch(() => {});
  const bytes = await page.evaluate(async (length) => {
    await window.cameraIsReady;
    const began = performance.now();
    window.cameraSees([{ x: 320, y: 200, scale: 1.3 }]);
    const stream = window.drawCamera(0).captureStream(20);
    const timer = setInterval(() => window.drawCamera((performance.now() - began) / 1000), 50);
    const recorder = new MediaRecorder(stream, { mimeType: "video/webm" });
    const parts = [];
    recorder.ondataavailable = ({ data }) => parts.push(data);
    const isOver = new Promise((over) => (recorder.onstop = over));
    recorder.start();
    await new Promise((passed) => setTimeout(passed, 1000 * length));
    recorder.stop();
    await isOver;
    clearInterval(timer);
    return [...new Uint8Array(await new Blob(parts).arrayBuffer())];
  }, seconds);
  await page.close();
  writeFileSync(path, Buffer.from(bytes));
}

await test("looks at a video, and saves what can be inspected and replayed", async () => {
  const video = join(work, "clip.webm");
  await recordVideo(video, 8); // a slow machine records the last seconds of it only
  const served = await serve("--video", video, "--fps", "10");
  const { page, complaints } = await open(served, { prepare: async () => {} });
  await page.getByText("The video has ended.").waitFor();
  const steps = await served.recording();
  assert.deepEqual(personsIn(steps), [1]);
  assert.equal(steps[0].dated, false);
  const seconds = (BigInt(Math.round(steps.at(-1).time / 1e6)) - BigInt(Math.round(steps[0].time / 1e6))) / 1000n;
  assert.ok(seconds >= 2n && seconds <= 9n, `${seconds} s`);
  const saved = join(work, "video.jsonl");
  writeFileSync(saved, await (await fetch(new URL(`/recording.jsonl${new URL(served.address).search}`, served.address))).text());
  assert.match(execFileSync(command, ["inspect", saved]).toString(), /person/i);
  const states = execFileSync(command, ["replay", saved, "--quiet", "--jsonl", "-"]).toString().trim().split("\n").map((line) => JSON.parse(line));
  const last = states.at(-1);
  assert.ok(last.valence > 0.2 && last.attention > 0.5, JSON.stringify(last));
  const shown = await reading(page, "valence");
  assert.equal(Math.fround(shown), Math.fround(last.valence), "a replay gives the same estimate");
  assert.equal(await page.getByRole("button", { name: "Start the video" }).count(), 0, "the session takes a video once");
  assert.deepEqual(complaints, []);
  await page.context().close();
  assert.equal(await served.end(), 0);
});

await test("stops a video, which then has not ended", async () => {
  const served = await serve("--video", join(work, "clip.webm"), "--fps", "60");
  const { page, complaints, requests } = await open(served, { prepare: async () => {} });
  await look(page, 2);
  await page.getByRole("button", { name: "Stop the video" }).click();
  await page.getByText("The video was stopped.").waitFor();
  const { all } = await frames(page);
  await pause(1500);
  assert.ok((await frames(page)).all <= all + 1, "nothing is looked at any more");
  assert.ok(await page.getByText("The video was stopped.").isVisible());
  assert.equal(await page.getByRole("button", { name: /the video/ }).count(), 0);
  const sent = requests.filter((request) => request.method() === "POST").map((request) => JSON.parse(request.postData()));
  assert.ok(sent.length > 1 && sent.every(({ ended }) => ended === undefined));
  assert.deepEqual(complaints, []);
  await page.context().close();
  assert.equal(await served.end(), 0);
});

await test("says that a video cannot be read on", async () => {
  const served = await serve("--video", join(work, "clip.webm"), "--fps", "10");
  const prepare = (page) =>
    page.addInitScript(() => {
      const { get, set } = Object.getOwnPropertyDescriptor(HTMLMediaElement.prototype, "currentTime");
      Object.defineProperty(HTMLMediaElement.prototype, "currentTime", {
        get,
        set(time) {
          if (time > 0.45 && time < 1e6) setTimeout(() => this.dispatchEvent(new Event("error")));
          else set.call(this, time);
        },
      });
    });
  const { page } = await open(served, { prepare });
  await page.getByText("The browser cannot read the rest of this video.").waitFor();
  assert.equal((await frames(page)).all, 5);
  await page.context().close();
  assert.equal(await served.end(), 0);
});

await test("says that a video cannot be played", async () => {
  const path = join(work, "novideo.mp4");
  writeFileSync(path, "no video");
  const served = await serve("--video", path);
  const { page } = await open(served, { prepare: async () => {} });
  await page.getByText("The browser cannot play this video.").waitFor();
  await page.context().close();
  assert.equal(await served.end(), 0);
});

/** Writes a file that begins as a model does. */
function writeModel(name, content) {
  const path = join(work, name);
  writeFileSync(path, Buffer.concat([Buffer.from([0x50, 0x4b, 3, 4]), Buffer.from(content)]));
  return path;
}

await test("says which model cannot be used", async () => {
  const served = await serve("--camera", "--model", writeModel("broken <b>.task", "this is no model".repeat(1000)));
  const { page, complaints, requests } = await open(served);
  await page.getByText("The model broken <b>.task cannot be used. It has to be the face_landmarker.task of MediaPipe.").waitFor();
  assert.ok(await page.getByText(/The reason: .*Unable to open zip archive/).isVisible());
  const asked = (name) => requests.some((request) => new URL(request.url()).pathname === `/camera/${name}`);
  assert.ok(asked("model") && asked("vision_wasm_internal.wasm"), "the program of MediaPipe was asked");
  assert.deepEqual(
    complaints.filter((complaint) => /asked for|Content Security Policy/.test(complaint)),
    [],
  );
  assert.equal((await frames(page)).all, 0);
  assert.deepEqual(
    requests.filter((request) => request.method() === "POST"),
    [],
  );
  assert.match(await page.locator("#camera").innerText(), /with the model broken <b>\.task/);
  assert.ok(await page.getByRole("button", { name: "Start the camera" }).isVisible());
  await page.context().close();
  assert.equal(await served.end(), 0);
});

/** Runs in the page in place of the program of MediaPipe, and finds the same face in each picture that is not empty. */
function standIn() {
  const points = Array.from({ length: 478 }, (_, i) => ({ x: 0.4 + (i % 3) * 0.1, y: 0.2 + (i % 2) * 0.5, z: 0 }));
  const put = (number, x, y) => (points[number] = { x: x / 640, y: y / 480, z: 0 });
  for (const [left, right, above, below, iris, middle] of [
    [33, 133, 159, 145, 468, 300],
    [362, 263, 386, 374, 473, 350],
  ]) {
    put(left, middle - 20, 200);
    put(right, middle + 20, 200);
    put(above, middle, 194);
    put(below, middle, 206);
    put(iris, middle + 5, 198); // looks to the right in the picture
  }
  const scores = { _neutral: 0, browDownLeft: 0, browDownRight: 0, jawOpen: 0, mouthLowerDownLeft: 0, mouthLowerDownRight: 0 };
  Object.assign(scores, { mouthSmileLeft: 0.8, mouthSmileRight: 0.8, eyeLookInLeft: 1, eyeLookOutRight: 1 });
  const categories = Object.entries(scores).map(([categoryName, score]) => ({ categoryName, score }));
  const face = {
    faceLandmarks: [points],
    faceBlendshapes: [{ categories }],
    facialTransformationMatrixes: [{ data: [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, -80, 1] }],
  };
  const nobody = { faceLandmarks: [], faceBlendshapes: [], facialTransformationMatrixes: [] };
  const isEmpty = (canvas) => canvas.getContext("2d").getImageData(0, 0, 1, 1).data[3] === 0;
  window.FaceLandmarker = {
    createFromOptions: async (_, { baseOptions }) => {
      window.model = new TextDecoder().decode(baseOptions.modelAssetBuffer.slice(4));
      return { detectForVideo: (canvas) => (isEmpty(canvas) ? nobody : face) };
    },
  };
}

await test("takes smile and expressions from the blendshapes of a model, and draws the gaze", async () => {
  const served = await serve("--camera", "--model", writeModel("face_landmarker.task", "a model"));
  const prepare = async (page) => {
    await addFakeCamera(page, photograph);
    await page.route("**/camera/tasks_vision.js*", (route) => route.fulfill({ contentType: "text/javascript", body: `(${standIn})()` }));
    await page.addInitScript(() => {
      const { arc } = CanvasRenderingContext2D.prototype;
      CanvasRenderingContext2D.prototype.arc = function (...given) {
        if (this.canvas.closest("#camera")) window.arrows = (window.arrows ?? 0) + 1; // a dot at the begin of each arrow
        return arc.apply(this, given);
      };
    });
  };
  const { page, complaints, requests } = await open(served, { prepare });
  await look(page, 20);
  assert.equal(await page.evaluate(() => window.model), "a model");
  assert.ok((await page.evaluate(() => window.arrows)) > 5, "the gaze is drawn");
  assert.ok((await reading(page, "smile")) > 0.5);
  const steps = (await served.recording()).flatMap(({ observation }) => observation ?? []);
  const smiles = steps.flatMap(({ smile }) => smile ?? []);
  assert.ok(smiles.length > 5 && smiles.every(({ confidence }) => Math.abs(confidence - 0.9) < 1e-3));
  assert.ok(steps.flatMap(({ expressions }) => expressions?.joy ?? []).every(({ value }) => value > 0.5));
  const gazes = steps.flatMap(({ gaze }) => gaze ?? []);
  assert.ok(gazes.length > 3 && gazes.every(({ yaw }) => yaw > 10 && yaw < 30), "by the irises; the scores of the eyes say 30° to the other side");
  const asked = requests.map((request) => new URL(request.url()).pathname);
  assert.deepEqual(
    asked.filter((path) => /face_mesh|face_expression|tfjs/.test(path)),
    [],
    "the built-in models are not loaded",
  );
  assert.match(await page.locator("#camera").innerText(), /with the model face_landmarker\.task/);
  assert.deepEqual(complaints, []);
  await page.context().close();
  assert.equal(await served.end(), 0);
});

await browser.close();
finish();
