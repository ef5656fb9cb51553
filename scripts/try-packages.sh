#!/usr/bin/env bash
# Installs the packages scripts/package.sh made into a clean Debian 12 and starts the demo
# there: a debootstrap chroot (made in ROOT when it is not there yet, from Debian's archive),
# `apt install ./kavhrloan_....deb` with Xvfb, then `xvfb-run -a kavhrloan --demo
# --quit-when-shown`, which must exit 0. Needs root. Not part of CI (it downloads a system).
#   bash scripts/try-packages.sh ROOT
set -euo pipefail
cd "$(dirname "$0")/.."
root=${1:?usage: bash scripts/try-packages.sh ROOT}
shopt -s nullglob
debs=(build/default/packages/kavhrloan_*.deb)
[ ${#debs[@]} -eq 1 ] || { echo "make the packages first: bash scripts/package.sh" >&2; exit 1; }
if [ ! -x "$root/usr/bin/apt-get" ]; then
  command -v debootstrap >/dev/null || apt-get install -y -qq --no-install-recommends debootstrap
  debootstrap --variant=minbase bookworm "$root" http://deb.debian.org/debian
fi
mount --bind /proc "$root/proc"
mount --bind /dev "$root/dev"
trap 'umount -l "$root/dev" "$root/proc" || true' EXIT
rm -rf "$root/tmp/debs" && mkdir -p "$root/tmp/debs"
cp "${debs[@]}" "$root/tmp/debs/"
chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root \
  DEBIAN_FRONTEND=noninteractive bash -ec '
    apt-get update -qq
    apt-get install -y -qq ./tmp/debs/kavhrloan_*.deb xvfb xauth > /tmp/install.log
    dpkg -s kavhrloan | grep -E "^(Status|Version):"
    xvfb-run -a kavhrloan --demo --quit-when-shown
    echo "kavhrloan --demo --quit-when-shown: exit 0"'
