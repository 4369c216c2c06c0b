// The cases of a test of a page: runs them one by one, and counts those that fail.

let failures = 0;

/** Runs the body, and prints whether it passed. A failure does not keep the next cases from running. */
export async function test(name, body) {
  try {
    await body();
    console.log(`ok      ${name}`);
  } catch (error) {
    ++failures;
    console.log(`FAILED  ${name}\n${error.stack}`);
  }
}

/** Ends the program, with 1 if any case failed. */
export function finish() {
  process.exit(failures > 0 ? 1 : 0);
}
