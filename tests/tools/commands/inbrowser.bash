# Sourced by the tests that open pages in a browser: ends a test with 77, "skipped", if a program is missing.
# shellcheck shell=bash

skip() {
  echo "skipped: $1"
  exit 77
}

web=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../../web" && pwd)
command -v node >/dev/null || skip "there is no node"
command -v npm >/dev/null || skip "there is no npm"
browser=$(command -v chromium || true)
[ -n "$browser" ] || skip "there is no chromium"

# Copies these files of web/, those that run cases, and what drives the browser to the folder, and goes there.
prepare() {
  local folder=$1
  shift
  mkdir -p "$folder"
  (cd "$web" && cp report/test/{package.json,package-lock.json,cases.mjs} "$@" "$folder")
  cd "$folder"
  npm ci --no-audit --no-fund --loglevel=error >npm.log 2>&1 ||
    skip "npm could not fetch playwright-core: $(tail -n 1 npm.log)"
}
