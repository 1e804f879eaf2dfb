#!/usr/bin/env bash
# Configures and builds everything: build.sh [PRESET [CMAKE ARGUMENT ...]], mingw-release if none is named. With a target
# in KELPKIT_TARGET, only that.
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
preset=${1:-mingw-release}
[ $# -eq 0 ] || shift
log=$root/build/logs/build-$preset.log
mkdir -p "$root/build/logs"

# shellcheck source=scripts/steps.bash
. "$root/scripts/steps.bash"

cd "$root"
echo "build: $preset (some minutes the first time)"
run_step build "$log" cmake --preset "$preset" "$@"
run_step build "$log" cmake --build --preset "$preset" --target "${KELPKIT_TARGET:-all}"
