// Bundles a page into one HTML file; in those of a report and a study, only the data is missing.
//
// usage: node build.mjs report|live|study FILE

import { build } from "esbuild";
import { readFile, writeFile } from "node:fs/promises";

const [page, target] = process.argv.slice(2);
if (!target) throw new Error("usage: node build.mjs report|live|study FILE");

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
  readFile(`${page}/page.html`, "utf8"),
  bundled(page === "report" ? "shared/style.css" : `${page}/style.css`),
  bundled(`${page}/main.ts`),
]);

// Functions as replacements: a "$" in the bundle must not be a reference.
await writeFile(target, template.replace("/*style*/", () => style).replace("/*script*/", () => script));
