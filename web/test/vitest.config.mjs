// The tests of the modules, in node. The modules that only put a page together, or only draw what a browser shows, are opened in a
// browser instead; they are excluded here, with the reason.

import { fileURLToPath } from "node:url";
import { defineConfig } from "vitest/config";

/** Not tested here. */
export const inABrowserOnly = [
  "report/main.ts", // puts the report together: report/test/report.test.mjs
  "report/overview.ts", // draws the whole recording: report/test/report.test.mjs
  "live/main.ts", // puts the live page together: live/test/live.test.mjs
  "live/camera.ts", // loads the camera's script: camera/test/camera.test.mjs
  "study/main.ts", // puts the page of a study together: study/test/study.test.mjs
  "study/pictures.ts", // draws every session: study/test/study.test.mjs
  "camera/main.ts", // runs models on the pictures of a camera: camera/test/camera.test.mjs
  "camera/meshes.ts", // the same
  "camera/geometry.ts", // camera/test/geometry.test.mjs, in node as well
  "camera/tracker.ts", // camera/test/tracker.test.mjs, in node as well
  "camera/landmarker.ts", // runs a model
  "camera/faces.ts", // types
  "shared/camerascript.ts", // types
];

export default defineConfig({
  resolve: {
    alias: { "@vladmandic/face-api/dist/face-api.esm.js": fileURLToPath(new URL("test/camera/fakefaceapi.ts", import.meta.url)) },
  },
  test: {
    environment: "jsdom",
    setupFiles: ["test/setup.ts"],
    include: ["test/**/*.test.ts"],
    pool: "threads",
    poolOptions: { threads: { maxThreads: 1, minThreads: 1 } },
    coverage: {
      provider: "v8",
      include: ["shared/*.ts", "report/*.ts", "live/*.ts", "study/*.ts", "camera/*.ts"],
      exclude: [...inABrowserOnly, "**/*.d.ts"],
      reporter: ["text"],
      thresholds: { lines: 98, branches: 95 },
    },
  },
});
