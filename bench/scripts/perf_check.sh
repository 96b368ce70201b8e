#!/bin/sh
# Compares the instructions per call of each probe entry with its budget
# and fails when one is more than 5 % over.  Counts, not times, so a busy
# machine does not change the verdict.
#   bench/scripts/perf_check.sh <budget file> <traced probe> <untraced probe>
# Budget lines: "<build> <entry> <instructions>", build being traced or
# untraced; '#' starts a comment.
set -eu
budget=$1
traced=$2
untraced=$3
here=$(dirname "$0")
# The traced build logs here (see the bench presets); without the folder
# every line would fail to open and the count would leave out the write.
mkdir -p /dev/shm/smsutil-bench
status=0
results=$(mktemp)
trap 'rm -f "$results"' EXIT
for build in traced untraced; do
    entries=$(awk -v b="$build" '$1 == b { print $2 }' "$budget")
    [ -n "$entries" ] || continue
    if [ "$build" = traced ]; then probe=$traced; else probe=$untraced; fi
    # shellcheck disable=SC2086
    "$here/instructions_per_call.sh" "$probe" $entries | sed "s/^/$build /" >>"$results"
done
printf '%-9s %-22s %12s %12s\n' build entry measured budget
while read -r build entry measured; do
    limit=$(awk -v b="$build" -v e="$entry" '$1 == b && $2 == e { print $3 }' "$budget")
    verdict=ok
    if [ $((measured * 100)) -gt $((limit * 105)) ]; then
        verdict="OVER by $(((measured - limit) * 100 / limit)) %"
        status=1
    fi
    printf '%-9s %-22s %12s %12s  %s\n' "$build" "$entry" "$measured" "$limit" "$verdict"
done <"$results"
exit $status
