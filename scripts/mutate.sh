#!/usr/bin/env bash
# Makes faults in the last commit's sources, one at a time, and says which of them the tests notice.
#
#     mutate.sh [N [FAMILY]]        200 faults unless given, of all families unless one is named
#
# KELPKIT_SEED chooses the faults; without it they are new each time. A run that was interrupted goes on where it was if it
# is given the same seed. Everything happens in build/mutants, so that work in the checkout can go on.
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
tree=$root/build/mutants/tree

# shellcheck source=scripts/steps.bash
. "$root/scripts/steps.bash"

"$root/scripts/setup.sh"
dpkg -s python3-clang-19 >/dev/null 2>&1 || apt-get install -y --no-install-recommends python3-clang-19

[ -d "$tree" ] || git clone --quiet --shared "$root" "$tree"
git -C "$tree" fetch --quiet origin
git -C "$tree" reset --quiet --hard "$(git -C "$root" rev-parse HEAD)"
mkdir -p "$tree/build"
[ -e "$tree/build/deps" ] || ln -s "$root/build/deps" "$tree/build/deps"
cd "$tree"
scripts/setup.sh
# A fault may leave something unused.
cmake --preset mingw-release --compile-no-warning-as-error >/dev/null
run_step mutate "$root/build/mutants/build.log" cmake --build --preset mingw-release

# Wine's programs find the screen that is there when the server starts.
exec xvfb-run -a /usr/bin/python3 "$tree/scripts/mutate.py" --seed "${KELPKIT_SEED:-$RANDOM}" "$@"
