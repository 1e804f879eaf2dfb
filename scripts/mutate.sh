#!/usr/bin/env bash
# Makes faults in the last commit's sources, one at a time, and says which of them the tests notice.
#
#     mutate.sh [N [FAMILY]]        200 faults unless given, of all families unless one is named
#     mutate.sh --survivors         those again that survived the last time, with the tests as they are now
#
# KELPKIT_SEED chooses the faults; without it they are new each time. What is known of a fault is kept, so that a run
# that was interrupted goes on where it was if it is given the same seed. Everything happens in build/mutants, so that work
# in the checkout can go on.
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
mutants=$root/build/mutants

# shellcheck source=scripts/steps.bash
. "$root/scripts/steps.bash"

KELPKIT_EXTRA_PACKAGES='ccache python3-clang-19' "$root/scripts/setup.sh"

# Which lines each test program runs; a fault in another line is nothing to it.
product=$(git -C "$root" rev-parse HEAD:src HEAD:xmlparser HEAD:mfc | sha1sum)
if [ "$(cat "$mutants/counted" 2>/dev/null)" != "$product" ]; then
    "$root/scripts/coverage.sh"
    mkdir -p "$mutants"
    echo "$product" >"$mutants/counted"
fi

# One checkout for each processor, with Wine prefixes of its own.
export CMAKE_CXX_COMPILER_LAUNCHER=ccache CMAKE_C_COMPILER_LAUNCHER=ccache CCACHE_NOHASHDIR=1
export CCACHE_DIR=$mutants/ccache
for ((number = 1; number <= $(nproc); number++)); do
    tree=$mutants/$number
    [ -d "$tree" ] || git clone --quiet --shared "$root" "$tree"
    git -C "$tree" fetch --quiet origin
    git -C "$tree" reset --quiet --hard "$(git -C "$root" rev-parse HEAD)"
    mkdir -p "$tree/build"
    [ -e "$tree/build/deps" ] || ln -s "$root/build/deps" "$tree/build/deps"
    cd "$tree"
    export CCACHE_BASEDIR=$tree
    scripts/setup.sh
    # A fault may leave something unused. A test program need not be linked again for another DLL.
    cmake --preset mingw-release --compile-no-warning-as-error -D CMAKE_LINK_DEPENDS_NO_SHARED=ON >/dev/null
    run_step mutate "$mutants/build.log" cmake --build --preset mingw-release
done

# A program with a fault may delete what it should not: nothing but these folders can be written to.
# shellcheck disable=SC2016 # the inner shell expands these
exec unshare --mount bash -c '
    for folder in "$1" /tmp; do mount --bind "$folder" "$folder"; done
    mount -o remount,bind,ro /
    shift
    exec "$@"
' mutate "$mutants" /usr/bin/python3 -B "$root/scripts/mutate.py" --seed "${KELPKIT_SEED:-$RANDOM}" "$@"
