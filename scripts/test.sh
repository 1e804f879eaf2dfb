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

# One report for each run of a test program; its first element sums it up.
count() { cat "$results"/*.xml 2>/dev/null | grep -c "$1" || true; }
ran=$(count '<testcase .*result="completed"')
skipped=$(count '<testcase .*result="skipped"')
failed=$(cat "$results"/*.xml 2>/dev/null | awk -F'"' '/^<testsuites / { sum += $4 } END { print sum + 0 }' || true)
summary="$((ran - failed)) passed, $failed failed, $skipped skipped (these need the other code page)"
if [ "$status" -ne 0 ]; then
    echo "test: the whole log is in $root/build/mingw-release/Testing/Temporary/LastTest.log"
    echo "test: FAILED, see above for what: $summary"
    exit "$status"
fi
echo "test: PASSED: $summary"
