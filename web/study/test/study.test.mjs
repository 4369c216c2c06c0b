// Opens the page of a study in a real browser.
//
// usage: node study.test.mjs CHROMIUM WORK
//   The folder WORK has study.html and summaries.html, the pages of the example study with and without updates, and
//   summaries.csv. In odd.html, some sessions have no condition, names hold HTML, and scopes are named after verdicts.
//   Pictures are left there.

import { chromium } from "playwright-core";
import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { join, resolve } from "node:path";
import { pathToFileURL } from "node:url";
import { finish, test } from "./cases.mjs";

const [browserPath, workPath] = process.argv.slice(2);
assert.ok(workPath, "usage: node study.test.mjs CHROMIUM WORK");
const work = resolve(workPath);
const browser = await chromium.launch({ executablePath: browserPath, args: ["--no-sandbox"] });

async function open({ file = "study.html", width = 1280, colorScheme = "light" } = {}) {
  const page = await browser.newPage({ viewport: { width, height: 900 }, colorScheme });
  const complaints = [];
  page.on("console", (message) => ["error", "warning"].includes(message.type()) && complaints.push(message.text()));
  page.on("pageerror", (error) => complaints.push(error.message));
  await page.goto(pathToFileURL(join(work, file)).href);
  await page.locator("#tests pre").waitFor();
  return { page, complaints };
}

async function saved(page, figure, kind) {
  const button = page.locator(`[data-figure="${figure}"] .save button`, { hasText: `Save ${kind}` });
  const [download] = await Promise.all([page.waitForEvent("download"), button.click()]);
  const file = join(work, `saved-${download.suggestedFilename()}`);
  await download.saveAs(file);
  return { name: download.suggestedFilename(), text: readFileSync(file, "utf8") };
}

/** The lines of a table without its comments, split; no field of the example has a comma. */
const rowsOf = (text) => text.trim().split("\n").filter((line) => !line.startsWith("#")).map((line) => line.split(","));

const data = async (page) => JSON.parse(await page.locator("#data").textContent());

await test("the page has all sessions, both conditions and all reasons", async () => {
  const { page, complaints } = await open();
  assert.equal(await page.title(), "study · skeigiot");
  assert.match(await page.locator("header .facts").innerText(), /sessions\s+48\s+complete\s+45\s+not compared\s+3\s/);
  assert.equal(await page.locator(".session").count(), 48);
  assert.deepEqual(await page.locator("#sessions h3").allInnerTexts(), ["friendly: 24 sessions", "neutral: 24 sessions"]);
  const reasons = await page.locator("#troubles").innerText();
  assert.match(reasons, /p05\/neutral\s+cut short\s+.*face_id/);
  assert.match(reasons, /p07\/friendly\s+failed\s+no file matches/);
  assert.match(await page.locator("#tests").innerText(), /no test of significance[^]*mixedlm/);
  assert.deepEqual(complaints, []);
  await page.close();
});

await test("means are those of the exported summaries", async () => {
  const { page } = await open();
  const [header, ...rows] = rowsOf(readFileSync(join(work, "summaries.csv"), "utf8"));
  const at = (name) => header.indexOf(name);
  const complete = new Set((await data(page)).pictures.sessions.filter(({ status }) => status === "complete").map(({ name }) => name));
  for (const condition of ["friendly", "neutral"]) {
    const values = rows
      .filter((row) => complete.has(row[at("session")]) && row[at("session")].endsWith(condition) && row[at("scope")] === "whole recording")
      .map((row) => Number(row[at("valence")]));
    const mean = values.reduce((sum, value) => sum + value, 0) / values.length;
    const cells = await page.locator('[data-figure="valence"] tbody tr', { hasText: condition }).locator("td").allInnerTexts();
    assert.equal(cells[1], String(values.length));
    assert.ok(Math.abs(Number(cells[2].replace("−", "-")) - mean) <= 0.0005, `${cells[2]} is not ${mean}`);
  }
  await page.close();
});

await test("another scope is compared when it is chosen", async () => {
  const { page, complaints } = await open();
  const before = await page.locator('[data-figure="valence"] tbody').innerText();
  await page.locator(".choices select").first().selectOption("greeting");
  assert.match(await page.locator('[data-figure="valence"] h2').innerText(), /scope greeting, by condition/);
  assert.notEqual(await page.locator('[data-figure="valence"] tbody').innerText(), before);
  assert.deepEqual(complaints, []);
  await page.close();
});

await test("the person under the mouse is named", async () => {
  const { page } = await open();
  const canvas = page.locator('[data-figure="valence"] canvas');
  const box = await canvas.boundingBox();
  let named = "";
  for (let x = 80; x < box.width && named === ""; x += 8) {
    await canvas.hover({ position: { x, y: 24 } });
    named = await page.locator('[data-figure="valence"] .dot').innerText();
  }
  assert.match(named, /^p\d\d: [+−]?\d\.\d{3}/);
  await page.close();
});

await test("a saved figure does not move the persons under the mouse", async () => {
  const { page } = await open();
  const named = async () => {
    const canvas = page.locator('[data-figure="valence"] canvas');
    const box = await canvas.boundingBox();
    const names = [];
    for (let x = 80; x < box.width; x += 24) {
      await canvas.hover({ position: { x, y: 24 } });
      names.push(await page.locator('[data-figure="valence"] .dot').innerText());
    }
    return names;
  };
  const before = await named();
  await saved(page, "valence", "SVG");
  assert.ok(new Set(before).size > 5, before.join(" | "));
  assert.deepEqual(await named(), before);
  await page.close();
});

await test("scopes are in the order in which they happen", async () => {
  const { page } = await open();
  const names = await page.locator('[data-figure="scopes-valence"] tbody tr td:first-child').allInnerTexts();
  assert.deepEqual(names, ["greeting", "task", "goodbye"]);
  await page.close();
});

for (const figure of ["valence", "attention", "engaged", "seen", "scopes-valence", "scopes-attention", "verdicts", "sessions"])
  await test(`the figure ${figure} is saved as SVG and CSV`, async () => {
    const { page, complaints } = await open({ colorScheme: "dark" });
    const svg = await saved(page, figure, "SVG");
    assert.equal(svg.name, `study-${figure}.svg`);
    const [faults, texts, paths] = await page.evaluate((text) => {
      const root = new DOMParser().parseFromString(text, "image/svg+xml");
      const found = (name) => [...root.querySelectorAll(name)];
      return [found("parsererror").length, found("text").map((node) => node.textContent), found("path").length];
    }, svg.text);
    assert.equal(faults, 0);
    assert.ok(paths > 10, `${paths} paths`);
    assert.match(texts.join(" "), /Study study, results\.sqlite/);
    assert.match(svg.text, /fill="#ffffff"/, "paper is white");
    assert.doesNotMatch(svg.text, /#62b8f0|#f0993f|#2cb88f|#a2abba/, "no colours of the dark page");
    const rows = rowsOf((await saved(page, figure, "CSV")).text);
    assert.ok(rows.length > 4 && rows.every((row) => row.length === rows[0].length), `${rows.length} rows`);
    assert.deepEqual(complaints, []);
    await page.close();
  });

await test("the CSV of a figure has the numbers of the page", async () => {
  const { page } = await open();
  const { text } = await saved(page, "valence", "CSV");
  assert.match(text, /^# Groups by condition\.$/m);
  const [header, ...rows] = rowsOf(text);
  assert.deepEqual(header, ["quantity", "scope", "group", "role", "kind", "participant", "value", "count", "low", "high"]);
  const { groups } = (await data(page)).comparisons[0];
  assert.equal(rows.length, groups.reduce((sum, { persons }) => sum + persons.length + 1, 0));
  for (const { value, mean, interval } of groups) {
    const row = rows.find((one) => one[2] === value && one[4] === "mean");
    assert.deepEqual([row[6], row[8], row[9]].map(Number), [mean, ...interval]);
  }
  const pictures = rowsOf((await saved(page, "sessions", "CSV")).text);
  assert.equal(pictures[0].join(), "session,condition,participant,person,name,role,scope,start,stop,valence,attention");
  assert.equal(pictures.length - 1, 46 * 60, "two sessions failed");
  await page.close();
});

await test("a picture goes over the whole session", async () => {
  const { page } = await open();
  const box = await page.locator(".session .valence").first().evaluate((path) => {
    const { x, width } = path.getBBox();
    return { x, width };
  });
  assert.ok(box.x < 5 && box.x + box.width > 140, `from ${box.x} for ${box.width}`);
  await page.close();
});

await test("without updates, a picture has the means of the scopes", async () => {
  const { page, complaints } = await open({ file: "summaries.html" });
  assert.equal((await page.locator(".session .valence").first().getAttribute("d")).match(/H/g).length, 3);
  assert.match(await page.locator("#sessions").innerText(), /a level line is the mean of each scope/);
  assert.deepEqual(complaints, []);
  await page.close();
});

await test("the agreement with labels is that of the data", async () => {
  const { page, complaints } = await open({ file: "odd.html" });
  const { agreement } = (await data(page)).labels;
  const card = page.locator('[data-figure="agreement"]');
  const headings = await card.locator("thead th").allInnerTexts();
  assert.deepEqual(headings, ["label", "verdict negative", "verdict neutral", "verdict positive"]);
  const rows = await card.locator("tbody tr").evaluateAll((list) => list.map((row) => [...row.cells].map((cell) => cell.innerText)));
  const words = ["negative", "neutral", "positive"];
  assert.deepEqual(rows, words.map((word, i) => [word, ...agreement.counts[i].map(String)]));
  const all = agreement.counts.flat().reduce((sum, count) => sum + count, 0);
  const equal = words.reduce((sum, word, i) => sum + agreement.counts[i][i], 0);
  assert.ok(all > 40 && equal > 0 && equal < all, `${equal} of ${all}`);
  const byChance = words.reduce(
    (sum, word, i) => sum + (agreement.counts[i].reduce((one, count) => one + count, 0) / all) * (agreement.counts.reduce((one, row) => one + row[i], 0) / all),
    0,
  );
  const kappa = (equal / all - byChance) / (1 - byChance);
  const shown = await card.locator(".sentence").innerText();
  const persons = new Set((await data(page)).participants).size;
  assert.ok(shown.includes(`${all} verdicts on ${persons} persons; ${agreement.unknown} more are unknown`), shown);
  assert.ok(shown.includes(`The verdict is the label in ${Math.round((100 * equal) / all)} % of them`), shown);
  assert.ok(shown.includes(`Cohen's kappa is ${kappa.toFixed(2).replace("-", "−")}, with a 95 % interval of `), shown);
  assert.deepEqual(complaints, []);
  await page.close();
});

await test("names that hold HTML and scripts are shown as texts", async () => {
  const { page, complaints } = await open({ file: "odd.html" });
  const hostile = "</script><script>hostile = 1</script><img src=x onerror='hostile = 1'>";
  assert.equal(await page.locator("h1").innerText(), hostile);
  assert.ok((await page.locator("#sessions h3").allInnerTexts()).some((text) => text.startsWith(`${hostile}friendly: `)));
  assert.ok((await page.locator("#troubles td").allInnerTexts()).includes(hostile), "the reason of a session");
  assert.ok((await page.locator('[data-figure="valence"] tbody td:first-child').allInnerTexts()).includes(`${hostile}friendly`));
  const canvas = page.locator('[data-figure="valence"] canvas');
  const box = await canvas.boundingBox();
  let named = "";
  for (let x = 80; x < box.width && named === ""; x += 8) {
    await canvas.hover({ position: { x, y: 24 } });
    named = await page.locator('[data-figure="valence"] .dot').innerText();
  }
  assert.ok(named.startsWith(`${hostile}p`), named);
  for (const figure of ["valence", "sessions"]) {
    const { text } = await saved(page, figure, "SVG");
    const elements = await page.evaluate((svg) => {
      const root = new DOMParser().parseFromString(svg, "image/svg+xml");
      return [...new Set([...root.querySelectorAll("*")].map(({ tagName }) => tagName))];
    }, text);
    assert.deepEqual(elements.filter((name) => !["svg", "g", "path", "rect", "text", "line", "circle", "defs", "clipPath"].includes(name)), []);
  }
  assert.equal(await page.evaluate(() => globalThis.hostile), undefined);
  assert.equal(await page.locator("img").count(), 0);
  assert.equal(await page.locator("script").count(), 2, "the data, and the script of the page");
  assert.deepEqual(complaints, []);
  await page.close();
});

await test("sessions without a condition are named so beside others", async () => {
  const { page } = await open({ file: "odd.html" });
  assert.match((await page.locator('[data-figure="valence"] tbody td:first-child').allInnerTexts()).join(), /^without condition,.*friendly,neutral$/);
  assert.match((await page.locator("#sessions h3").allInnerTexts()).join(), /^without condition: 12 sessions,/);
  await page.close();
});

await test("the page says why a PNG was not saved", async () => {
  const { page, complaints } = await open();
  const card = page.locator('[data-figure="valence"]');
  await page.evaluate(() => {
    HTMLCanvasElement.prototype.toBlob = (take) => take(null);
  });
  await card.locator(".save button", { hasText: "Save PNG" }).click();
  await card.locator('[role="alert"]', { hasText: "not saved" }).waitFor();
  assert.equal(
    await card.locator('[role="alert"]').innerText(),
    "The PNG was not saved: the picture is too large for the browser. Save the SVG instead.",
  );
  assert.doesNotMatch((await saved(page, "valence", "SVG")).text, /not saved/);
  assert.equal(await card.locator('[role="alert"]').textContent(), "", "the next file was saved");
  assert.deepEqual(complaints, []);
  await page.close();
});

await test("a PNG is saved", async () => {
  const { page, complaints } = await open();
  const png = await saved(page, "valence", "PNG");
  assert.equal(png.name, "study-valence.png");
  assert.match(png.text, /^.PNG/);
  assert.deepEqual(complaints, []);
  await page.close();
});

/** Writes the page with other data. */
function withData(file, change) {
  const text = readFileSync(join(work, "summaries.html"), "utf8");
  const [begin, end] = [text.indexOf('id="data">') + 'id="data">'.length, text.indexOf("</script>", text.indexOf('id="data">'))];
  const changed = JSON.parse(text.slice(begin, end));
  change(changed);
  writeFileSync(join(work, file), text.slice(0, begin) + JSON.stringify(changed) + text.slice(end));
}

await test("the page says which limits it reached", async () => {
  withData("limits.html", ({ counts, pictures, comparisons }) => {
    const [group] = comparisons[0].groups;
    group.persons = Array.from({ length: 81 }, (_, i) => group.persons[i % group.persons.length]);
    group.count = 81;
    comparisons[0].groupCount = 30;
    counts.sessions = 60000;
    pictures.withoutPicture = 50001;
    pictures.sessions[0].persons[0].moreScopes = 3;
  });
  const { page, complaints } = await open({ file: "limits.html" });
  assert.deepEqual(await page.locator("#sessions .limit").allInnerTexts(), [
    "The page lists the first 48 of 60,000 sessions by name. The comparisons have all complete ones.",
    "50,001 persons of sessions have no picture: a page has 10,000 at most, and 4 of one session. The comparisons have those of complete sessions.",
    "3 scopes are not drawn: a picture has 60 at most.",
  ]);
  assert.deepEqual(await page.locator('[data-figure="valence"] .limit').allInnerTexts(), [
    "The page shows 2 of 30 groups.",
    "Lines link the dots of one person only between groups of 80 persons or less.",
  ]);
  assert.equal(await page.locator('[data-figure="attention"] .limit').count(), 0);
  assert.match((await saved(page, "sessions", "CSV")).text, /^# The page lists the first 48 of 60,000 sessions by name\./m);
  assert.deepEqual(complaints, []);
  await page.close();
});

await test("a page that reached no limit names none", async () => {
  const { page } = await open();
  assert.equal(await page.locator(".limit").count(), 0);
  await page.close();
});

await test("the page loads nothing from anywhere", async () => {
  const text = readFileSync(join(work, "study.html"), "utf8");
  assert.match(text, /default-src 'none'; script-src 'unsafe-inline'; style-src 'unsafe-inline'; img-src data:"/);
  assert.doesNotMatch(text.replaceAll("http://www.w3.org/", ""), /(?:src|href)="|url\(["']?http|https?:\/\//);
});

for (const colorScheme of ["light", "dark"])
  for (const width of [1280, 390])
    await test(`the page fits ${width} pixels, ${colorScheme}`, async () => {
      const { page } = await open({ width, colorScheme });
      const needed = await page.evaluate(() => document.documentElement.scrollWidth);
      assert.ok(needed <= width, `needs ${needed}`);
      await page.screenshot({ path: join(work, `study-${colorScheme}-${width}.png`), fullPage: true });
      await page.close();
    });

await test("a printed page has light charts", async () => {
  const { page, complaints } = await open({ colorScheme: "dark" });
  await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
  assert.equal(await page.evaluate(() => getComputedStyle(document.documentElement).getPropertyValue("--surface").trim()), "#ffffff");
  assert.equal(await page.locator('[data-figure="valence"] canvas').evaluate((canvas) => canvas.style.width), "670px");
  await page.evaluate(() => dispatchEvent(new Event("afterprint")));
  assert.notEqual(await page.locator('[data-figure="valence"] canvas').evaluate((canvas) => canvas.style.width), "670px");
  assert.deepEqual(complaints, []);
  await page.close();
});

await browser.close();
finish();
