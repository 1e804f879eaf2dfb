#!/usr/bin/env bash
# Runs a command in a fresh clone of this repository's last commit, on a bare Debian of a release, as a new user would:
#
#     on-debian.sh RELEASE COMMAND ...        such as: on-debian.sh trixie scripts/test.sh
#
# Makes the bare system in build/debian/RELEASE with debootstrap, each time anew but for the packages that it has
# downloaded. Needs root, and to be allowed to mount.
set -euo pipefail

root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
[ $# -ge 2 ] || { echo "usage: on-debian.sh RELEASE COMMAND ..." >&2; exit 2; }
release=$1
shift
system=$root/build/debian/$release
cache=$root/build/debian/$release-packages
logs=$root/build/logs
# shellcheck source=scripts/steps.bash
. "$root/scripts/steps.bash"

say() { printf 'on-debian: %s\n' "$*"; }

unmount() {
    local place
    for place in var/cache/apt/archives proc; do
        ! mountpoint -q "$system/$place" || umount "$system/$place"
    done
}

[ "$(id -u)" -eq 0 ] || { say "FAILED: this needs root" >&2; exit 1; }
command -v debootstrap >/dev/null 2>&1 || {
    say "FAILED: debootstrap is missing: apt-get install debootstrap" >&2
    exit 1
}
mkdir -p "$logs" "$cache"
unmount
trap unmount EXIT
rm -rf --one-file-system "$system"
say "a bare Debian $release in $system"
mirror=$(debian_mirror)
run_step on-debian "$logs/debootstrap-$release.log" debootstrap --variant=minbase --cache-dir="$cache" "$release" "$system" \
    ${mirror:+"$mirror"}
# To find the mirror.
cp /etc/resolv.conf "$system/etc/"
mount -t proc proc "$system/proc"
mount --bind "$cache" "$system/var/cache/apt/archives"
git clone -q "$root" "$system/kelpkit"
say "there: $*"
chroot "$system" /usr/bin/env -i HOME=/root TERM="${TERM:-dumb}" PATH=/usr/sbin:/usr/bin:/sbin:/bin \
    sh -c 'cd /kelpkit && exec "$@"' sh "$@"
