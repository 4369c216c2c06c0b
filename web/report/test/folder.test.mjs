// Opens the index of the reports of a folder in a real browser.
//
// usage: node folder.test.mjs CHROMIUM SKEIGIOT WORK
//   Makes a folder of recordings and one of their reports in the folder WORK, and leaves pictures of the index there.

import { chromium } from "playwright-core";
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { mkdirSync, rmSync, writeFileSync } from "node:fs";
import { join, resolve } from "node:path";
import { pathToFileURL } from "node:url";
import { finish, test } from "./cases.mjs";

const [browserPath, command, workPath] = process.argv.slice(2);
assert.ok(workPath, "usage: node folder.test.mjs CHROMIUM SKEIGIOT WORK");
const work = resolve(workPath);
const recordings = join(work, "folder");
const pages = join(work, "folder-pages");
for (const folder of [recordings, pages]) rmSync(folder, { recursive: true, force: true });
mkdirSync(recordings, { recursive: true });

/** A second of readings of each person, 10 times a second. */
function table(persons, readings) {
  const lines = ["time,person,reading,value,yaw,pitch"];
  for (let i = 0; i <= 10; ++i)
    for (const person of persons) for (const reading of readings) lines.push(`${i / 10},${person},${reading}`);
  return lines.join("\n") + "\n";
}

writeFileSync(join(recordings, "both #1.csv"), table(["anna", "ben"], ["touchEmotion,1,,", "gaze,,0,0"]));
writeFileSync(join(recordings, "gaze.csv"), table([3], ["gaze,,0,0"]));
writeFileSync(join(recordings, "other.csv"), "time,reading\n");
const made = spawnSync(command, ["report", recordings, "-o", pages], { encoding: "utf8" });
assert.equal(made.status, 2, "other.csv cannot be read");

const browser = await chromium.launch({ executablePath: browserPath, args: ["--no-sandbox"] });

async function open({ width = 1280, colorScheme = "light" } = {}) {
  const page = await browser.newPage({ viewport: { width, height: 700 }, colorScheme });
  const complaints = [];
  page.on("console", (message) => ["error", "warning"].includes(message.type()) && complaints.push(message.text()));
  page.on("pageerror", (error) => complaints.push(error.message));
  await page.goto(pathToFileURL(join(pages, "index.html")).href);
  await page.locator(".folder table").waitFor();
  return { page, complaints };
}

await test("the index has a line for each person of each recording", async () => {
  const { page, complaints } = await open();
  assert.equal(await page.title(), "3 recordings");
  const rows = await page.locator(".folder tbody tr").allInnerTexts();
  assert.equal(rows.length, 4);
  assert.match(rows[0], /both #1\.csv[^]*0:01\.0[^]*anna \(0\)[^]*100 %[^]*\+\d\.\d\d[^]*\d\.\d\d[^]*positive/);
  assert.match(rows[1], /ben \(1\)/);
  assert.match(rows[2], /gaze\.csv[^]*Person 3[^]*no data[^]*unknown[^]*\d\.\d\d[^]*unknown/);
  assert.match(rows[3], /other\.csv[^]*not read/);
  assert.match(await page.locator(".folder .note").filter({ hasText: "other.csv" }).innerText(), /other\.csv:/);
  assert.deepEqual(complaints, []);
  await page.close();
});

await test("a small picture goes over the whole recording", async () => {
  const { page } = await open();
  const picture = page.locator(".folder tbody tr").first().locator("svg").first();
  assert.match(await picture.getAttribute("aria-label"), /^Valence of anna \(0\): \+\d\.\d\d on average$/);
  const box = await picture.locator("path").evaluate((path) => {
    const { x, width } = path.getBBox();
    return { x, width };
  });
  assert.ok(box.x < 10 && box.x + box.width > 170, `the curve goes from ${box.x} for ${box.width}`);
  await page.close();
});

await test("a line leads to the report of its recording", async () => {
  const { page, complaints } = await open();
  await page.getByRole("link", { name: "both #1.csv" }).click();
  await page.locator("#readout [data-moment]").waitFor();
  assert.match(page.url(), /both%20%231\.csv\.html$/);
  assert.deepEqual(complaints, []);
  await page.close();
});

for (const colorScheme of ["light", "dark"])
  for (const width of [1280, 390])
    await test(`the index fits ${width} pixels, ${colorScheme}`, async () => {
      const { page } = await open({ width, colorScheme });
      const needed = await page.evaluate(() => document.documentElement.scrollWidth);
      assert.ok(needed <= width, `needs ${needed}`);
      await page.screenshot({ path: join(work, `folder-${colorScheme}-${width}.png`), fullPage: true });
      await page.close();
    });

await browser.close();
finish();
