#!/bin/sh
# System calls per call of a probe entry, counted by strace: the
# difference between K + 1 calls and one call, divided by K, per call name.
#   bench/scripts/syscalls_per_call.sh build/bench/bench/smsutil_probe parse_gsm7_160 [K]
set -eu
probe=$1
entry=$2
k=${3:-10}
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
count() {
    strace -f -c -o "$out/$2" "$probe" "$entry" "$1" >/dev/null
    # Rows of the summary: calls in column 4, the name last.
    awk 'NF >= 5 && $NF != "total" && $4 ~ /^[0-9]+$/ { print $NF, $4 }' "$out/$2" | sort
}
count 1 one >"$out/one.txt"
count $((k + 1)) many >"$out/many.txt"
join -a 2 -e 0 -o 0,1.2,2.2 "$out/one.txt" "$out/many.txt" |
    awk -v k="$k" '{ d = ($3 - $2) / k; if (d > 0) { printf "%s %g\n", $1, d; total += d } }
                   END { printf "total %g\n", total }'
