#!/usr/bin/env bash
# Builds the module and opens it on the embedded demo database as the demo user, whatever
# earlier runs stored (the demo database is made again when it is missing or empty; a demo
# run stores nothing). Arguments, when given, go to kavhrloan instead of --demo
# (see: bash scripts/demo.sh --help).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake --preset default >/dev/null
cmake --build --preset default --target kavhrloan
if [ "$#" -eq 0 ]; then
    set -- --demo
fi
exec build/default/app/kavhrloan "$@"
