# Sourced by script/test-web and script/mutate-web: puts the modules, their tests and the packages into a folder of the build,
# and goes there. Ends with 77, "skipped", if a program or the packages are missing.
# shellcheck shell=bash

skip() {
  echo "skipped: $1"
  exit 77
}

command -v node >/dev/null || skip "there is no node"
command -v npm >/dev/null || skip "there is no npm"

web=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
work=$web/../build/web-tests
if [ "${1:-}" = --work ]; then
  work=$2
  shift 2
fi
mkdir -p "$work"
cd "$work"
rm -rf shared report live study camera test
for part in shared report live study camera; do
  mkdir "$part"
  cp "$web/$part"/*.ts "$part"
done
cp -r "$web/test" .
mv test/{package.json,package-lock.json,tsconfig.json,vitest.config.mjs,stryker.config.mjs} .

# The packages are installed again only after a change of their list, as it says. Not by `npm ci`: it asks for packages of other
# machines as well, which a registry need not have.
if ! cmp -s package-lock.json node_modules/.installed; then
  npm install --no-save --no-audit --no-fund --loglevel=error --fetch-retries=1 --fetch-retry-mintimeout=1000 --fetch-retry-maxtimeout=5000 \
    >npm.log 2>&1 || skip "npm could not fetch the packages: $(tail -n 1 npm.log)"
  cp package-lock.json node_modules/.installed
fi
