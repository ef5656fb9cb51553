#!/usr/bin/env bash
# Builds the module and opens it on the embedded demo database.
# Extra arguments go to kavhrloan (see: bash scripts/demo.sh --help).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake --preset default >/dev/null
cmake --build --preset default --target kavhrloan
exec build/default/app/kavhrloan "$@"
