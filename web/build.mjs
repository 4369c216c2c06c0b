// Bundles the page into one HTML file, in which only the data of a recording is missing.
//
// usage: node build.mjs FILE

import { build } from "esbuild";
import { readFile, writeFile } from "node:fs/promises";

const [target] = process.argv.slice(2);
if (!target) throw new Error("usage: node build.mjs FILE");

async function bundled(entry) {
  const result = await build({
    entryPoints: [entry],
    bundle: true,
    minify: true,
    write: false,
    charset: "utf8",
    format: entry.endsWith(".ts") ? "iife" : undefined,
    target: ["chrome100", "firefox100", "safari15"],
    legalComments: "inline",
    logLevel: "warning",
  });
  return result.outputFiles[0].text.trim();
}

const [template, style, script] = await Promise.all([
  readFile("report/page.html", "utf8"),
  bundled("shared/style.css"),
  bundled("report/main.ts"),
]);

// Functions as replacements: a "$" in the bundle is no reference.
await writeFile(target, template.replace("/*style*/", () => style).replace("/*script*/", () => script));
