#!/usr/bin/env bash
# The unit suite, then every fuzz corpus replayed, straight from a build
# directory (quicker than ctest, which starts one process per case).
#   tests/run_all.sh <build dir>      (build the `all_tests` target first)
set -euo pipefail
build=${1:?build directory}
src=$(cd "$(dirname "$0")/.." && pwd)
"$build/tests/smsutil_tests" --gtest_brief=1 --gtest_fail_fast=1
# A build without the tool has no replay for the tool's target, which
# fuzz_replay answers with status 2 ("unknown target"): skip that corpus.
for corpus in "$src"/fuzz/corpus/*/; do
    status=0
    "$build/tests/fuzz_replay" "$(basename "$corpus")" "$corpus" 2>/dev/null >/dev/null || status=$?
    [ "$status" -eq 0 ] || [ "$status" -eq 2 ] || exit "$status"
done
