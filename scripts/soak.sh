#!/usr/bin/env bash
# Installs and builds what is missing, then repeats every operation in one process and looks at what that holds of the
# system: handles, GDI and USER objects, threads, private bytes.
#
#     soak.sh [ROUNDS [ROUNDS WITH PROGRAMS]]        100000 and 100 unless given; that takes five to ten minutes
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
"$root/scripts/setup.sh"
"$root/scripts/build.sh"

# Wine stops before the screen goes, or it complains.
# shellcheck disable=SC2016 # the inner shell expands these
xvfb-run -a sh -c '"$1" start; "$1" run "$2" "$3" "$4"; status=$?; "$1" stop; exit $status' soak \
    "$root/cmake/wine.sh" "$root/build/mingw-release/bin/Soak.exe" "${1:-100000}" "${2:-100}"
