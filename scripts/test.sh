#!/usr/bin/env bash
# Installs and builds what is missing, then runs every test, each under the code pages 936 and 1252.
#
#     test.sh [CTEST ARGUMENT ...]        such as: test.sh -R TextTests
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
results=$root/build/test-results
"$root/scripts/setup.sh"
"$root/scripts/build.sh"

rm -rf "$results"
mkdir -p "$results"
cd "$root"
status=0
KELPKIT_RESULTS=$results xvfb-run -a ctest --preset mingw-release "$@" || status=$?

# One report for each run of a test program.
count() { cat "$results"/*.xml 2>/dev/null | grep -c "$1" || true; }
ran=$(count '<testcase .*result="completed"')
skipped=$(count '<testcase .*result="skipped"')
failed=$(count '<failure ')
verdict=passed
[ "$status" -eq 0 ] || verdict=FAILED
echo "test: $verdict; $ran tests ran, $skipped were skipped because they need the other code page, $failed checks failed"
exit "$status"
