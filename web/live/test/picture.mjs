// Takes the picture of the live page that the documentation shows: 40 seconds of a recording have been played.
//
// usage: node picture.mjs CHROMIUM SKEIGIOT RECORDING PICTURE

import { chromium } from "playwright-core";
import { spawn } from "node:child_process";
import { createInterface } from "node:readline";

const [executablePath, command, recording, picture] = process.argv.slice(2);
const served = spawn(command, ["serve", "--no-open", recording, "--speed", "10"], { stdio: ["ignore", "pipe", "ignore"] });
const address = await new Promise((found) => createInterface(served.stdout).once("line", found));
const browser = await chromium.launch({ executablePath, args: ["--no-sandbox"] });
const page = await browser.newPage({ viewport: { width: 1280, height: 900 } });
await page.goto(address);
await page.waitForFunction(() => Number(document.querySelector('#readout [data-key="time"]')?.dataset.value) > 40);
const plot = await page.locator("#estimates .u-over").first().boundingBox();
await page.mouse.click(plot.x + 0.8 * plot.width, plot.y + plot.height / 2);
await page.screenshot({ path: picture });
await browser.close();
served.kill("SIGINT");
