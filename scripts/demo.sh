#!/usr/bin/env bash
# Installs and builds what is missing, then shows Kelpkit at work: a Windows application under Wine that upgrades a model
# through an external converter and writes a log.
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
folder=$root/build/demo
"$root/scripts/setup.sh"
KELPKIT_TARGET=tour "$root/scripts/build.sh"

# The files of an earlier demonstration would count as found.
rm -rf "$folder"
mkdir -p "$folder"
echo "demo: examples/tour under Wine"
echo
# One of its steps needs a screen. Wine stops before the screen goes, or it complains.
# shellcheck disable=SC2016 # the inner shell expands these
if ! xvfb-run -a sh -c '"$1" run "$2" "$3"; status=$?; "$1" stop; exit $status' demo \
    "$root/cmake/wine.sh" "$root/build/mingw-release/bin/tour.exe" "Z:${folder//\//\\}"; then
    echo "demo: FAILED, see above"
    exit 1
fi
echo
echo "demo: what it left in $folder"
(cd "$folder" && find . -type f -printf '  %8s bytes  %P\n' | sort -k 3)
echo "demo: the end of its log, read as GBK"
tail -n 3 "$folder"/*/run.log | iconv -f GBK -t UTF-8 | sed 's/^/  /'
echo "demo: PASSED"
