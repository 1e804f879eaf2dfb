#!/usr/bin/env bash
# Installs and builds what is missing, then measures every family beside what users would write instead, under Wine and
# code page 936. Writes build/bench/report.md, chart.svg, and the measurements as JSON.
#
#     bench.sh [PROGRAM ...]             all, or such as: bench.sh TextBench ColorBench
#     bench.sh --quick [PROGRAM ...]     one short round: whether they run, not how fast
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
results=$root/build/bench
rounds=9
seconds=0.05
if [ "${1:-}" = --quick ]; then
    rounds=1
    seconds=0.001
    shift
fi
[ $# -gt 0 ] || set -- TextBench LogBench FilesBench XmlConfigBench ChildExeBench ColorBench SystemBench TimeBench \
    ModelUpgradeBench

KELPKIT_EXTRA_PACKAGES="${KELPKIT_EXTRA_PACKAGES:-} python3-matplotlib" "$root/scripts/setup.sh" bench
"$root/scripts/build.sh" mingw-release -DKELPKIT_BUILD_BENCHMARKS=ON

rm -rf "$results"
mkdir -p "$results"
export root results rounds seconds KELPKIT_CODE_PAGE=936
# shellcheck disable=SC2016 # the inner shell is to expand it
if ! xvfb-run -a bash -euo pipefail -c '
    "$root/cmake/wine.sh" start
    trap "\"$root/cmake/wine.sh\" stop" EXIT
    for program in "$@"; do
        echo "bench: $program"
        "$root/cmake/wine.sh" run "$root/build/mingw-release/bin/$program.exe" --benchmark_min_time="$seconds" \
            --benchmark_repetitions="$rounds" --benchmark_enable_random_interleaving=true \
            --benchmark_out="Z:$results/$program.json" >"$results/$program.txt"
    done' bench "$@"; then
    echo "bench: FAILED, see above"
    exit 1
fi
/usr/bin/python3 "$root/bench/report.py" "$results"
