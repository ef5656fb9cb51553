#!/usr/bin/env bash
# Builds the module and opens it on the embedded demo database as the demo user, whatever
# properties earlier runs stored (the demo database is made when it is missing or empty; what
# a demo run saves stays in it until --fresh-demo makes it afresh). Arguments, when given, go
# to kavhrloan instead of --demo (see: bash scripts/demo.sh --help).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake --preset default >/dev/null
cmake --build --preset default --target kavhrloan
if [ "$#" -eq 0 ]; then
    set -- --demo
fi
exec build/default/app/kavhrloan "$@"
