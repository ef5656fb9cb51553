#!/usr/bin/env bash
# Builds the benchmarks (the bench preset, Release), makes the large database and the demo
# database once under the build folder's data/, runs every benchmark and prints the table of
# the module's times beside the same SQL texts run through the sqlite3 C library, ending with
# "targets met: X of Y". Extra arguments go to kav_bench (--reps N, --only NAMES).
# KAV_BENCH_BUILD_DIR names another build folder than build/bench.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
bin=${KAV_BENCH_BUILD_DIR:-build/bench}
launcher=()
if command -v ccache >/dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
cmake --preset bench -B "$bin" "${launcher[@]}" >/dev/null
cmake --build "$bin"

data=$bin/data
mkdir -p "$data"
# The name changes whenever the generator does, so an old database is never measured.
large=$data/large-v4.db
if [ ! -f "$large" ]; then
  "$bin/bench/kav_make_large_db" "$large"
fi
demo=$data/demo.db
if [ ! -f "$demo" ]; then
  QT_QPA_PLATFORM=offscreen "$bin/app/kavhrloan" --create-demo-db "$demo" >/dev/null
fi

export QT_QPA_PLATFORM=offscreen
echo "== filling and sorting the result grid (100,000 rows)"
"$bin/bench/kav_bench_flexgrid" 2>/dev/null
echo
echo "== the module beside the sqlite3 C library ($(date -u +%Y-%m-%d), $(nproc) cores, load $(cut -d' ' -f1 /proc/loadavg))"
"$bin/bench/kav_bench" --db "$large" --demo-db "$demo" --app "$bin/app/kavhrloan" "$@"
