#!/usr/bin/env bash
# The long reliability runs, beyond what the test suite does: a client killed (SIGKILL) at 100
# random moments of its saves, and two clients saving 2000 final loans each at the same time.
# Builds the release preset (build/default) and prints each run's figures.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake --preset default
cmake --build --preset default --target test_reliability_processes kav_reliability_child
export QT_QPA_PLATFORM=offscreen KAVHRLOAN_SOAK=1
build/default/tests/reliability/test_reliability_processes \
  --gtest_filter='CrashSafety.*:Concurrency.*'
