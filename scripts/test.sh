#!/usr/bin/env bash
# Builds the module and runs every test (headless), twice: a release build, then the same
# tests built with AddressSanitizer and UndefinedBehaviorSanitizer (build/default and
# build/asan). "default" or "asan" runs only that one.
set -euo pipefail
cd "$(dirname "$0")/.."
case "${1:-all}" in
  all) presets=(default asan) ;;
  default | asan) presets=("$1") ;;
  *) echo "usage: bash scripts/test.sh [default|asan]" >&2; exit 1 ;;
esac
bash scripts/install-deps.sh
export QT_QPA_PLATFORM=offscreen
for preset in "${presets[@]}"; do
  echo "== $preset"
  cmake --preset "$preset"
  cmake --build --preset "$preset"
  ctest --preset "$preset" -j "$(nproc)"
done
