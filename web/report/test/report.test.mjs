// Opens reports in a real browser.
//
// usage: node report.test.mjs CHROMIUM SKEIGIOT WORK RECORDING...
//   Makes a report of each recording in the folder WORK, and leaves pictures of it there. The values of moments on the page
//   have to agree with the exports of the command.

import { chromium } from "playwright-core";
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { basename, join, resolve } from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";
import { finish, test } from "./cases.mjs";

const [browserPath, command, workPath, ...recordings] = process.argv.slice(2);
assert.ok(recordings.length > 0, "usage: node report.test.mjs CHROMIUM SKEIGIOT WORK RECORDING...");
const work = resolve(workPath);
mkdirSync(work, { recursive: true });

const browser = await chromium.launch({ executablePath: browserPath, args: ["--no-sandbox"] });

function makeReport(recording, ...options) {
  const file = join(work, `${basename(recording).replace(/\..*/, "")}.html`);
  execFileSync(command, ["report", recording, "-o", file, ...options]);
  return pathToFileURL(file).href;
}

/** Returns the exported updates of the recording, by person and time. */
function exported(recording) {
  const text = execFileSync(command, ["replay", recording, "--quiet", "--csv", "-"], { maxBuffer: 1 << 30 }).toString();
  const [header, ...lines] = text.trim().split("\n").map((line) => line.split(","));
  return lines.map((line) => Object.fromEntries(header.map((name, column) => [name, line[column]])));
}

/** Opens the page; each of its complaints is an error, and so is every request except the one for itself. */
async function open(url, { width = 1280, colorScheme = "light", video = "" } = {}) {
  const page = await browser.newPage({ viewport: { width, height: 900 }, colorScheme });
  const complaints = [];
  page.on("console", (message) => ["error", "warning"].includes(message.type()) && complaints.push(message.text()));
  page.on("pageerror", (error) => complaints.push(error.message));
  page.on("request", (request) => {
    const isItself = request.url() === url || /^(blob|data):/.test(request.url());
    const isVideo = request.url().startsWith("file:") && fileURLToPath(request.url()) === video;
    if (!isItself && !isVideo) complaints.push(`asked for ${request.url()}`);
  });
  await page.goto(url);
  await page.locator("#readout [data-moment]").waitFor();
  return { page, complaints };
}

/** Makes a recording of this number of persons, who come and go; returns its file. */
function crowd(count) {
  const file = join(work, `crowd${count}.jsonl`);
  const lines = [];
  for (let tick = 0; tick < 600; ++tick)
    for (let person = 1; person <= count; ++person) {
      const from = (37 * person) % 400;
      if (tick < from || tick > from + 3 + ((53 * person) % 300)) continue;
      const joy = 0.5 + 0.5 * Math.sin(tick / 40 + person);
      const shares = { joy, sorrow: 1 - joy, anger: 0, surprise: 0, calm: 0 };
      const expressions = Object.fromEntries(
        Object.entries(shares).map(([name, value]) => [name, { value, confidence: 0.8 }]),
      );
      const headPosture = { yaw: 50 * Math.sin(tick / 60 + 2 * person), pitch: 0, roll: 0 };
      const rest = JSON.stringify({ person, observation: { expressions, headPosture } }).slice(1);
      lines.push(`{"time":${1577836800000000000n + BigInt(tick) * 100000000n},${rest}`);
    }
  writeFileSync(file, lines.join("\n") + "\n");
  return file;
}

const exact = (page, key) => page.locator(`#readout [data-key="${key}"]`).getAttribute("data-value").then(Number);
const words = (page, key) => page.locator(`#readout [data-key="${key}"]`).innerText();

async function plotBox(page) {
  return page.locator("#estimates .u-over").first().boundingBox();
}

async function hover(page, share) {
  const box = await plotBox(page);
  await page.mouse.move(box.x + share * box.width, box.y + box.height / 2);
}

function updateAt(updates, person, time) {
  const found = updates.find((update) => Number(update.person) === person && Math.abs(Number(update.time) - time) < 1e-6);
  assert.ok(found, `there is no update of person ${person} at ${time}`);
  return found;
}

async function expectValuesOf(page, update) {
  for (const [key, column] of [
    ["valence", "valence"],
    ["valenceConfidence", "valence_confidence"],
    ["attention", "attention"],
    ["attentionConfidence", "attention_confidence"],
  ])
    assert.equal(await exact(page, key), Math.fround(Number(update[column])), column);
  assert.equal(await words(page, "pleasure"), update.pleasure);
  const zone = await words(page, "zone");
  if (update.seen === "0") assert.equal(zone, "not visible");
  else if (update.zone === "LookingAtRobot") assert.equal(zone, "at the robot");
  else if (update.zone === "Unknown") assert.equal(zone, "no zone");
  else assert.equal("Looking" + zone.replace(/(^| )(.)/g, (all, blank, letter) => letter.toUpperCase()), update.zone);
}

async function selectedPerson(page) {
  return Number(await page.locator('#persons [aria-selected="true"]').getAttribute("data-person"));
}

async function expectValuesAreThoseOfTheExport(url, recording) {
  const updates = exported(recording);
  const { page } = await open(url);
  const tabs = await page.locator('#persons [role="tab"]').count();
  for (let tab = 1; tab <= tabs; ++tab) {
    await page.keyboard.press(String(tab));
    const person = await selectedPerson(page);
    const times = new Set();
    for (const share of [0.05, 0.31, 0.5, 0.72, 0.97]) {
      await hover(page, share);
      const time = await exact(page, "time");
      times.add(time);
      await expectValuesOf(page, updateAt(updates, person, time));
    }
    assert.ok(times.size > 1, "the moment follows the mouse");
  }
  await page.close();
}

async function expectKeysMoveTheMoment(url) {
  const { page } = await open(url);
  await page.keyboard.press("Home");
  const first = await exact(page, "time");
  await page.keyboard.press("ArrowRight");
  const second = await exact(page, "time");
  assert.ok(second > first);
  await page.keyboard.press("ArrowLeft");
  assert.equal(await exact(page, "time"), first);
  await page.keyboard.press("Shift+ArrowRight");
  assert.ok((await exact(page, "time")) >= first + 0.9);
  await page.keyboard.press("End");
  assert.ok((await exact(page, "time")) > second);
  await page.close();
}

/** Returns the forces that the page lists for the pinned moment. */
function pinnedForces(page) {
  return page.locator("#pinned tbody tr").evaluateAll((rows) =>
    rows.map((row) => {
      const number = (key) => Number(row.querySelector(`[data-key="${key}"]`).dataset.value);
      return {
        source: row.querySelector("[data-source]").dataset.source,
        sourceName: row.querySelector("[data-source]").childNodes[1].textContent,
        quantity: row.querySelector("small").innerText,
        target: number("target"),
        weight: number("weight"),
        before: number("before"),
        after: number("after"),
      };
    }),
  );
}

/** Returns the forces of the update in the output of `skeigiot why`. */
function explained(recording, person, time) {
  const text = execFileSync(command, ["why", recording, "--person", String(person), "--at", String(time), "--json"]);
  return JSON.parse(text).forces.map(({ source, sourceName, quantity, target, weight, before, after }) => ({
    source,
    sourceName,
    quantity,
    target: Math.fround(target),
    weight: Math.fround(weight),
    before: Math.fround(before),
    after: Math.fround(after),
  }));
}

async function expectPinnedForcesAreThoseOfWhy(url, recording) {
  const { page } = await open(url);
  assert.equal((await pinnedForces(page)).length, 0);
  for (const share of [0.2, 0.6, 0.95]) {
    await hover(page, share);
    await page.keyboard.press("Enter");
    const forces = await pinnedForces(page);
    assert.ok(forces.length > 1, "forces are listed");
    assert.deepEqual(forces, explained(recording, await selectedPerson(page), await exact(page, "time")));
  }
  await page.keyboard.press("Escape");
  assert.equal((await pinnedForces(page)).length, 0);
  const box = await plotBox(page);
  await page.mouse.click(box.x + 0.4 * box.width, box.y + 20);
  assert.ok((await pinnedForces(page)).length > 1, "a click pins as well");
  await page.close();
}

async function expectPersonsCanBeSwitchedByKeyboard(url) {
  const { page } = await open(url);
  const first = await selectedPerson(page);
  await page.keyboard.press("2");
  const second = await selectedPerson(page);
  assert.notEqual(second, first);
  await page.locator('#persons [aria-selected="true"]').focus();
  await page.keyboard.press("ArrowLeft");
  assert.equal(await selectedPerson(page), first);
  await page.keyboard.press("ArrowRight");
  assert.equal(await selectedPerson(page), second);
  assert.match(await page.locator("#readout").innerText(), new RegExp(`Person ${second}`));
  await page.close();
}

/** Returns the time, on the axis, of each cursor and of each dot on a line. */
function cursorTimes(page, length) {
  return page.locator(".u-over").evaluateAll(
    (plots, length) =>
      plots.flatMap((plot) => {
        const box = plot.getBoundingClientRect();
        const timeAt = (node, middle) => ((middle(node.getBoundingClientRect()) - box.left) / box.width) * length;
        const cursor = plot.querySelector(".u-cursor-x");
        const dots = [...plot.querySelectorAll(".u-cursor-pt")].filter((dot) => dot.getBoundingClientRect().width > 0);
        return [
          timeAt(cursor, ({ left }) => left),
          ...dots.map((dot) => timeAt(dot, ({ left, right }) => (left + right) / 2)),
        ];
      }),
    length,
  );
}

async function expectCursorStaysAtItsTime(url, length) {
  const { page } = await open(url);
  await hover(page, 0.55);
  await page.mouse.move(0, 0);
  const time = await exact(page, "time");
  for (const width of [1280, 700, 1000, 390, 1280]) {
    await page.setViewportSize({ width, height: 900 });
    await page.waitForTimeout(100); // until the layout of the page is done
    const { width: wide } = await plotBox(page);
    const tolerance = (3 / wide) * length; // some pixels
    for (const found of await cursorTimes(page, length))
      assert.ok(Math.abs(found - time) < tolerance, `${width} px wide: ${found} s instead of ${time} s`);
    assert.equal(await exact(page, "time"), time);
  }
  await page.close();
}

/** Returns the time of the update that changed a known estimate of the person most. */
function timeOfGreatestChange(recording, person) {
  let before;
  let greatest = { distance: -1, time: 0 };
  for (const update of exported(recording).filter((one) => Number(one.person) === person)) {
    const distances = ["valence", "attention"]
      .filter((name) => Number(before?.[`${name}_confidence`]) > 0)
      .map((name) => Math.abs(Number(update[name]) - Number(before[name])));
    const distance = Math.max(0, ...distances);
    if (distance > greatest.distance) greatest = { distance, time: Number(update.time) };
    before = update;
  }
  return greatest.time;
}

async function expectForcesReadWell(url) {
  const { page } = await open(url);
  let unsmoothed = 0;
  for (const share of [0.1, 0.3, 0.5, 0.7, 0.9]) {
    await hover(page, share);
    await page.keyboard.press("Enter");
    const shown = await page.locator("#pinned tbody tr").evaluateAll((rows) =>
      rows.map((row) => ({
        quantity: row.querySelector("small").textContent,
        isShown: row.getClientRects().length > 0,
        before: row.querySelector('[data-key="before"]').textContent,
        after: row.querySelector('[data-key="after"]').textContent,
      })),
    );
    for (const { quantity, isShown, before, after } of shown) {
      assert.notEqual(before, after, "no force moves from a number to the same");
      assert.equal(isShown, unsmoothed > 1 || !quantity.startsWith("unsmoothed"), quantity);
    }
    for (const said of await page.locator("#pinned .sentence").allInnerTexts())
      assert.doesNotMatch(said, /from ([−+0-9.]+) to \1\b/);
    // Unfolded for the moments after the second one.
    if (++unsmoothed === 2) await page.locator("#unsmoothed").check();
  }
  assert.match(await page.locator("#pinned .fold").innerText(), /also the \d+ rows? of the unsmoothed valence/);
  await page.close();
}

/** Returns a picture of the swatch of each source in the legends. */
async function swatches(url) {
  const { page } = await open(url);
  const found = await page.locator(".legend li:has(.swatch)").evaluateAll((items) =>
    items.map((item) => [item.textContent, item.querySelector("canvas").toDataURL()]),
  );
  await page.close();
  return new Map(found);
}

/** Returns the colours, as "#rrggbb", that a canvas has. */
function colorsOf(canvas) {
  return canvas.evaluate((drawn) => {
    const { data } = drawn.getContext("2d").getImageData(0, 0, drawn.width, drawn.height);
    const found = new Set();
    for (let i = 0; i < data.length; i += 4)
      found.add("#" + [...data.slice(i, i + 3)].map((byte) => byte.toString(16).padStart(2, "0")).join(""));
    return [...found];
  });
}

const cssColor = (page, name) =>
  page.evaluate((name) => getComputedStyle(document.documentElement).getPropertyValue(`--${name}`).trim(), name);

/** Prints the page; returns how many pages of paper it takes, and leaves them in a file. */
async function printed(page, name) {
  const pdf = await page.pdf({ path: join(work, `${name}.pdf`), format: "A4", preferCSSPageSize: true });
  return pdf.toString("latin1").match(/\/Type \/Page\b/g).length;
}

/** A part that must not be divided has to fit on a page. */
async function expectChartsFitOnPaper(page) {
  await page.setViewportSize({ width: 703, height: 1032 }); // A4 without margins
  await page.emulateMedia({ media: "print" });
  await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
  const heights = await page
    .locator(".card:not(.long), .block")
    .evaluateAll((blocks) => blocks.map((block) => block.getBoundingClientRect().height));
  assert.ok(heights.length > 5);
  for (const height of heights) assert.ok(height <= 1032, `${height} px`);
  const wide = await page.evaluate(() => document.documentElement.scrollWidth);
  assert.ok(wide <= 703, `${wide} px wide`);
}

async function takePictures(url, name) {
  for (const colorScheme of ["light", "dark"])
    for (const width of [1280, 390]) {
      const { page, complaints } = await open(url, { width, colorScheme });
      await hover(page, 0.55);
      await page.keyboard.press("Enter");
      const wide = await page.evaluate(() => document.documentElement.scrollWidth - innerWidth);
      await page.screenshot({ path: join(work, `${name}-${colorScheme}-${width}.png`) });
      await page.screenshot({ path: join(work, `${name}-${colorScheme}-${width}-whole.png`), fullPage: true });
      assert.deepEqual(complaints, []);
      assert.ok(wide <= 0, `${width} px wide: the page is ${wide} px wider`);
      await page.close();
    }
}

for (const recording of recordings) {
  const name = basename(recording).replace(/\..*/, "");
  const url = makeReport(recording);
  await test(`${name}: opens without a complaint, light and dark, wide and narrow`, () => takePictures(url, name));
  await test(`${name}: the values of a moment are those of the export`, () =>
    expectValuesAreThoseOfTheExport(url, recording));
  await test(`${name}: keys move the moment`, () => expectKeysMoveTheMoment(url));
  await test(`${name}: the forces of a pinned moment are those that "why" tells`, () =>
    expectPinnedForcesAreThoseOfWhy(url, recording));
}

await test("the cursor stays at its time when the window is resized", () =>
  expectCursorStaysAtItsTime(makeReport(recordings[0]), 60));

await test("the cursor begins at the greatest change", async () => {
  const { page } = await open(makeReport(recordings[0]));
  const expected = timeOfGreatestChange(recordings[0], await selectedPerson(page));
  assert.ok(Math.abs((await exact(page, "time")) - expected) < 1e-6);
  await page.close();
});

await test("a force's row says where it moved from and to, and rows of the unsmoothed valence are folded", () =>
  expectForcesReadWell(makeReport(recordings[0])));

await test("attention is a number from 0 to 1", async () => {
  const { page } = await open(makeReport(recordings[0]));
  assert.match(await words(page, "attention"), /^[01]\.\d\d$/);
  assert.match(await page.locator("#estimates .facts").innerText(), /mean attention\s+[01]\.\d\d/);
  assert.doesNotMatch(await page.locator("#readout").innerText(), /%/);
  await page.close();
});

await test("a source has the same colour in every recording", async () => {
  const [one, other] = [await swatches(makeReport(recordings[0])), await swatches(makeReport(crowd(30)))];
  const common = [...one.keys()].filter((source) => other.has(source));
  assert.ok(common.length >= 3, String(common));
  for (const source of common) assert.equal(one.get(source), other.get(source), source);
  assert.equal(new Set(one.values()).size, one.size, "sources look different");
});

await test("thirty persons have tabs that can be used", async () => {
  const url = makeReport(crowd(30));
  for (const width of [1280, 390]) {
    const { page, complaints } = await open(url, { width });
    assert.equal(await page.locator('#persons [role="tab"]').count(), 30);
    const tabs = page.locator("#persons");
    assert.ok((await tabs.boundingBox()).height < 160, "the tabs leave room for the charts");
    await page.keyboard.type("25");
    assert.equal(await selectedPerson(page), 25);
    const selected = await page.locator('#persons [aria-selected="true"]').boundingBox();
    const box = await tabs.boundingBox();
    assert.ok(selected.x >= box.x - 1 && selected.x + selected.width <= box.x + box.width + 1, "in view, across");
    assert.ok(selected.y >= box.y - 1 && selected.y + selected.height <= box.y + box.height + 1, "in view, down");
    await page.locator('#persons [aria-selected="true"]').focus();
    await page.keyboard.press("End");
    assert.equal(await selectedPerson(page), 30);
    await page.keyboard.press("ArrowRight");
    assert.equal(await selectedPerson(page), 1);
    await page.locator('#comparison [data-row="17"] button').click();
    assert.equal(await selectedPerson(page), 17);
    assert.equal(await page.locator("#comparison [data-row]").count(), 30);
    await page.screenshot({ path: join(work, `crowd-${width}-whole.png`), fullPage: true });
    const wide = await page.evaluate(() => document.documentElement.scrollWidth - innerWidth);
    assert.ok(wide <= 0, `${width} px wide: the page is ${wide} px wider`);
    assert.deepEqual(complaints, []);
    await page.close();
  }
});

await test("persons are compared on one axis", async () => {
  const { page } = await open(makeReport(recordings[0]));
  const colors = await colorsOf(page.locator("#comparison canvas").first());
  for (const name of ["source-0", "source-1"]) assert.ok(colors.includes(await cssColor(page, name)), "a line of each");
  assert.match(await page.locator("#comparison").innerText(), /Person 1[\s\S]*Person 2/);
  await page.close();
});

/** Makes a report of the first recording with labels of two coders about person 1, of which some mean no state. */
function labelledReport(name) {
  const anna = join(work, "anna.csv");
  const ben = join(work, "ben.csv");
  writeFileSync(anna, "start,end,value,person\n0,20,smiling,1\n20,40,positive,2\n30,40,negative,1\n12,13,waving,1\n");
  writeFileSync(ben, "time,valence,person\n0,0,1\n20,0.5,1\n40,-0.5,1\n60,1,1\n");
  const options = ["--labels", anna, "--labels", ben, "--label", "smiling=positive"];
  const file = join(work, `${name}.html`);
  execFileSync(command, ["report", recordings[0], "-o", file, ...options]);
  return pathToFileURL(file).href;
}

await test("labels of coders are ribbons and lines beside the estimate", async () => {
  const { page, complaints } = await open(labelledReport("labelled"));
  assert.match(await page.locator("#coders").innerText(), /anna: pleasure, labels\./);
  const estimates = page.locator("#estimates canvas:not(.stroke)");
  assert.equal(await estimates.count(), 4, "valence, attention, states, coders");
  assert.ok((await colorsOf(estimates.nth(0))).includes(await cssColor(page, "source-3")), "ben's valence");
  assert.ok(!(await colorsOf(estimates.nth(1))).includes(await cssColor(page, "source-3")), "and no attention");
  const lanes = await colorsOf(estimates.nth(3));
  for (const name of ["positive", "negative", "scope"]) assert.ok(lanes.includes(await cssColor(page, name)), name);

  await hover(page, 12.5 / 60);
  const said = () => page.locator("#readout .coders").innerText();
  assert.match(await said(), /anna, pleasure\s+positive\s+anna, labels\s+waving\s+ben, valence\s+\+0\.31/);
  await hover(page, 35 / 60);
  assert.match(await said(), /anna, pleasure\s+negative\s+ben, valence\s+−0\.2/);
  await page.screenshot({ path: join(work, "labelled-whole.png"), fullPage: true });
  await page.keyboard.press("2");
  assert.match(await page.locator("#coders").innerText(), /anna: pleasure\./);
  assert.deepEqual(complaints, []);
  await page.close();
});

/** Presses "Save KIND" in that card; returns the file's name and content. */
async function saved(page, figure, kind) {
  const button = page.locator(`[data-figure="${figure}"] .save button`, { hasText: `Save ${kind}` });
  const [download] = await Promise.all([page.waitForEvent("download"), button.click()]);
  const file = join(work, `saved-${download.suggestedFilename()}`);
  await download.saveAs(file);
  return { name: download.suggestedFilename(), bytes: readFileSync(file) };
}

/** Drags over a chart, from one share of its width to another. */
async function zoom(page, from, to) {
  await page.evaluate(() => scrollTo(0, 0));
  const box = await plotBox(page);
  await page.mouse.move(box.x + from * box.width, box.y + 30);
  await page.mouse.down();
  await page.mouse.move(box.x + to * box.width, box.y + 30, { steps: 5 });
  await page.mouse.up();
}

const figures = ["estimates", "comparison", "inputs", "valence-pulls", "attention-pulls", "room"];

/** Opens the SVG as a document of its own; returns its texts. */
async function textsOfSvg(bytes) {
  const page = await browser.newPage({ viewport: { width: 720, height: 900 } });
  await page.setContent("<!doctype html>");
  const texts = await page.evaluate((text) => {
    const parsed = new DOMParser().parseFromString(text, "image/svg+xml");
    if (parsed.querySelector("parsererror")) throw new Error(parsed.querySelector("parsererror").textContent);
    document.body.append(document.importNode(parsed.documentElement, true));
    return [...document.querySelectorAll("svg text")].map((node) => node.textContent);
  }, bytes.toString());
  await page.close();
  return texts;
}

await test("what is shown is saved as SVG, with file, person and options below", async () => {
  for (const colorScheme of ["light", "dark"]) {
    const { page, complaints } = await open(makeReport(recordings[0]), { colorScheme });
    for (const figure of figures) {
      const { name, bytes } = await saved(page, figure, "SVG");
      const texts = await textsOfSvg(bytes);
      assert.equal(name, `${basename(recordings[0])}-Person_1-${figure}.svg`);
      assert.ok(texts.includes(`${basename(recordings[0])}, person 1, 0:00.0 to 1:00.0, the whole recording.`), figure);
      assert.ok(texts.some((text) => /^Options: the defaults. Made by skeigiot \d+\.\d+\.\d+, /.test(text)), figure);
      assert.match(bytes.toString(), /<rect width="100%" height="100%" fill="#ffffff"\/>/);
      assert.ok(bytes.toString().split("<path").length > 3, `${figure} has paths`);
      assert.doesNotMatch(bytes.toString(), /<image|NaN|undefined/);
    }
    assert.ok(await page.evaluate(() => !document.documentElement.hasAttribute("data-print")), "the page stays as it was");
    assert.deepEqual(complaints, []);
    await page.close();
  }
});

await test("bars of pull have the same scale in every report, whatever is shown", async () => {
  const scale = (texts) => texts.filter((text) => /^[+−]?0(\.\d+)?$/.test(text)).sort();
  const found = [];
  for (const url of [makeReport(recordings[0]), makeReport(crowd(30))]) {
    const { page } = await open(url);
    found.push(scale(await textsOfSvg((await saved(page, "valence-pulls", "SVG")).bytes)));
    await zoom(page, 0.6, 0.63);
    const zoomed = await textsOfSvg((await saved(page, "valence-pulls", "SVG")).bytes);
    assert.ok(!zoomed.some((text) => text.includes("the whole recording")), "the caption says what is shown");
    found.push(scale(zoomed));
    await page.close();
  }
  for (const one of found) assert.deepEqual(one, ["+0.25", "+0.5", "0", "−0.25", "−0.5"]);
});

await test("a bar beyond the scale is marked with its height", async () => {
  const { page } = await open(makeReport(recordings[0]));
  const time = await exact(page, "time"); // of the greatest change
  await zoom(page, (time - 0.6) / 60, (time + 0.6) / 60);
  const texts = await textsOfSvg((await saved(page, "valence-pulls", "SVG")).bytes);
  assert.ok(texts.some((text) => /^▲ \+0\.\d\d$/.test(text)), String(texts));
  await page.close();
});

await test("what is shown is saved as PNG", async () => {
  const { page } = await open(makeReport(recordings[0]));
  for (const figure of ["estimates", "valence-pulls"]) {
    const { name, bytes } = await saved(page, figure, "PNG");
    assert.match(name, /\.png$/);
    assert.equal(bytes.subarray(1, 4).toString(), "PNG");
    const [width, height] = [bytes.readUInt32BE(16), bytes.readUInt32BE(20)];
    assert.ok(width > 2000 && height > 500, `${width} x ${height}`);
    await page.evaluate((address) => {
      const image = new Image();
      image.id = "saved";
      image.src = address;
      document.body.append(image);
      return image.decode();
    }, `data:image/png;base64,${bytes.toString("base64")}`);
    const isBlank = await page.locator("#saved").evaluate((image) => {
      const canvas = Object.assign(document.createElement("canvas"), { width: 200, height: 200 });
      canvas.getContext("2d").drawImage(image, 0, 0, 200, 200);
      const { data } = canvas.getContext("2d").getImageData(0, 0, 200, 200);
      image.remove();
      return new Set(data).size < 20;
    });
    assert.ok(!isBlank, "something is drawn");
  }
  await page.close();
});

await test("what is shown is saved as CSV, with the numbers of the export", async () => {
  const { page } = await open(labelledReport("labelled"));
  const lines = (await saved(page, "estimates", "CSV")).bytes.toString().trim().split("\n");
  assert.match(lines[0], /^# .*, person 1, 0:00\.0 to 1:00\.0/);
  const columns = lines[2].split(",");
  assert.deepEqual(columns.slice(0, 4), ["time", "seen", "valence", "valence_confidence"]);
  assert.deepEqual(columns.slice(-3), ["anna: pleasure", "anna: labels", "ben: valence"]);
  const updates = exported(recordings[0]).filter(({ person }) => person === "1");
  assert.equal(lines.length - 3, updates.length);
  for (const line of lines.slice(3)) {
    const row = Object.fromEntries(line.split(",").map((text, column) => [columns[column], text]));
    const update = updateAt(updates, 1, Number(row.time));
    for (const name of ["valence_confidence", "attention_confidence", "seen"])
      assert.equal(Number(row[name]), Number(update[name]), name);
    for (const name of ["valence", "attention"])
      assert.equal(row[name], update[name] === "" ? "" : String(Number(update[name])), name);
    for (const name of ["zone", "pleasure"]) assert.equal(row[name], update[name]);
  }
  for (const figure of figures) {
    const [header, ...rows] = (await saved(page, figure, "CSV")).bytes.toString().trim().split("\n").slice(2);
    assert.ok(rows.length > 10, figure);
    for (const row of rows) assert.equal(row.split(",").length, header.split(",").length, figure);
  }
  await page.close();
});

/** Has the browser record a video of some seconds; returns its bytes. */
async function videoOf(seconds) {
  const page = await browser.newPage();
  const text = await page.evaluate(async (seconds) => {
    const canvas = Object.assign(document.createElement("canvas"), { width: 64, height: 48 });
    const context = canvas.getContext("2d");
    document.body.append(canvas);
    const recorder = new MediaRecorder(canvas.captureStream(10), { mimeType: "video/webm;codecs=vp8" });
    const chunks = [];
    recorder.ondataavailable = ({ data }) => chunks.push(data);
    const isStopped = new Promise((resolve) => (recorder.onstop = resolve));
    recorder.start();
    const begin = performance.now();
    await new Promise((resolve) => {
      const draw = () => {
        const time = (performance.now() - begin) / 1000;
        context.fillStyle = `rgb(${Math.round(60 * time)}, 0, 0)`;
        context.fillRect(0, 0, 64, 48);
        if (time < seconds) requestAnimationFrame(draw);
        else resolve();
      };
      draw();
    });
    recorder.stop();
    await isStopped;
    return btoa(String.fromCharCode(...new Uint8Array(await new Blob(chunks).arrayBuffer())));
  }, seconds);
  await page.close();
  return Buffer.from(text, "base64");
}

/** Waits until the page contains the text. */
async function until(said, isTrue, what) {
  for (let tries = 0; tries < 100; ++tries) {
    if (isTrue(await said())) return;
    await new Promise((resolve) => setTimeout(resolve, 100));
  }
  assert.fail(`${what}: ${JSON.stringify(await said())}`);
}

await test("a video plays in step with the cursor", async () => {
  const folder = join(work, 'clips & "films" #1 100% é');
  mkdirSync(folder, { recursive: true });
  const film = join(folder, "a b?.webm");
  writeFileSync(film, await videoOf(6));
  const begins = 30;
  const url = makeReport(recordings[0], "--video", film, "--video-offset", String(begins));
  const { page, complaints } = await open(url, { video: film });
  const video = page.locator("#film video");
  const shown = () => video.evaluate(({ currentTime, seeking }) => (seeking ? -1 : currentTime));
  const near = (time) => (found) => Math.abs(found - time) < 0.06;
  await until(() => video.evaluate(({ readyState }) => readyState), (state) => state >= 2, "the video is loaded");
  assert.equal(await video.evaluate(({ videoWidth }) => videoWidth), 64);

  await hover(page, 33 / 60);
  await until(shown, near((await exact(page, "time")) - begins), "the video follows the cursor");
  await hover(page, 31.5 / 60);
  await until(shown, near((await exact(page, "time")) - begins), "backwards as well");
  await hover(page, 10 / 60);
  await until(() => page.locator("#film .note").innerText(), (note) => note === "The video begins at 0:30.0.", "a note");
  await hover(page, 55 / 60);
  await until(() => page.locator("#film .note").innerText(), (note) => /^The video ends at 0:3\d/.test(note), "a note");

  await hover(page, 31 / 60);
  await until(shown, near((await exact(page, "time")) - begins), "the video is back");
  await page.mouse.move(0, 0);
  const before = await exact(page, "time");
  await page.keyboard.press("Space");
  await until(() => exact(page, "time"), (time) => time > before + 0.5, "the cursor follows the video that plays");
  await hover(page, 0.1);
  assert.ok((await exact(page, "time")) > before, "and not the mouse");
  await page.keyboard.press("Space");
  assert.ok(await video.evaluate(({ paused }) => paused));
  await until(() => exact(page, "time"), near((await shown()) + begins), "both stop together");

  await video.evaluate((element) => (element.currentTime = 4));
  await until(() => exact(page, "time"), near(begins + 4), "the cursor follows the video's own slider");
  await page.screenshot({ path: join(work, "film.png") });
  assert.deepEqual(complaints, []);
  await page.close();
});

await test("a video that is gone is named", async () => {
  const film = join(work, "gone.webm");
  writeFileSync(film, "no video");
  const { page } = await open(makeReport(recordings[0], "--video", film), { video: film });
  await until(() => page.locator("#film .note").innerText(), (note) => /cannot play gone\.webm/.test(note), "a note");
  assert.equal(await page.locator("#readout [data-moment]").count(), 1);
  await page.close();
});

await test("what was learned of faces at rest is said", async () => {
  const openFace = recordings.find((recording) => recording.includes("openface"));
  if (!openFace) return console.log("left out: no recording of OpenFace was given");
  const { page } = await open(makeReport(openFace));
  const said = execFileSync(command, ["inspect", openFace]).toString();
  const learned = /rest of person \d+, in parts of the full scale: \S+ \S+/.exec(said)[0];
  assert.ok((await page.locator("#header").innerText()).includes(`Learned: ${learned}`));
  await page.close();
});

await test("a page without a video asks for none", async () => {
  const { page } = await open(makeReport(recordings[0]));
  assert.equal(await page.locator("video").count(), 0);
  await page.close();
});

await test("on paper no chart is cut, and pages are filled", async () => {
  for (const [recording, most] of [
    [recordings[0], 4],
    [crowd(30), 5],
  ]) {
    const { page, complaints } = await open(makeReport(recording));
    const pages = await printed(page, basename(recording, ".jsonl"));
    assert.ok(pages <= most, `${pages} pages`);
    await expectChartsFitOnPaper(page);
    assert.deepEqual(complaints, []);
    await page.close();
  }
});

await test("persons can be switched by keyboard", () => {
  const severalPersons = recordings[0];
  return expectPersonsCanBeSwitchedByKeyboard(makeReport(severalPersons));
});

await test("paper is light, also where the screen is dark", async () => {
  const { page, complaints } = await open(makeReport(recordings[0]), { colorScheme: "dark" });
  const surface = () => page.evaluate(() => getComputedStyle(document.documentElement).getPropertyValue("--surface"));
  const onScreen = await surface();
  await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
  assert.notEqual(await surface(), onScreen);
  assert.equal(await surface(), "#ffffff");
  await page.evaluate(() => dispatchEvent(new Event("afterprint")));
  assert.equal(await surface(), onScreen);
  assert.deepEqual(complaints, []);
  await page.close();
});

await test("a scope that is named like a script is a name", async () => {
  const recording = join(work, "named.jsonl");
  const scope = "</script><script>document.title='run'</script><img src=x onerror=\"document.title='run'\">";
  writeFileSync(
    recording,
    [
      { time: 1577836800000000000n, start: [{ scope }] },
      { time: 1577836800100000000n, person: 1, observation: { smile: { value: 0.5, confidence: 0.9 } } },
      { time: 1577836801000000000n, person: 1, seen: false },
    ]
      .map(({ time, ...rest }) => `{"time":${time},${JSON.stringify(rest).slice(1)}`)
      .join("\n") + "\n",
  );
  const { page, complaints } = await open(makeReport(recording, "--scope", `${scope}=0..1`));
  assert.deepEqual(complaints, []);
  assert.notEqual(await page.title(), "run");
  assert.ok((await page.locator("#recording").innerText()).includes(scope), "the name is shown as it is");
  await page.close();
});

await test("a recording in which nobody was seen opens, too", async () => {
  const recording = join(work, "nobody.jsonl");
  writeFileSync(recording, '{"time":1577836800000000000,"ambiance":{"activity":0.2}}\n');
  execFileSync(command, ["report", recording, "-o", join(work, "nobody.html")]);
  const page = await browser.newPage();
  const errors = [];
  page.on("pageerror", (error) => errors.push(error.message));
  await page.goto(pathToFileURL(join(work, "nobody.html")).href);
  assert.match(await page.locator("#estimates").innerText(), /Nobody was seen/);
  assert.deepEqual(errors, []);
  await page.close();
});

/** A head without a face: the valence has no readings, and the times have no date. */
function writeHeadAlone(name) {
  const recording = join(work, `${name}.csv`);
  const rows = [0, 1, 2, 3].map((time) => `${time},1,headPosture,0,10,0\n`);
  writeFileSync(recording, `time,person,reading,yaw,pitch,roll\n${rows.join("")}`);
  return recording;
}

await test("the page says before the charts how the file was read", async () => {
  const { page, complaints } = await open(makeReport(writeHeadAlone("undated"), "--mirrored", "--cycle", "5"));
  const said = (key) => page.locator(`#origin [data-key="${key}"]`).innerText();
  assert.match(await said("files"), /undated\.csv, \d+ bytes, format tidy$/);
  assert.match(await said("readAs"), /^Tidy CSV: .*\n+times in seconds from the start/);
  assert.equal(await said("options"), "--cycle 5 --mirrored");
  assert.match(await said("maker"), /^skeigiot \d+\.\d+\.\d+, \d{4}-\d\d-\d\d \d\d:\d\d UTC$/);
  assert.match(await page.locator("#header").innerText(), /no date/);
  const bottom = await page.locator("#origin").boundingBox().then(({ y, height }) => y + height);
  assert.ok(bottom < (await plotBox(page)).y, "before the charts");
  assert.deepEqual(complaints, []);
  await page.close();
});

await test("an estimate that never had evidence is unknown, and has no line", async () => {
  const { page } = await open(makeReport(writeHeadAlone("headalone")));
  assert.equal(await words(page, "valence"), "unknown");
  assert.notEqual(await exact(page, "valence"), 0); // body language moved the number nevertheless
  assert.notEqual(await words(page, "attention"), "unknown");
  assert.match(await page.locator("#estimates").innerText(), /mean valence\s+unknown|unknown\s+mean valence/);
  assert.equal(await page.locator("#estimates .nodata").count(), 1);
  await page.close();
});

await browser.close();
finish();
