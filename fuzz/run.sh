#!/usr/bin/env bash
# Runs every fuzz target (or the ones named) for the given seconds each, one
# after another, single process.  New inputs go to <build dir>/corpus/<target>,
# the checked-in seeds in fuzz/corpus/<target> are read but never written,
# and a crash, leak, timeout or broken invariant is saved under
# <build dir>/artifacts/<target>/ and makes the script fail.
# Usage: fuzz/run.sh <build dir of the targets> <seconds> [target...]
set -uo pipefail

bin_dir=${1:?build directory}
seconds=${2:?seconds per target}
shift 2
src_dir=$(cd "$(dirname "$0")" && pwd)

targets=("$@")
if [[ ${#targets[@]} -eq 0 ]]; then
    for f in "$src_dir"/*_fuzz.cpp; do targets+=("$(basename "$f" .cpp)"); done
fi

summary="$bin_dir/summary.txt"
: > "$summary"
failed=()
for t in "${targets[@]}"; do
    work="$bin_dir/corpus/$t"
    artifacts="$bin_dir/artifacts/$t"
    log="$bin_dir/logs/$t.log"
    mkdir -p "$work" "$artifacts" "$(dirname "$log")"
    seeds=()
    [[ -d "$src_dir/corpus/$t" ]] && seeds=("$src_dir/corpus/$t")
    "$bin_dir/$t" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$artifacts/" "$work" "${seeds[@]}" > "$log" 2>&1
    rc=$?
    done_line=$(grep -E '^#[0-9]+[[:space:]]+DONE' "$log" | tail -n 1)
    execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
    line=$(printf '%-32s %s execs=%s %s' "$t" "$([[ $rc -eq 0 ]] && echo ok || echo FAILED)" "${execs:-?}" \
        "$(sed -E 's/.*(cov: [0-9]+ ft: [0-9]+).*/\1/' <<< "$done_line")")
    echo "$line" | tee -a "$summary"
    if [[ $rc -ne 0 ]]; then
        failed+=("$t")
        grep -E 'ERROR|invariant broken|SUMMARY|Test unit written' "$log" | head -n 20
    fi
done

if [[ ${#failed[@]} -ne 0 ]]; then
    echo "fuzzing found problems in: ${failed[*]} (logs in $bin_dir/logs)" >&2
    exit 1
fi
