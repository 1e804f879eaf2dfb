#!/usr/bin/env bash
# Installs and builds what is missing, then converts all that the conversions of text can meet, and compares the results
# with the system's: each sequence of four bytes and each pair of UTF-16 units (2^32 of either) for each kind of processor
# up to this one, and each two bytes and each unit in each code page at hand.
#
#     exhaust.sh [STEP]        with a step, sequences and pairs only whose first half is a multiple of it; all take some
#                              ten minutes
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
"$root/scripts/setup.sh"
"$root/scripts/build.sh"

bin=$root/build/mingw-release/bin
cp "$bin/Exhaust.exe" "$bin/ExhaustUtf8.exe"
cp "$root/tests/support/Utf8.manifest" "$bin/ExhaustUtf8.exe.manifest"

# Starts Wine for a code page, and runs a program there.
run_under() {
    export KELPKIT_CODE_PAGE=$1
    shift
    # shellcheck disable=SC2016 # the inner shell expands these
    xvfb-run -a sh -c '"$1" start; wine=$1; shift; "$wine" run "$@"; status=$?; "$wine" stop; exit $status' exhaust \
        "$root/cmake/wine.sh" "$@"
}

echo "exhaust: $(sed -n 's/^model name\t*: //p' /proc/cpuinfo | head -n 1), $(date +%F)"
run_under 936 "$bin/Exhaust.exe" ansi
run_under 1252 "$bin/Exhaust.exe" ansi
run_under 936 "$bin/ExhaustUtf8.exe" ansi
run_under 936 "$bin/Exhaust.exe" utf8 "${1:-1}"
echo "exhaust: PASSED"
