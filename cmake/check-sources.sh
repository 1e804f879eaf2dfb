#!/usr/bin/env bash
# Looks at the sources without building them.
#
#     check-sources.sh format                  lays them out
#     check-sources.sh format-check            fails where one is not laid out
#     check-sources.sh tidy BUILD-FOLDER SOURCES ARGUMENT ...
#                                              runs clang-tidy over what the build folder's compile commands name of
#                                              the SOURCES, folders with blanks between; the arguments go to its compiler
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
cd "$root"
# Those of this project, in the working tree as they are.
sources() { find bench examples fuzz include mfc src tests xmlparser -name '*.h' -o -name '*.cpp' | sort; }

case $1 in
format) sources | xargs clang-format -i ;;
format-check) sources | xargs clang-format --dry-run --Werror ;;
tidy)
    folder=$2
    sources=$(for dir in $3; do printf '^%s/\n' "$(realpath "$dir")"; done)
    shift 3
    arguments=()
    for argument in "$@"; do arguments+=("--extra-arg=$argument"); done
    grep -o '"file": "[^"]*"' "$folder/compile_commands.json" | cut -d'"' -f4 | grep "$sources" |
        grep -v "^$root/build/" | grep -v '\.\(rc\|s\)$' | sort -u |
        xargs -P "$(nproc)" -n 1 clang-tidy --quiet -p "$folder" "${arguments[@]}"
    ;;
*)
    echo "check-sources.sh: unknown command $1" >&2
    exit 2
    ;;
esac
