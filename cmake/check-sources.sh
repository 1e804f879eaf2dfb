#!/usr/bin/env bash
# Looks at the sources without building them.
#
#     check-sources.sh format                  lays them out
#     check-sources.sh format-check            fails where one is not laid out
#     check-sources.sh tidy BUILD-FOLDER SOURCES ARGUMENT ...
#                                              runs clang-tidy over what the build folder's compile commands name of
#                                              the SOURCES, folders with blanks between; the arguments go to its compiler
#     check-sources.sh msvc-syntax BUILD-FOLDER ARGUMENT ...
#                                              has clang read the library, the examples and the tests as Visual Studio
#                                              would, their branches for it included; the arguments go to clang
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
msvc-syntax)
    folder=$2
    work=$folder/msvc-syntax
    shift 2
    ours() { grep -rhoE "$1" examples include mfc src tests xmlparser --include='*.cpp' --include='*.h' | sort -u; }
    # Each source once, with its folders and definitions.
    commands() {
        sed -n 's/.*"command": "[^ ]* \(.*\)",$/\1/p' "$folder/compile_commands.json" |
            grep " -c $root/\(examples\|mfc\|src\|tests\|xmlparser\)/.*\.cpp$" | awk '!seen[$NF]++' |
            sed -E 's/\\(.)/\1/g; s/ -([fgOW]|std=|DNDEBUG|D_GLIBCXX_)[^ ]*//g; s/ -o [^ ]* -c / /'
    }
    compiler=(clang++ "$@" -std=c++17 -fms-extensions -fpch-instantiate-templates -DNOMINMAX)

    # What others wrote is read first, as mingw has it, save delayimp.h, which stands no second reading. Then names that
    # look like a compiler's own are forbidden, unless Visual Studio has them.
    known='__(GNUC|MINGW32|VA_ARGS)__|__(cdecl|cpuid(ex)?|declspec|except|halt|has_include|int64|stdcall|try|ud2)'
    known+='|__m(128|256|512)i|__mmask[0-9]+'
    mkdir -p "$work"
    {
        printf '#include <%s>\n' winsock2.h windows.h
        ours '^ *#include <[^>]+>' | grep -v '<Kelpkit/\|<delayimp' |
            sed -E 's/.*(<.*>)/#if __has_include(\1)\n#include \1\n#endif/'
        echo '#include "VisualStudio.h"'
        ours '\b__[A-Za-z][A-Za-z0-9_]*' | grep -vxE "$known" | sed 's/^/#pragma GCC poison /'
    } >"$work/others.h"
    commands | grep -oE -- '-(isystem |D(GTEST_|PUGIXML_|_?UNICODE|_WIN32_WINNT))[^ ]*' | sort -u |
        xargs "${compiler[@]}" -w -iquote cmake/msvc-syntax -x c++-header "$work/others.h" -o "$work/others.pch"

    commands | xargs -P "$(nproc)" -L 1 "${compiler[@]}" -fsyntax-only -I cmake/msvc-syntax \
        -include-pch "$work/others.pch" -pedantic-errors -Werror -Wall -Wextra -Wconversion -Wshadow \
        -Wno-deprecated-declarations -Wno-potentially-evaluated-expression
    ;;
*)
    echo "check-sources.sh: unknown command $1" >&2
    exit 2
    ;;
esac
