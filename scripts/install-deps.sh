#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing the module need,
# only those that are missing. Uses sudo when not run as root.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config
  qt6-base-dev libgl-dev libqt6sql6-sqlite libqt6sql6-odbc qt6-translations-l10n
  unixodbc unixodbc-dev odbcinst tdsodbc libsqliteodbc
  libgtest-dev libgmock-dev libbenchmark-dev libsqlite3-dev
  fonts-noto-core fonts-farsiweb sqlite3 nodejs poppler-utils
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
