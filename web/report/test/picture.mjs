// Takes the picture of a report that the documentation shows.
//
// usage: node picture.mjs CHROMIUM REPORT PICTURE

import { chromium } from "playwright-core";
import { resolve } from "node:path";
import { pathToFileURL } from "node:url";

const [executablePath, report, picture] = process.argv.slice(2);
const browser = await chromium.launch({ executablePath, args: ["--no-sandbox"] });
const page = await browser.newPage({ viewport: { width: 1280, height: 1000 } });
await page.goto(pathToFileURL(resolve(report)).href);
const plot = await page.locator("#estimates .u-over").first().boundingBox();
await page.mouse.move(plot.x + 0.55 * plot.width, plot.y + plot.height / 2);
await page.keyboard.press("Enter");
await page.screenshot({ path: picture });
await browser.close();
