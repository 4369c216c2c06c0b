// Opens the live page in a real browser.
//
// usage: node live.test.mjs CHROMIUM SKEIGIOT WORK
//   Runs `skeigiot serve`, feeds it, and leaves pictures of the page in the folder WORK.

import { chromium } from "playwright-core";
import assert from "node:assert/strict";
import { execFileSync, spawn } from "node:child_process";
import { createServer, request } from "node:http";
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { join, resolve } from "node:path";
import { createInterface } from "node:readline";
import { finish, test } from "./cases.mjs";

const [browserPath, command, workPath] = process.argv.slice(2);
assert.ok(workPath, "usage: node live.test.mjs CHROMIUM SKEIGIOT WORK");
const work = resolve(workPath);
mkdirSync(work, { recursive: true });

const browser = await chromium.launch({ executablePath: browserPath, args: ["--no-sandbox", "--enable-precise-memory-info"] });
const patience = 10_000; // [ms]

const pause = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));

/** Starts the command, and returns it with the address that it prints. */
async function serve(...options) {
  const child = spawn(command, ["serve", "--no-open", ...options], { stdio: ["pipe", "pipe", "ignore"] });
  const address = await new Promise((found) => createInterface(child.stdout).once("line", found));
  const ended = new Promise((found) => child.once("exit", found));
  return {
    address,
    write: (line) => child.stdin.write(`${JSON.stringify(line)}\n`),
    writeText: (text) => child.stdin.write(text),
    closeInput: () => child.stdin.end(),
    pid: child.pid,
    end() {
      child.kill("SIGINT");
      return ended;
    },
  };
}

/** The observation of a person who smiles that much and looks that far aside. */
function observed(person, joy, yaw = 0) {
  const scores = { joy, sorrow: 0, anger: 0, surprise: 0, calm: 1 - joy };
  const expressions = Object.fromEntries(Object.entries(scores).map(([name, value]) => [name, { value, confidence: 0.9 }]));
  return {
    person,
    observation: { expressions, headPosture: { yaw, pitch: 0, roll: 0 }, gaze: { yaw: -yaw, pitch: 0 }, distance: { value: 1.2 } },
  };
}

/** Feeds persons 10 times a second for so long. */
async function feed(served, persons, seconds, of = (person, tick) => observed(person, 0.5 + 0.5 * Math.sin(tick / 8 + person), 40 * Math.sin(tick / 20 + 2 * person))) {
  for (let tick = 0; tick < seconds * 10; ++tick) {
    for (const person of persons) served.write(of(person, tick));
    await pause(100);
  }
}

/** Opens the page; whatever it complains of is an error, and so is every request to anywhere else. */
async function open(served, { width = 1280, height = 900, ...options } = {}) {
  const context = await browser.newContext({ viewport: { width, height }, ...options });
  context.setDefaultTimeout(patience);
  const page = await context.newPage();
  const complaints = [];
  page.on("console", (message) => ["error", "warning"].includes(message.type()) && complaints.push(message.text()));
  page.on("pageerror", (error) => complaints.push(error.message));
  page.on("request", (request) => {
    const isOwn = new URL(request.url()).origin === new URL(served.address).origin || /^(blob|data):/.test(request.url());
    if (!isOwn) complaints.push(`asked for ${request.url()}`);
  });
  await page.goto(served.address);
  return { page, complaints };
}

const exact = (page, key) => page.locator(`#readout [data-key="${key}"]`).getAttribute("data-value").then(Number);
const words = (page, key) => page.locator(`#readout [data-key="${key}"]`).innerText();
const selected = (page) => page.locator('#persons [aria-selected="true"]').getAttribute("data-person").then(Number);
const isScrolledSideways = (page) =>
  page.evaluate(() => document.documentElement.scrollWidth > document.documentElement.clientWidth);

/** Returns whether the canvas of a chart has pixels of more than some colours, as a line has. */
const coloursIn = (page, chart) =>
  page.locator(`#estimates canvas`).nth(chart).evaluate((canvas) => {
    const { data } = canvas.getContext("2d").getImageData(0, 0, canvas.width, canvas.height);
    const colours = new Set();
    for (let i = 0; i < data.length; i += 4) if (data[i + 3] > 200) colours.add(`${data[i] >> 4},${data[i + 1] >> 4},${data[i + 2] >> 4}`);
    return colours.size;
  });

async function withSession(options, body) {
  const served = await serve(...options);
  try {
    await body(served);
  } finally {
    assert.equal(await served.end(), 0);
  }
}

await test("shows each person with estimates, readings and forces", () =>
  withSession(["-"], async (served) => {
    const { page, complaints } = await open(served);
    await page.getByText("Nobody has been seen yet.").waitFor();
    await feed(served, [3, 8], 2, (person) => observed(person, person === 3 ? 1 : 0));
    assert.equal(await page.locator("#persons [role=tab]").count(), 2);
    assert.equal(await selected(page), 3);
    assert.ok((await exact(page, "valence")) > 0.2, "somebody who smiles feels good");
    assert.ok((await exact(page, "valenceConfidence")) > 0);
    assert.ok((await exact(page, "attention")) > 0.5, "somebody who faces the robot attends");
    assert.equal(await words(page, "zone"), "at the robot");
    assert.equal(await words(page, "pleasure"), "positive");
    assert.equal(await exact(page, "joy"), 1);
    assert.equal(await exact(page, "distance"), 1.2, "in the digits that a float needs");
    assert.ok((await page.locator("#forces tbody tr").count()) > 3);
    assert.match(await page.locator("#forces").innerText(), /Valence (went|stayed)/);
    assert.match(await page.locator("#persons [data-person='8']").innerText(), /at the robot/);
    for (const chart of [0, 1, 2]) assert.ok((await coloursIn(page, chart)) > 3, `chart ${chart} has a line`);
    await page.screenshot({ path: join(work, "live.png"), fullPage: true });
    assert.deepEqual(complaints, []);
  }));

await test("shows the values of the export", () =>
  withSession(["-"], async (served) => {
    const { page } = await open(served);
    await feed(served, [3], 2);
    await pause(400);
    const shown = { valence: await exact(page, "valence"), attention: await exact(page, "attention"), time: await exact(page, "time") };
    const token = new URL(served.address).search;
    const recording = await (await fetch(new URL(`/recording.jsonl${token}`, served.address))).text();
    const file = join(work, "saved.jsonl");
    writeFileSync(file, recording);
    const updates = execFileSync(command, ["replay", file, "--quiet", "--jsonl", "-"]).toString().trim().split("\n").map((line) => JSON.parse(line));
    const update = updates.find(({ time }) => Math.abs(time - shown.time) < 1e-9);
    assert.ok(update, `there is an update at ${shown.time}`);
    assert.equal(Math.fround(shown.valence), Math.fround(update.valence));
    assert.equal(Math.fround(shown.attention), Math.fround(update.attention));
  }));

await test("shows the last minute to a page that comes later, and keeps no more", () =>
  withSession(["-", "--times", "lines"], async (served) => {
    const begin = 1577836800000000000n;
    for (let tick = 0; tick < 1000; ++tick) {
      const line = JSON.stringify(observed(3, (tick % 10) / 10)).slice(1);
      served.writeText(`{"time":${begin + BigInt(tick) * 100000000n},${line}\n`);
      if (tick % 10 === 9) await pause(60); // 100 s in 6 s
    }
    const { page } = await open(served);
    await page.locator("#readout [data-time]").waitFor();
    await page.waitForFunction(() => Number(document.querySelector('#readout [data-key="time"]').dataset.value) > 99);
    await page.evaluate(() => {
      for (let i = 0; i < 1600; ++i) document.dispatchEvent(new KeyboardEvent("keydown", { key: "ArrowLeft" }));
    });
    const oldest = await exact(page, "time");
    assert.match(await page.locator("#readout").innerText(), /s ago/);
    await page.keyboard.press("ArrowRight");
    const next = await exact(page, "time");
    const latest = 99.9;
    const begins = latest - 60;
    assert.ok(oldest > 30 && oldest <= begins + 1e-6, `the oldest moment is at ${oldest}, and holds when the minute begins`);
    assert.ok(next >= begins - 1e-6, `the moment after it is at ${next}`);
  }));

await test("pins a moment while it runs on", () =>
  withSession(["-"], async (served) => {
    const { page } = await open(served);
    await feed(served, [3], 1.5);
    const plot = await page.locator("#estimates .u-over").first().boundingBox();
    await page.mouse.click(plot.x + plot.width - 4, plot.y + 20);
    await page.locator("#forces [data-pinned]").waitFor();
    const pinned = await page.locator("#forces [data-pinned]").getAttribute("data-time");
    await page.mouse.move(5, 5);
    const before = await exact(page, "time");
    await feed(served, [3], 1.5);
    assert.ok((await exact(page, "time")) > before, "it runs on");
    assert.equal(await page.locator("#forces [data-pinned]").getAttribute("data-time"), pinned);
    await page.keyboard.press("Escape");
    assert.equal(await page.locator("#forces [data-pinned]").count(), 0);
    await page.keyboard.press("Enter");
    await page.locator("#forces [data-pinned]").waitFor();
    await page.getByRole("button", { name: "Unpin" }).click();
    assert.equal(await page.locator("#forces [data-pinned]").count(), 0);
  }));

await test("is used with the keyboard alone", () =>
  withSession(["-"], async (served) => {
    const { page } = await open(served);
    await feed(served, [1, 2, 3], 1);
    await page.keyboard.press("2");
    assert.equal(await selected(page), 2);
    await page.locator("#persons [aria-selected='true']").focus();
    await page.keyboard.press("ArrowRight");
    assert.equal(await selected(page), 3);
    await feed(served, [1, 2, 3], 0.5);
    assert.equal(await page.evaluate(() => document.activeElement?.id), "tab-3", "the focus stays while texts change");
    await page.evaluate(() => document.activeElement.blur());
    const live = await exact(page, "time");
    await page.keyboard.press("ArrowLeft");
    await page.keyboard.press("ArrowLeft");
    assert.ok((await exact(page, "time")) < live);
    await page.keyboard.press("Escape");
    assert.ok((await exact(page, "time")) >= live, "the page shows the present again; the last update may have come in since");
  }));

await test("starts and stops scopes", () =>
  withSession(["-"], async (served) => {
    const { page, complaints } = await open(served);
    await page.getByLabel("Name of the scope").fill("greeting");
    await page.getByRole("button", { name: "Start scope" }).click();
    await page.getByText("greeting is open").waitFor();
    await feed(served, [3], 1, () => observed(3, 1));
    await page.getByRole("button", { name: "Stop" }).click();
    const row = page.locator("#scopes tbody tr");
    await row.waitFor();
    assert.match(await row.innerText(), /greeting\s.*Person 3\s+positive\s+\d+/);
    assert.equal(await page.getByText("greeting is open").count(), 0);
    assert.deepEqual(complaints, []);
  }));

await test("keeps the name of a scope that is refused", () =>
  withSession(["-", "--times", "lines"], async (served) => {
    const { page } = await open(served);
    const name = page.getByLabel("Name of the scope");
    await name.fill("greeting");
    await page.getByRole("button", { name: "Start scope" }).click();
    await page.getByText("no line has come in yet").waitFor();
    assert.equal(await name.inputValue(), "greeting");
    served.writeText(`{"time":1577836800000000000,${JSON.stringify(observed(3, 1)).slice(1)}\n`);
    await page.locator("#persons [role=tab]").waitFor();
    await page.getByRole("button", { name: "Start scope" }).click();
    await page.getByText("greeting is open").waitFor();
    assert.equal(await name.inputValue(), "");
  }));

await test("moves boundaries and puts them back", () =>
  withSession(["-"], async (served) => {
    const { page } = await open(served);
    const field = page.locator("#boundary-positive");
    await field.waitFor();
    const before = await field.inputValue();
    assert.ok(await page.getByRole("button", { name: "Put back" }).isDisabled());
    await field.fill("0.65");
    await field.press("Enter");
    await page.waitForFunction(() => !document.querySelector("#boundaries button").disabled);
    const other = await open(served);
    await other.page.waitForFunction(() => document.querySelector("#boundary-positive")?.value === "0.65");
    await page.getByRole("button", { name: "Put back" }).click();
    await page.waitForFunction((value) => document.querySelector("#boundary-positive").value === value, before);
    await field.fill("7");
    await field.press("Enter");
    await page.getByText("7 does not lie strictly between -1 and 1.").waitFor();
    await page.waitForFunction((value) => document.querySelector("#boundary-positive").value === value, before);
  }));

await test("saves the recording and a report", () =>
  withSession(["-"], async (served) => {
    const { page, complaints } = await open(served);
    await feed(served, [3], 1);
    const [recording] = await Promise.all([page.waitForEvent("download"), page.getByRole("button", { name: "Recording" }).click()]);
    assert.equal(recording.suggestedFilename(), "recording.jsonl");
    assert.equal(readFileSync(await recording.path(), "utf8").trim().split("\n").length, 10);
    const [report] = await Promise.all([page.waitForEvent("download"), page.getByRole("button", { name: "Report" }).click()]);
    assert.equal(report.suggestedFilename(), "report.html");
    assert.match(readFileSync(await report.path(), "utf8"), /skeigiot report/);
    await page.getByText("report.html is saved.").waitFor();
    assert.deepEqual(complaints, []);
  }));

await test("says why nothing is saved", () =>
  withSession(["-"], async (served) => {
    const { page } = await open(served);
    await page.getByRole("button", { name: "Report" }).click();
    await page.getByText("Nothing has come in yet.").waitFor();
  }));

await test("says what is wrong with the input, and what it warns of", () =>
  withSession(["-"], async (served) => {
    const { page } = await open(served);
    served.writeText("no JSON <b>at all</b>\n");
    await page.locator("#state").getByText("Refused: line 1").waitFor();
    assert.equal(await page.locator("#state b").count(), 0, "a text is a text");
    served.closeInput();
    await page.locator("#state").getByText("The input has ended.").waitFor();
  }));

await test("shows names as texts", () =>
  withSession(["-"], async (served) => {
    const { page } = await open(served);
    await feed(served, [3], 0.5, () => ({ ...observed(3, 1), name: "<img src=x onerror=alert(1)>" }));
    await page.locator("#persons").getByText("<img src=x onerror=alert(1)> (3)").waitFor();
    assert.equal(await page.locator("#persons img").count(), 0);
  }));

/** Passes requests on to the server, with a connection that can be cut. */
async function passOn(served) {
  const { host, port, origin, search } = new URL(served.address);
  let isCut = false;
  const proxy = createServer((incoming, answer) => {
    const headers = { ...incoming.headers, host, ...(incoming.headers.origin ? { origin } : {}) };
    const outgoing = request({ host: "127.0.0.1", port, path: incoming.url, method: incoming.method, headers }, (response) => {
      answer.writeHead(response.statusCode, response.headers);
      response.pipe(answer);
    });
    outgoing.on("error", () => answer.destroy());
    answer.on("close", () => outgoing.destroy());
    incoming.pipe(outgoing);
  });
  const sockets = new Set();
  proxy.on("connection", (socket) => {
    if (isCut) socket.destroy();
    sockets.add(socket);
    socket.on("error", () => {});
    socket.on("close", () => sockets.delete(socket));
  });
  const cut = () => {
    isCut = true;
    for (const socket of sockets) socket.destroy();
  };
  await new Promise((listens) => proxy.listen(0, "127.0.0.1", listens));
  return {
    address: `http://127.0.0.1:${proxy.address().port}/${search}`,
    cut,
    mend: () => (isCut = false),
    close() {
      cut();
      proxy.close();
    },
  };
}

await test("connects again after a break, and shows what came in meanwhile", () =>
  withSession(["-"], async (served) => {
    const passedOn = await passOn(served);
    try {
      const { page } = await open(passedOn);
      await feed(served, [3], 0.5);
      await page.getByText("Live.").waitFor();
      await page.locator("#tab-3").waitFor();
      passedOn.cut();
      await page.getByText("Connecting again…").waitFor();
      await feed(served, [3, 8], 0.5);
      assert.equal(await page.locator("#tab-8").count(), 0);
      passedOn.mend();
      await page.locator("#tab-8").waitFor();
      await page.getByText("Live.").waitFor();
      assert.equal(await page.getByText("Connecting again…").count(), 0);
    } finally {
      passedOn.close();
    }
  }));

await test("drops persons who left while it was not connected", () =>
  withSession(["-"], async (served) => {
    const context = await browser.newContext();
    context.setDefaultTimeout(patience);
    const page = await context.newPage();
    const person = (id, time) => ({
      id,
      name: "",
      time: time * 1e9,
      updates: 1,
      seen: true,
      valence: [0.5, 0.5, true],
      attention: [0.5, 0.5, true],
      zone: "LookingAtRobot",
      pleasure: "positive",
      ease: [0, 0, ""],
      inputs: {},
      forces: [],
    });
    const news = [
      { now: 10e9, persons: [person(3, 9), person(4, 10), person(5, 10)] },
      { now: 71.5e9, persons: [person(5, 71.5)] },
    ];
    const text = news.map((event, i) => `id: ${i + 1}\ndata: ${JSON.stringify(event)}\n\n`).join("");
    let asked = 0;
    await page.route("**/events*", (route) => (++asked === 1 ? route.fulfill({ contentType: "text/event-stream", body: text }) : route.abort()));
    await page.goto(served.address);
    await page.locator("#tab-5").waitFor();
    const shown = await page.locator("#persons [role=tab]").evaluateAll((tabs) => tabs.map(({ id }) => id));
    assert.deepEqual(shown, ["tab-4", "tab-5"], "person 3 was updated 62.5 seconds ago, person 4 61.5");
    await context.close();
  }));

await test("says that too many pages are open", () =>
  withSession(["-"], async (served) => {
    const { page } = await open(served);
    await page.route("**/events*", (route) => route.fulfill({ status: 503, body: "Too many pages are open." }));
    await page.reload();
    await page.getByText("Too many pages are open, or this address is old").waitFor();
  }));

await test("says that the session has ended", async () => {
  const served = await serve("-");
  const { page } = await open(served);
  await feed(served, [3], 0.5);
  await page.getByText("Live.").waitFor();
  assert.equal(await served.end(), 0);
  await page.getByText("The session has ended. This page keeps its last state.").waitFor();
  assert.equal(await selected(page), 3);
});

await test("shows thirty persons, on a telephone, in the dark and without motion", () =>
  withSession(["-"], async (served) => {
    const persons = Array.from({ length: 30 }, (_, i) => i + 1);
    const views = [
      await open(served),
      await open(served, { width: 390, height: 844, colorScheme: "dark", reducedMotion: "reduce" }),
    ];
    await feed(served, persons, 4);
    await pause(1200);
    for (const [number, { page, complaints }] of views.entries()) {
      assert.equal(await page.locator("#persons [role=tab]").count(), 30);
      assert.ok(!(await isScrolledSideways(page)), `view ${number} is not wider than the window`);
      await page.screenshot({ path: join(work, `thirty${number}.png`), fullPage: true });
      assert.deepEqual(complaints, []);
    }
    const background = await views[1].page.evaluate(() => getComputedStyle(document.body).backgroundColor);
    assert.equal(background, "rgb(14, 17, 22)");
  }));

await test("keeps a bounded number of moments, also in a window in the background", () =>
  withSession(["-", "--times", "lines"], async (served) => {
    const { page } = await open(served);
    await page.evaluate(() => {
      Object.defineProperty(document, "hidden", { value: true });
      window.requestAnimationFrame = () => 0; // as in a window in the background
    });
    const used = () => page.evaluate(() => performance.memory.usedJSHeapSize);
    let time = 1577836800000000000n;
    const feedMinutes = async (minutes) => {
      for (let tick = 0; tick < minutes * 600; ++tick, time += 100000000n) {
        for (const person of [1, 2, 3]) {
          const line = JSON.stringify(observed(person, (tick % 10) / 10)).slice(1);
          served.writeText(`{"time":${time},${line}\n`);
        }
        if (tick % 20 === 19) await pause(50);
      }
    };
    await feedMinutes(2);
    const session = await page.context().newCDPSession(page);
    await session.send("HeapProfiler.collectGarbage");
    const before = await used();
    await feedMinutes(6);
    await session.send("HeapProfiler.collectGarbage");
    const after = await used();
    console.log(`        heap after 2 minutes ${(before / 1e6).toFixed(1)} MB, after 8 minutes ${(after / 1e6).toFixed(1)} MB`);
    assert.ok(after < before + 6e6);
  }));

await test("cannot be reached by another page", () =>
  withSession(["-"], async (served) => {
    const foreign = createServer((_, response) => response.end("<!doctype html><title>foreign</title>"));
    await new Promise((listens) => foreign.listen(0, "127.0.0.1", listens));
    const page = await (await browser.newContext()).newPage();
    await page.goto(`http://127.0.0.1:${foreign.address().port}/`);
    const results = await page.evaluate(async (address) => {
      const url = new URL(address);
      const order = new URL(`/order${url.search}`, address);
      const tried = async (work) => work().then(() => "reached", () => "refused");
      return {
        read: await tried(() => fetch(address)),
        order: await tried(() => fetch(order, { method: "POST", body: '{"putBack":true}' })),
        blind: await tried(async () => {
          const answer = await fetch(order, { method: "POST", mode: "no-cors", body: '{"startScope":"foreign"}' });
          if (answer.type === "opaque") return;
          throw new Error();
        }),
        frame: await new Promise((found) => {
          const frame = document.createElement("iframe");
          frame.src = address;
          frame.onload = () => found("loaded");
          document.body.append(frame);
        }),
      };
    }, served.address);
    assert.equal(results.read, "refused");
    assert.equal(results.order, "refused");
    assert.equal(results.blind, "refused");
    assert.equal(results.frame, "loaded");
    assert.match(page.frames()[1].url(), /^chrome-error:/, "an error is shown in place of the page");
    const { page: own } = await open(served);
    await own.locator("#boundary-positive").waitFor();
    assert.equal(await own.getByText("foreign is open").count(), 0, "a blind order has no effect");
    foreign.close();
  }));

await browser.close();
finish();
