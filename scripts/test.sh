#!/usr/bin/env bash
# Installs and builds what is missing, then runs every test, each under the code pages 936 and 1252; those of texts and
# the log under UTF-8, too.
#
#     test.sh [--preset PRESET] [CTEST ARGUMENT ...]        such as: test.sh -R TextTests
#
# The preset is mingw-release, or clang-cl-release for Visual Studio's ABI.
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
preset=mingw-release
if [ "${1:-}" = --preset ]; then
    preset=$2
    shift 2
fi
results=$root/build/$preset/test-results
case $preset in
clang-cl-*) "$root/scripts/setup.sh" clang-cl ;;
*) "$root/scripts/setup.sh" ;;
esac
"$root/scripts/build.sh" "$preset"

rm -rf "$results"
mkdir -p "$results"
cd "$root"
status=0
ctest --preset "$preset" "$@" || status=$?

# One report for each run of a test program; its first element sums it up.
count() { cat "$results"/*.xml 2>/dev/null | grep -c "$1" || true; }
ran=$(count '<testcase .*result="completed"')
skipped=$(count '<testcase .*result="skipped"')
failed=$(cat "$results"/*.xml 2>/dev/null | awk -F'"' '/^<testsuites / { sum += $4 } END { print sum + 0 }' || true)
summary="$((ran - failed)) passed, $failed failed, $skipped skipped (these need another code page)"
if [ "$status" -ne 0 ]; then
    echo "test: the whole log is in $root/build/$preset/Testing/Temporary/LastTest.log"
    echo "test: FAILED, see above for what: $summary"
    exit "$status"
fi
echo "test: PASSED: $summary"
