#!/usr/bin/env bash
# Installs and builds what is missing, then runs every fuzz target for a while, with AddressSanitizer and
# UndefinedBehaviorSanitizer, on this machine itself. Inputs that reach something new are kept in build/fuzz/corpus, and
# the next run goes on from them.
#
#     fuzz.sh [SECONDS]      for each target, 60 if not given
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
results=$root/build/fuzz
seconds=${1:-60}

KELPKIT_EXTRA_PACKAGES="${KELPKIT_EXTRA_PACKAGES:-} clang libclang-rt-dev llvm" "$root/scripts/setup.sh"
"$root/scripts/build.sh" native-fuzz

rm -rf "$results/findings" "$results/logs"
mkdir -p "$results/findings" "$results/logs"
run() {
    local target=$1
    mkdir -p "$results/corpus/$target"
    "$root/build/native-fuzz/bin/$target" "-max_total_time=$seconds" -timeout=20 \
        "-artifact_prefix=$results/findings/$target-" "$results/corpus/$target" "$root/fuzz/corpus/$target" \
        >"$results/logs/$target.log" 2>&1
}
export -f run
export root results seconds

targets=$(cd "$root/fuzz" && basename -s .cpp -- */*Fuzz.cpp)
echo "fuzz: $(wc -w <<<"$targets") targets, $seconds seconds each, $(nproc) at a time"
status=0
# shellcheck disable=SC2016 # the inner shell is to expand it
xargs -P "$(nproc)" -n 1 bash -c 'run "$1"' fuzz <<<"$targets" || status=1

for target in $targets; do
    log=$results/logs/$target.log
    # libFuzzer's last line, unless it found something.
    executions=$(sed -n 's/^Done \([0-9]*\) runs in .*/\1/p' "$log")
    printf '  %-22s %12s executions\n' "$target" "${executions:-?}"
    finding=$(sed -n 's/.*Test unit written to //p' "$log")
    if [ -n "$finding" ] || [ -z "$executions" ]; then
        status=1
        sed -n '/ERROR:\|does not hold\|runtime error:/s/^/    /p' "$log"
        echo "    to see it again: build/native-fuzz/bin/$target ${finding:-}"
        echo "    the whole log:   $log"
    fi
done
if [ "$status" -ne 0 ]; then
    echo "fuzz: FAILED, see above"
    exit 1
fi
echo "fuzz: no findings"
