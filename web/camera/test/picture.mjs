// Takes the picture of the live page with a camera that the documentation shows. The camera sees a photograph.
//
// usage: node picture.mjs CHROMIUM SKEIGIOT PHOTOGRAPH PICTURE

import { chromium } from "playwright-core";
import { spawn } from "node:child_process";
import { createInterface } from "node:readline";
import { addFakeCamera } from "./fakecamera.mjs";

const [executablePath, command, photograph, picture] = process.argv.slice(2);
const served = spawn(command, ["serve", "--no-open", "--camera"], { stdio: ["ignore", "pipe", "ignore"] });
const address = await new Promise((found) => createInterface(served.stdout).once("line", found));
const browser = await chromium.launch({ executablePath, args: ["--no-sandbox"] });
const page = await browser.newPage({ viewport: { width: 1280, height: 1000 }, permissions: ["camera"] });
await addFakeCamera(page, photograph);
await page.goto(address);
const isPast = (frames) => page.waitForFunction((until) => Number(document.querySelector("#camera dl")?.dataset.frames) > until, frames, { timeout: 120_000 });
await isPast(3);
await page.evaluate(() => window.cameraFollows("talking"));
await page.waitForTimeout(24_000);
await page.screenshot({ path: picture });
await browser.close();
served.kill("SIGINT");
