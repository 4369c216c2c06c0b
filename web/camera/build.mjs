// Puts together what the camera's part of the live page loads: its script, the programs and the models.
//
// usage: node camera/build.mjs FOLDER, in a folder with the packages

import { build } from "esbuild";
import { copyFile, mkdir, readFile, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { withoutEval } from "./withouteval.mjs";

const [folder] = process.argv.slice(2);
if (!folder) throw new Error("usage: node camera/build.mjs FOLDER");
await mkdir(folder, { recursive: true });

// The FaceLandmarker is a script of its own: it is loaded only with a model of the user.
await build({
  entryPoints: [
    { in: "camera/main.ts", out: "camera" },
    { in: "camera/tasksvision.ts", out: "tasks_vision" },
  ],
  outdir: folder,
  bundle: true,
  minify: true,
  charset: "utf8",
  format: "iife",
  target: ["chrome100", "firefox100", "safari16"],
  legalComments: "inline",
  tsconfigRaw: {}, // the types of face-api that are ours are for the check only
  logLevel: "error",
});

const mesh = "node_modules/@mediapipe/face_mesh";
const glue = "face_mesh_solution_simd_wasm_bin.js";
await writeFile(join(folder, glue), withoutEval(await readFile(join(mesh, glue), "utf8")));

const copied = {
  [mesh]: [
    "face_mesh.js",
    "face_mesh.binarypb",
    "face_mesh_solution_packed_assets.data",
    "face_mesh_solution_packed_assets_loader.js",
    "face_mesh_solution_simd_wasm_bin.wasm",
  ],
  "node_modules/@vladmandic/face-api/model": ["face_expression_model.bin", "face_expression_model-weights_manifest.json"],
  "node_modules/@mediapipe/tasks-vision/wasm": ["vision_wasm_internal.js", "vision_wasm_internal.wasm"],
  "node_modules/@tensorflow/tfjs-backend-wasm/dist": ["tfjs-backend-wasm-simd.wasm"],
};
for (const [from, names] of Object.entries(copied)) for (const name of names) await copyFile(join(from, name), join(folder, name));

const texts = [await readFile("camera/LICENSES.txt", "utf8"), await readFile("node_modules/@vladmandic/face-api/LICENSE", "utf8")];
await writeFile(join(folder, "LICENSES.txt"), texts.join("\n"));
