#!/usr/bin/env bash
# Installs and builds what is missing, then runs every test, each under the code pages 936 and 1252.
#
#     test.sh [CTEST ARGUMENT ...]        such as: test.sh -R TextTests
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
results=$root/build/mingw-release/test-results
"$root/scripts/setup.sh"
"$root/scripts/build.sh"

rm -rf "$results"
mkdir -p "$results"
cd "$root"
status=0
xvfb-run -a ctest --preset mingw-release "$@" || status=$?

[ "$status" -eq 0 ] || echo "test: FAILED, see above"

# One report for each run of a test program; its first element sums it up.
count() { cat "$results"/*.xml 2>/dev/null | grep -c "$1" || true; }
ran=$(count '<testcase .*result="completed"')
skipped=$(count '<testcase .*result="skipped"')
failed=$(cat "$results"/*.xml 2>/dev/null | awk -F'"' '/^<testsuites / { sum += $4 } END { print sum + 0 }' || true)
echo "test: a test is skipped where it needs the other code page"
echo "test: $((ran - failed)) passed, $failed failed, $skipped skipped"
exit "$status"
