// Opens reports in a real browser.
//
// usage: node report.test.mjs CHROMIUM SKEIGIOT WORK RECORDING...
//   Makes a report of each recording in the folder WORK, and leaves pictures of it there. What the page says of moments
//   has to be what the command exports.

import { chromium } from "playwright-core";
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdirSync, writeFileSync } from "node:fs";
import { basename, join, resolve } from "node:path";
import { pathToFileURL } from "node:url";

const [browserPath, command, workPath, ...recordings] = process.argv.slice(2);
assert.ok(recordings.length > 0, "usage: node report.test.mjs CHROMIUM SKEIGIOT WORK RECORDING...");
const work = resolve(workPath);
mkdirSync(work, { recursive: true });

const browser = await chromium.launch({ executablePath: browserPath, args: ["--no-sandbox"] });
let failures = 0;

async function test(name, body) {
  try {
    await body();
    console.log(`ok      ${name}`);
  } catch (error) {
    ++failures;
    console.log(`FAILED  ${name}\n${error.stack}`);
  }
}

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

/** Opens the page; whatever it complains of is an error, and so is every request but the one for itself. */
async function open(url, { width = 1280, colorScheme = "light" } = {}) {
  const page = await browser.newPage({ viewport: { width, height: 900 }, colorScheme });
  const complaints = [];
  page.on("console", (message) => ["error", "warning"].includes(message.type()) && complaints.push(message.text()));
  page.on("pageerror", (error) => complaints.push(error.message));
  page.on("request", (request) => request.url() !== url && complaints.push(`asked for ${request.url()}`));
  await page.goto(url);
  await page.locator("#readout [data-moment]").waitFor();
  return { page, complaints };
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
        quantity: row.querySelector("small").innerText,
        target: number("target"),
        weight: number("weight"),
        before: number("before"),
        after: number("after"),
      };
    }),
  );
}

/** Returns the forces of the update as `skeigiot why` tells them. */
function explained(recording, person, time) {
  const text = execFileSync(command, ["why", recording, "--person", String(person), "--at", String(time), "--json"]);
  return JSON.parse(text).forces.map(({ source, quantity, target, weight, before, after }) => ({
    source,
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
  assert.match(await page.locator("#readout").innerText(), new RegExp(`person ${second}`));
  await page.close();
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

/** A head without a face: nothing tells of the valence, and the times have no date. */
function writeHeadAlone(name) {
  const recording = join(work, `${name}.csv`);
  const rows = [0, 1, 2, 3].map((time) => `${time},1,headPosture,0,10\n`);
  writeFileSync(recording, `time,person,reading,yaw,pitch\n${rows.join("")}`);
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
  assert.notEqual(await exact(page, "valence"), 0); // body language moved the number all the same
  assert.notEqual(await words(page, "attention"), "unknown");
  assert.match(await page.locator("#estimates").innerText(), /mean valence\s+unknown|unknown\s+mean valence/);
  assert.equal(await page.locator("#estimates .nodata").count(), 1);
  await page.close();
});

await browser.close();
process.exit(failures > 0 ? 1 : 0);
