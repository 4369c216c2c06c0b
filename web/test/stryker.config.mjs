import { inABrowserOnly } from "./vitest.config.mjs";

/** Modules or folders that were asked for; empty: all. */
const asked = (process.env.MUTATED ?? "").split(",").filter((pattern) => pattern !== "");

export default {
  testRunner: "vitest",
  plugins: ["@stryker-mutator/vitest-runner"],
  vitest: { configFile: "vitest.config.mjs" },
  mutate: [...(asked.length > 0 ? asked : ["{shared,report,live,study,camera}/*.ts"]), "!**/*.d.ts", ...inABrowserOnly.map((file) => `!${file}`)],
  concurrency: 1,
  reporters: ["clear-text", "json", "progress-append-only"],
  clearTextReporter: { allowColor: false, allowEmojis: false, reportTests: false, logTests: false },
  disableTypeChecks: false,
  thresholds: { high: 90, low: 80, break: 80 },
  tempDirName: "stryker-tmp",
  ignorePatterns: ["reports"],
};
