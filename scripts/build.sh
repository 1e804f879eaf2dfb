#!/usr/bin/env bash
# Configures and builds everything: build.sh [PRESET [CMAKE ARGUMENT ...]], mingw-release if none is named.
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
preset=${1:-mingw-release}
[ $# -eq 0 ] || shift
log=$root/build/logs/build-$preset.log
mkdir -p "$root/build/logs"

cd "$root"
echo "build: $preset (a minute or two the first time)"
if ! { cmake --preset "$preset" "$@" && cmake --build --preset "$preset"; } >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    echo "build: failed; the whole log is in $log" >&2
    exit 1
fi
