// A camera for tests: the pictures are drawn of a photograph of a smiling woman, who is moved, turned and doubled.

import { readFileSync } from "node:fs";

/** Runs in the page, before its own scripts. */
function inPage(photograph) {
  const image = new Image();
  const isLoaded = new Promise((loaded) => (image.onload = loaded));
  image.src = photograph;
  const canvas = document.createElement("canvas");
  canvas.width = 640;
  canvas.height = 480;
  const context = canvas.getContext("2d", { willReadFrequently: true });
  /** The part of the photograph with the head, and the middle of the face in it. */
  const head = { x: 100, y: 0, width: 250, height: 260, middle: 124 };

  /** Draws the head turned about its vertical axis, as if it were a cylinder. */
  function drawHead({ x, y, scale = 1, turn = 0, blur = 0 }) {
    const angle = (turn * Math.PI) / 180;
    const radius = 105;
    context.filter = blur > 0 ? `blur(${blur}px)` : "none";
    if (turn === 0) {
      context.drawImage(image, head.x, head.y, head.width, head.height, x - head.middle * scale, y - 120 * scale, head.width * scale, head.height * scale);
      return;
    }
    for (let to = -radius; to < radius; to += 1) {
      const source = radius * Math.sin(Math.asin(to / radius) - angle);
      if (Math.abs(Math.asin(to / radius) - angle) > Math.PI / 2) continue;
      context.drawImage(image, head.x + head.middle + source, head.y, 1.5, head.height, x + to * scale, y - 120 * scale, scale + 0.5, head.height * scale);
    }
  }

  let heads = [{ x: 320, y: 200, scale: 1.3 }];
  /** Sets the heads that the camera sees, or a function of time that returns them. */
  window.cameraSees = (seen) => (heads = seen);
  let began = performance.now();
  const movements = {
    across: (time) => {
      const phase = Math.min(time, 2 * Math.PI);
      return [{ x: 320 + 90 * Math.sin(phase), y: 200 + 30 * Math.sin(2 * phase), scale: 1.3, blur: phase > 5 ? 2 : 0 }];
    },
    away: (time) => [{ x: 320, y: 200, scale: 1.3 - 0.65 * Math.min(time / 4, 1) }],
    talking: (time) => [
      { x: 190, y: 190, scale: 1.15, turn: 35 * Math.sin(time / 3) },
      { x: 460, y: 215, scale: 1.1, turn: 35 * Math.cos(time / 4) },
    ],
    /** Two heads, one above the other when they meet: no face hides the other, however slow the machine is. */
    crossing: (time) => {
      const aside = 190 * Math.cos(Math.min(time / 2.5, Math.PI));
      return [
        { x: 320 - aside, y: 112, scale: 0.9 },
        { x: 320 + aside, y: 358, scale: 0.85 },
      ];
    },
  };
  /** Lets the heads move from now on. */
  window.cameraFollows = (text) => {
    began = performance.now();
    heads = movements[text];
  };
  /** Lets the camera see the heads as they are at a time of a movement [s]. */
  window.cameraSeesAt = (movement, time) => (heads = movements[movement](time));
  window.drawCamera = (time) => {
    context.filter = "none";
    context.fillStyle = "#70767a";
    context.fillRect(0, 0, canvas.width, canvas.height);
    for (const one of typeof heads === "function" ? heads(time) : heads) drawHead(one);
    return canvas;
  };
  window.cameraIsReady = isLoaded;
  navigator.mediaDevices.getUserMedia = async () => {
    await isLoaded;
    const draw = () => window.drawCamera((performance.now() - began) / 1000);
    draw();
    setInterval(draw, 33);
    return canvas.captureStream(30);
  };
}

/** Gives the page a camera that sees the person in the photograph. */
export async function addFakeCamera(page, path) {
  const photograph = `data:image/png;base64,${readFileSync(path).toString("base64")}`;
  await page.addInitScript(inPage, photograph);
}
