#!/usr/bin/env bash
# Looks at the sources without building them.
#
#     check-sources.sh format                  lays them out
#     check-sources.sh format-check            fails where one is not laid out
#     check-sources.sh tidy BUILD-FOLDER SOURCES ARGUMENT ...
#                                              runs clang-tidy over what the build folder's compile commands name of
#                                              the SOURCES, folders with blanks between; the arguments go to its compiler
#     check-sources.sh gnu-names               fails where Visual Studio would meet a name that only GCC and clang have
#     check-sources.sh mfc-syntax BUILD-FOLDER
#                                              compiles what sees MFC's types, of a build with clang-cl, as if the
#                                              toolchain had MFC, whose headers must come before windows.h
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
cd "$root"
# Those of this project, in the working tree as they are.
sources() { find bench examples fuzz include mfc src tests xmlparser -name '*.h' -o -name '*.cpp' | sort; }

require_tool() {
    command -v "$1" >/dev/null 2>&1 || { echo "check-sources.sh: $1 is missing; scripts/setup.sh dev installs it" >&2; exit 1; }
}

case $1 in
format | format-check)
    require_tool clang-format
    if [ "$1" = format ]; then set -- -i; else set -- --dry-run --Werror; fi
    sources | xargs clang-format "$@"
    ;;
tidy)
    require_tool clang-tidy
    folder=$2
    sources=$(for dir in $3; do printf '^%s/\n' "$(realpath "$dir")"; done)
    shift 3
    arguments=()
    for argument in "$@"; do arguments+=("--extra-arg=$argument"); done
    commands=$(mktemp -d)
    trap 'rm -r "$commands"' EXIT
    # An option that only GCC has.
    sed 's/ -fno-ipa-ra\b//g' "$folder/compile_commands.json" >"$commands/compile_commands.json"
    grep -o '"file": "[^"]*"' "$folder/compile_commands.json" | cut -d'"' -f4 | grep "$sources" |
        grep -v "^$root/build/" | grep -v '\.\(rc\|s\)$' | sort -u |
        xargs -P "$(nproc)" -n 1 clang-tidy --quiet -p "$commands" "${arguments[@]}"
    ;;
gnu-names)
    # The branches for Visual Studio of our own sources, without what they include and with their macros as they stand.
    known='__(FILE|LINE|VA_ARGS|AFX_H|ATL(STR|COMTIME)_H)__|__(cdecl|cpuid(ex)?|declspec|except|halt|int64|stdcall)'
    known+='|__(try|ud2|m(128|256|512)i|mmask[0-9]+|wine_x11_whole_window)'
    status=0
    while read -r source; do
        sed 's/^ *# *include.*//' "$source" |
            x86_64-w64-mingw32-cpp -undef -fdirectives-only -w -P -D_MSC_VER=1930 -D_WIN32 -DKELPKIT_USE_MFC=0 -x c++ - |
            grep -v '^#define __' | grep -oE '\b(__[A-Za-z][A-Za-z0-9_]*|asm|typeof)\b' | grep -vxE "$known" | sort -u |
            sed "s|^|$source: Visual Studio does not have |" | grep . && status=1
    done < <(sources | grep -v '^\(bench\|fuzz\)/')
    exit "$status"
    ;;
mfc-syntax)
    folder=$(realpath "$2")
    # What sees the types of MFC, as the build has noted it.
    objects=$(ninja -C "$folder" -t deps | awk '/^[^ ]/ { object = $1 } /\/Kelpkit\/Mfc\.h$/ { print "/Fo" object }' | tr : ' ')
    [ -n "$objects" ] || { echo "check-sources.sh: nothing in $folder sees Mfc.h; build it first" >&2; exit 1; }
    cd "$folder"
    sed -n 's/.*"command": "\(.*\)",$/\1/p' compile_commands.json | grep -F "$objects" |
        sed -E "s/\\\\(.)/\\1/g; s/-DKELPKIT_USE_MFC=0/-DKELPKIT_USE_MFC=1 -D_AFXDLL/; s| -c -- | -Zs -I$root/cmake/mfc-syntax -- |" |
        xargs -P "$(nproc)" -L 1 env
    ;;
*)
    echo "check-sources.sh: unknown command $1" >&2
    exit 2
    ;;
esac
