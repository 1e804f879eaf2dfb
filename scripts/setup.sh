#!/usr/bin/env bash
# Makes a bare Debian 12 or 13, or a system derived from one of them, able to build, run and test Kelpkit: installs what
# is missing, builds the libraries that Debian does not offer for mingw into build/deps, and makes the Wine prefixes in
# build/wine. Safe to run again, also after it was interrupted; what is there is left alone.
#
#     setup.sh            what building, running and testing need
#     setup.sh dev        and what the everyday targets need: format, tidy, reference, and the tests that read crash dumps
#     setup.sh bench      and what the benchmarks need: Google Benchmark and the libraries that Kelpkit is compared with
#     setup.sh clang-cl   and what builds with Visual Studio's ABI need: clang-cl and lld-link, and the libraries built for
#                         that ABI into build/deps-clang-cl; KELPKIT_SYSROOT names the sysroot, see CONTRIBUTING.md
#
# Several of these words may be given at once.
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
downloads=$root/build/deps/src/apt
logs=$root/build/logs
code_pages='936:zh_CN.UTF-8 1252:en_US.UTF-8'
# What for, and which packages.
packages='to build for 64-bit Windows: binutils-mingw-w64-x86-64 cmake g++-mingw-w64-x86-64-posix ninja-build
to run what was built: wine wine64
a screen for its windows: xauth xvfb
locales, from which Wine takes its code page: locales
libraries that Kelpkit uses: debian-archive-keyring libboost-dev patch
to test: googletest pkgconf'
parts=
for part in "$@"; do
    parts+=" $part "
    case $part in
    dev) packages+=$'\n''for the everyday targets: clang clang-format clang-tidy doxygen lldb python3' ;;
    bench) packages+=$'\n''libraries to compare with: libfmt-dev libgcrypt-mingw-w64-dev libspdlog-dev' ;;
    clang-cl) packages+=$'\n''to build with the ABI of Visual Studio: clang-tools-19 lld-19 llvm-19' ;;
    *)
        echo "setup: unknown argument $part" >&2
        exit 2
        ;;
    esac
done
if [ -n "${KELPKIT_EXTRA_PACKAGES:-}" ]; then
    packages+=$'\n'"for the script that was started: $KELPKIT_EXTRA_PACKAGES"
fi
# shellcheck source=scripts/steps.bash
. "$root/scripts/steps.bash"

say() { printf 'setup: %s\n' "$*"; }

step() {
    local name=$1
    shift
    run_step setup "$logs/$name.log" "$@"
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null 2>&1; then
        sudo "$@"
    else
        say "this needs root, and there is no sudo: $*"
        return 1
    fi
}

require_debian() {
    local system=
    [ ! -r /etc/os-release ] || system=$(. /etc/os-release && printf '%s %s' "${ID:-}" "${ID_LIKE:-}")
    case " $system " in
    *' debian '*) return ;;
    esac
    cat >&2 <<END
setup: this script knows Debian and systems derived from it. Elsewhere, use the container:
    docker build -t kelpkit . && docker run --rm kelpkit
or, on Windows, Visual Studio 2022 with vcpkg: cmake --workflow --preset msvc-release
END
    exit 1
}

# Those of its arguments that are not installed.
missing_packages() {
    local package state
    for package in "$@"; do
        state=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
        [ "$state" = 'install ok installed' ] || printf '%s ' "$package"
    done
}

install_packages() {
    local what names missing all=
    while IFS=: read -r what names; do
        # shellcheck disable=SC2086 # the list is meant to be split
        missing=$(missing_packages $names)
        [ -n "$missing" ] || continue
        [ -n "$all" ] || say "installing Debian packages (a few minutes the first time)"
        say "  $what: $missing"
        all="$all $missing"
    done <<<"$packages"
    [ -n "$all" ] || return 0
    # An installation that was interrupted must be finished first.
    step dpkg-configure as_root dpkg --configure -a
    step apt-update as_root apt-get update -o APT::Update::Error-Mode=any
    # shellcheck disable=SC2086 # the list is meant to be split
    require_available $all
    # shellcheck disable=SC2086 # the list is meant to be split
    step apt-install as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $all
}

# A system derived from Debian may lack some.
require_available() {
    local package candidate unavailable=
    for package in "$@"; do
        candidate=$(apt-cache policy "$package" | sed -n 's/^  Candidate: //p')
        case $candidate in
        '' | '(none)') unavailable+=" $package" ;;
        esac
    done
    if [ -n "$unavailable" ]; then
        say "FAILED: this system does not offer these packages:$unavailable" >&2
        exit 1
    fi
}

generate_locales() {
    local entry locale
    for entry in $code_pages; do
        locale=${entry#*:}
        if locale -a 2>/dev/null | grep -qix "${locale%.UTF-8}\.utf-\?8"; then continue; fi
        say "generating the locale $locale (Wine takes its code page from it)"
        step "locale-$locale" as_root localedef -i "${locale%.UTF-8}" -f UTF-8 "$locale"
    done
}

# Downloads Debian 12's source package of $1, whatever the machine runs, so that everybody builds the same: with package
# lists of its own, so that the machine's apt configuration stays as it is, and by the signature of Debian's archive.
download_source() {
    local name=$1 apt=$downloads mirror
    say "fetching the sources of $name"
    rm -rf "$apt/download"
    mkdir -p "$apt/lists/partial" "$apt/cache/archives/partial" "$apt/download"
    mirror=$(debian_mirror)
    printf 'deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] %s bookworm main\n' \
        "${mirror:-http://deb.debian.org/debian/}" >"$apt/sources.list"
    set -- -o "Dir::Etc::sourcelist=$apt/sources.list" -o Dir::Etc::sourceparts=- \
        -o "Dir::State::lists=$apt/lists" -o "Dir::Cache=$apt/cache" -o APT::Sandbox::User=root
    step update-sources apt-get "$@" update
    (cd "$apt/download" && step "source-$name" apt-get "$@" source --download-only "$name")
    mv "$apt/download/$name"_*.orig.tar.*z "$apt/"
}

# Unpacks the original sources of $1 into $deps/src/$1.
unpack_source() {
    local name=$1 apt=$downloads
    if ! compgen -G "$apt/${name}_*.orig.tar.*z" >/dev/null; then download_source "$name"; fi
    rm -rf "$deps/src/$name" "$deps/src/unpacked"
    mkdir -p "$deps/src/unpacked"
    (cd "$deps/src/unpacked" && cmake -E tar xf "$apt/$name"_*.orig.tar.*z)
    mv "$deps/src/unpacked"/* "$deps/src/$name"
    rmdir "$deps/src/unpacked"
}

# Builds the CMake project in $source with the toolchain and installs it into $deps. The stamp holds the recipe, so that
# a changed toolchain, patch or option builds anew.
build_dependency() {
    local name=$1 source=$2
    shift 2
    say "building $name for $toolchain, which Debian does not offer (a minute)"
    rm -rf "$deps/src/build-$name"
    step "configure-$name" cmake -S "$source" -B "$deps/src/build-$name" -G Ninja \
        "-DCMAKE_TOOLCHAIN_FILE=$root/cmake/$toolchain.cmake" -DCMAKE_BUILD_TYPE=Release \
        "-DCMAKE_INSTALL_PREFIX=$deps" -DCMAKE_INSTALL_LIBDIR=lib "$@"
    step "build-$name" cmake --build "$deps/src/build-$name"
    step "install-$name" cmake --install "$deps/src/build-$name" --strip
}

toolchain_sum() {
    cksum <"$root/cmake/$toolchain.cmake"
}

build_log4cplus() {
    local patch=$root/vcpkg-overlay/log4cplus/kelpkit.patch stamp=$deps/log4cplus.stamp recipe
    # The thread pool stays off: with it, processes hang when they exit or unload the DLL.
    set -- -DUNICODE=ON -DLOG4CPLUS_ENABLE_THREAD_POOL=OFF -DLOG4CPLUS_BUILD_TESTING=OFF -DWITH_UNIT_TESTS=OFF \
        -DLOG4CPLUS_BUILD_LOGGINGSERVER=OFF
    recipe="$(toolchain_sum) $(cksum <"$patch") $*"
    if [ "$(cat "$stamp" 2>/dev/null || true)" = "$recipe" ]; then return; fi
    unpack_source log4cplus
    step patch-log4cplus patch -d "$deps/src/log4cplus" -p1 -i "$patch"
    build_dependency log4cplus "$deps/src/log4cplus" "$@"
    mkdir -p "$deps/share/licenses/log4cplus"
    cp "$deps/src/log4cplus/LICENSE" "$deps/share/licenses/log4cplus/"
    printf '%s' "$recipe" >"$stamp"
}

build_pugixml() {
    local stamp=$deps/pugixml.stamp recipe
    # Less memory for each node, which is most of the time that a large file takes.
    set -- -DPUGIXML_COMPACT=ON
    recipe="$(toolchain_sum) $*"
    if [ "$(cat "$stamp" 2>/dev/null || true)" = "$recipe" ]; then return; fi
    unpack_source pugixml
    build_dependency pugixml "$deps/src/pugixml" "$@"
    mkdir -p "$deps/share/licenses/pugixml"
    cp "$deps/src/pugixml/LICENSE.md" "$deps/share/licenses/pugixml/"
    printf '%s' "$recipe" >"$stamp"
}

build_benchmark() {
    local stamp=$deps/benchmark.stamp recipe
    set -- -DBENCHMARK_ENABLE_TESTING=OFF -DBENCHMARK_INSTALL_DOCS=OFF
    recipe="$(toolchain_sum) $*"
    if [ "$(cat "$stamp" 2>/dev/null || true)" = "$recipe" ]; then return; fi
    unpack_source benchmark
    build_dependency benchmark "$deps/src/benchmark" "$@"
    printf '%s' "$recipe" >"$stamp"
}

# mingw must never see the system's include folder itself, only some libraries in it.
link_headers() {
    local library
    mkdir -p "$deps/include"
    for library in "$@"; do ln -sfn "/usr/include/$library" "$deps/include/$library"; done
}

make_wine_prefix() {
    local code_page=$1
    [ ! -e "$root/build/wine/$code_page/ready" ] || return 0
    say "making the Wine prefix for code page $code_page"
    step "wine-$code_page" env KELPKIT_CODE_PAGE="$code_page" "$root/cmake/wine.sh" make
}

# Builds the libraries with the toolchain into the folder, where the presets of that toolchain look for them.
build_libraries() {
    toolchain=$1
    deps=$2
    mkdir -p "$deps/src"
    build_log4cplus
    build_pugixml
    link_headers boost
}

require_debian
mkdir -p "$logs"
install_packages
generate_locales
case $parts in
*' clang-cl '*) build_libraries clang-cl "$root/build/deps-clang-cl" ;;
esac
build_libraries mingw-w64-x86_64 "$root/build/deps"
case $parts in
*' bench '*)
    build_benchmark
    link_headers fmt spdlog
    ;;
esac
for entry in $code_pages; do make_wine_prefix "${entry%%:*}"; done
say "ready"
