#!/usr/bin/env bash
# Runs every test program with a build that counts, and says how many of the library's lines and branches run. Where
# a call goes on to and where it throws to are no branches here. The page is build/coverage/page/index.html.
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
build=$root/build/mingw-coverage
results=$root/build/coverage

# shellcheck source=scripts/steps.bash
. "$root/scripts/steps.bash"

KELPKIT_EXTRA_PACKAGES="${KELPKIT_EXTRA_PACKAGES:-} lcov python3" "$root/scripts/setup.sh"
"$root/scripts/build.sh" mingw-coverage

rm -rf "$results"
mkdir -p "$results/counts"
echo "coverage: the tests (some minutes)"
cd "$root"
KELPKIT_COUNTS=$results/counts run_step coverage "$root/build/logs/coverage.log" \
    ctest --preset mingw-coverage -R '\.[0-9]+$' -E '^package\.'

/usr/bin/python3 "$root/scripts/coverage.py" "$root" "$build" "$results"
genhtml --quiet --branch-coverage --legend --prefix "$root" --title Kelpkit --output-directory "$results/page" \
    "$results/coverage.info"
