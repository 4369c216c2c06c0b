// Writes a bag of MCAP with other people's libraries: `node convert.mjs TARGET COMPRESSION ORDER < MESSAGES`.
//
// COMPRESSION: none, lz4, zstd, or unchunked. ORDER: as-is, or backwards in groups of equal times, over many chunks.
// MESSAGES:    a line of JSON for each, with topic, type, time (nanoseconds as text) and data (base64).
// `node convert.mjs --pack FILE TARGET` packs a file as a whole by zstd.

import { createRequire } from "node:module";
import { closeSync, openSync, readFileSync, writeFileSync, writeSync } from "node:fs";
import { McapWriter } from "@mcap/core";

const require = createRequire(import.meta.url);
const zstd = require("@foxglove/wasm-zstd");
const lz4 = require("lz4js");

const compressions = {
  none: undefined,
  unchunked: undefined,
  lz4: (chunk) => ({ compression: "lz4", compressedData: Uint8Array.from(lz4.compress(chunk)) }),
  zstd: (chunk) => ({ compression: "zstd", compressedData: zstd.compress(chunk, 3) }),
};

function fileAt(path) {
  const file = openSync(path, "w");
  let place = 0n;
  return {
    position: () => place,
    close: () => closeSync(file),
    write: async (bytes) => {
      for (let done = 0; done < bytes.byteLength; )
        done += writeSync(file, bytes, done);
      place += BigInt(bytes.byteLength);
    },
  };
}

// Later times first; messages of one time stay in their order, which readers keep.
function backwards(messages) {
  const groups = [];
  for (const message of messages) {
    const last = groups.at(-1);
    if (last !== undefined && last[0].time === message.time) last.push(message);
    else groups.push([message]);
  }
  return groups.reverse().flat();
}

async function convert(target, compression, order) {
  const lines = readFileSync(0, "utf8").split("\n").filter((line) => line !== "");
  const messages = lines.map((line) => JSON.parse(line));
  const writable = fileAt(target);
  const writer = new McapWriter({
    writable,
    useChunks: compression !== "unchunked",
    chunkSize: order === "backwards" ? 4096 : 768 * 1024,
    compressChunk: compressions[compression],
  });
  await writer.start({ profile: "ros2", library: "tests of skeigiot" });
  const channels = new Map();
  for (const { topic, type, time, data } of order === "backwards" ? backwards(messages) : messages) {
    if (!channels.has(topic)) {
      const schemaId = await writer.registerSchema({ name: type, encoding: "ros2msg", data: new Uint8Array() });
      channels.set(topic, await writer.registerChannel({ schemaId, topic, messageEncoding: "cdr", metadata: new Map() }));
    }
    await writer.addMessage({
      channelId: channels.get(topic),
      sequence: 0,
      logTime: BigInt(time),
      publishTime: BigInt(time),
      data: Buffer.from(data, "base64"),
    });
  }
  await writer.end();
  writable.close();
}

await zstd.isLoaded;
const [first, second, third] = process.argv.slice(2);
if (first === "--pack") writeFileSync(third, zstd.compress(readFileSync(second), 3));
else if (!(second in compressions) || !["as-is", "backwards"].includes(third)) {
  console.error("usage: convert.mjs TARGET none|lz4|zstd|unchunked as-is|backwards");
  process.exit(2);
} else await convert(first, second, third);
