#!/usr/bin/env bash
# Installs and builds what is missing, then runs every fuzz target for a while, with AddressSanitizer and
# UndefinedBehaviorSanitizer, on this machine itself. Inputs that reach something new are added to build/fuzz/corpus,
# and the next run starts from them.
#
#     fuzz.sh [SECONDS]          for each target, 60 if not given
#     fuzz.sh --runs COUNT       executions of each target, however long they take
#     fuzz.sh --keep             adds those inputs of build/fuzz/corpus to fuzz/corpus that reach what none there does
#     fuzz.sh --coverage         the lines of each target's units that the inputs of both reach
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
results=$root/build/fuzz
preset=native-fuzz
# Longer inputs take longer and reach nothing new.
export options=-max_len=512
# Little freed memory is kept back, and where memory came from is not noted; a finding's own run, without these options,
# says it.
export ASAN_OPTIONS=quarantine_size_mb=4:malloc_context_size=0

usage() {
    sed -n '/^#     /s/^#     //p' "$0" >&2
    exit 2
}

number() {
    case $1 in
    '' | *[!0-9]*) usage ;;
    esac
}

command=run
case ${1:-} in
--keep | --coverage) command=${1#--} ;;
--runs)
    number "${2:-}"
    limit=-runs=$2
    many="$2 executions"
    ;;
*)
    number "${1:-60}"
    limit=-max_total_time=${1:-60}
    many="${1:-60} seconds"
    ;;
esac
[ "$command" != coverage ] || preset=native-fuzz-coverage
targets=$(cd "$root/fuzz" && basename -s .cpp -- */*Fuzz.cpp)

# Runs shell code for each target, as many at a time as there are processors, with the target in $1.
for_each_target() {
    xargs -P "$(nproc)" -n 1 bash -c "$1" fuzz <<<"$targets"
}

# libFuzzer's last line is its count, unless it found something.
report() {
    local target=$1 log=$results/logs/$1.log executions finding
    read -r executions time < <(sed -n 's/^Done \([0-9]*\) runs in \([0-9]*\) .*/\1 \2/p' "$log") || true
    printf '  %-22s %12s executions  %8s a second\n' "$target" "${executions:-?}" \
        "$([ "${time:-0}" -eq 0 ] && echo '?' || echo $((executions / time)))"
    finding=$(sed -n 's/.*Test unit written to //p' "$log")
    if [ -z "$finding" ] && [ -n "$executions" ]; then return; fi
    sed -n '/ERROR:\|does not hold\|runtime error:/s/^/    /p' "$log"
    echo "    to see it again: build/native-fuzz/bin/$target ${finding:-}"
    echo "    the whole log:   $log"
    return 1
}

run() {
    local target status=0
    export limit
    rm -rf "$results/findings" "$results/logs"
    mkdir -p "$results/findings" "$results/logs"
    echo "fuzz: $(wc -w <<<"$targets") targets, $many each, $(nproc) at a time"
    # shellcheck disable=SC2016 # the inner shell is to expand it
    for_each_target '"$programs/$1" $options $limit -timeout=20 "-artifact_prefix=$results/findings/$1-" \
        "$results/corpus/$1" "$root/fuzz/corpus/$1" >"$results/logs/$1.log" 2>&1' || status=1
    for target in $targets; do report "$target" || status=1; done
    if [ "$status" -ne 0 ]; then
        echo "fuzz: FAILED, see above"
        exit 1
    fi
    echo "fuzz: no findings"
}

keep() {
    local target
    # shellcheck disable=SC2016 # the inner shell is to expand it
    for_each_target '"$programs/$1" $options -merge=1 "$root/fuzz/corpus/$1" "$results/corpus/$1" \
        >"$results/merge-$1.log" 2>&1'
    for target in $targets; do
        printf '  %-22s %8d bytes\n' "$target" "$(cat "$root/fuzz/corpus/$target"/* | wc -c)"
    done
}

# Prints the sum of the lines of units: its name, the profile, the files that list the units, and the programs. The
# warnings are about templates that the programs have compiled differently.
print_lines() {
    local name=$1 profile=$2 units=$3
    shift 3
    # shellcheck disable=SC2086 # a pattern
    llvm-cov export -summary-only -instr-profile="$profile" "$@" 2> >(grep -v 'mismatched data' >&2) |
        sed 's/"totals":.*//; s/{"filename":/\n&/g' |
        grep -F -f <(cat $units) | sed 's/.*"lines":{"count":\([0-9]*\),"covered":\([0-9]*\).*/\1 \2/' |
        awk -v name="$name" '{ lines += $1; covered += $2 }
            END { printf "  %-22s %5d of %5d lines, %5.1f %%\n", name, covered, lines, 100 * covered / lines }'
}

coverage() {
    local target profiles=$results/profiles objects=()
    rm -rf "$profiles"
    mkdir -p "$profiles"
    # shellcheck disable=SC2016 # the inner shell is to expand it
    for_each_target 'LLVM_PROFILE_FILE="$results/profiles/$1.raw" "$programs/$1" $options -runs=0 \
        "$results/corpus/$1" "$root/fuzz/corpus/$1" >"$results/profiles/$1.log" 2>&1'
    for target in $targets; do
        llvm-profdata merge -o "$profiles/$target" "$profiles/$target.raw"
        print_lines "$target" "$profiles/$target" "$units/$target.units" "$programs/$target"
        objects+=(-object "$programs/$target")
    done
    llvm-profdata merge -o "$profiles/all" "$profiles"/*.raw
    print_lines 'all together' "$profiles/all" "$units/*.units" "${objects[@]:1}"
}

KELPKIT_EXTRA_PACKAGES="${KELPKIT_EXTRA_PACKAGES:-} clang libclang-rt-dev llvm" "$root/scripts/setup.sh"
"$root/scripts/build.sh" "$preset"
programs=$root/build/$preset/bin
units=$root/build/$preset/fuzz
export programs results root
for target in $targets; do mkdir -p "$results/corpus/$target"; done
"$command"
