#!/usr/bin/env bash
# Builds the Debian packages and checks them:
#   kavhrloan_<version>_<arch>.deb         the application, the T-SQL script, the desktop
#                                          entry and icon, the manual page
#   libkavhrloan-dev_<version>_<arch>.deb  the static library, its headers, its CMake package
# The default preset's build (build/default) is configured and built when needed, or reused
# as it stands (CI packages the tree its tests just ran on). The packages land in
# build/default/packages/. Then: the paths each must hold, desktop-file-validate, the manual
# page naming every option `kavhrloan --help` names, and lintian without an error.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
need=()
for p in dpkg-dev lintian desktop-file-utils; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || need+=("$p")
done
if [ ${#need[@]} -gt 0 ]; then
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${need[@]}"
fi

build=build/default
if [ ! -f "$build/CMakeCache.txt" ]; then cmake --preset default; fi
cmake --build "$build"
rm -rf "$build/packages"
(cd "$build" && cpack)

version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
arch=$(dpkg --print-architecture)
app=$build/packages/kavhrloan_${version}_${arch}.deb
dev=$build/packages/libkavhrloan-dev_${version}_${arch}.deb
fail() { echo "package check: $*" >&2; exit 1; }
[ -f "$app" ] || fail "$app was not made"
[ -f "$dev" ] || fail "$dev was not made"

holds() {  # holds PACKAGE PATH...: each path is in the package
  local list
  list=$(dpkg-deb -c "$1" | awk '{print $6}')
  shift
  for path in "$@"; do
    grep -qx "./$path" <<<"$list" || fail "$path is not in the package"
  done
}
holds "$app" usr/bin/kavhrloan usr/share/KAVHRLoan/KAVHRLoan.sql \
  usr/share/applications/kavhrloan.desktop usr/share/icons/hicolor/scalable/apps/kavhrloan.svg \
  usr/share/man/man1/kavhrloan.1.gz usr/share/doc/kavhrloan/copyright \
  usr/share/doc/kavhrloan/changelog.gz
holds "$dev" usr/lib/libKAVHRLoan.a usr/include/KAVHRLoan/host/kavHRLoan1.h \
  usr/lib/cmake/KAVHRLoan/KAVHRLoanConfig.cmake \
  usr/share/doc/libkavhrloan-dev/copyright usr/share/doc/libkavhrloan-dev/changelog.gz
dpkg-deb -f "$app" Version | grep -qx "$version" || fail "the package's version is not $version"
"$build/app/kavhrloan" --version | grep -q " $version\$" || fail "kavhrloan --version does not say $version"
dpkg-deb --fsys-tarfile "$app" | tar -xO ./usr/bin/kavhrloan > "$build/packages/kavhrloan.stripped"
if readelf -S "$build/packages/kavhrloan.stripped" | grep -q '\.debug_info\|\.symtab'; then
  fail "usr/bin/kavhrloan is not stripped"
fi
rm -f "$build/packages/kavhrloan.stripped"
dpkg-deb --fsys-tarfile "$dev" | tar -xO ./usr/lib/libKAVHRLoan.a > "$build/packages/lib.a"
if readelf -S "$build/packages/lib.a" 2>/dev/null | grep -q '\.debug_info'; then
  fail "usr/lib/libKAVHRLoan.a keeps its debugging sections"
fi
rm -f "$build/packages/lib.a"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
dpkg-deb -x "$app" "$work"
desktop-file-validate "$work/usr/share/applications/kavhrloan.desktop"
man=$(gzip -dc "$work/usr/share/man/man1/kavhrloan.1.gz" | sed 's/\\-/-/g')
for option in $("$build/app/kavhrloan" --help | grep -o -- '--[a-z][a-z-]*' | sort -u); do
  grep -q -- "$option" <<<"$man" || fail "the manual page does not name $option"
done
for code in 0 1 2 3; do
  grep -A1 '^\.TP' <<<"$man" | grep -qx ".B $code" || fail "the manual page does not list exit code $code"
done
status=0
report=$(lintian --fail-on error "$app" "$dev" 2>&1) || status=$?
grep -v "^running with root privileges" <<<"$report" || true
[ "$status" -eq 0 ] || fail "lintian found errors"
echo "packages: $app $dev"
