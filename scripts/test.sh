#!/usr/bin/env bash
# Builds the module and runs every test (headless). Pass "asan" to run them under
# AddressSanitizer and UndefinedBehaviorSanitizer instead.
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-default}"
bash scripts/install-deps.sh
cmake --preset "$preset"
cmake --build --preset "$preset"
export QT_QPA_PLATFORM=offscreen
ctest --preset "$preset" -j "$(nproc)"
