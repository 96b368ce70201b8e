#!/bin/sh
# Instructions per call of each probe entry, counted by callgrind: the
# difference between K + 1 calls and one call, divided by K, so that
# start-up and input building drop out.  Load on the machine does not
# change these counts.
#   bench/scripts/instructions_per_call.sh build/bench-notrace/bench/smsutil_probe [entry...]
set -eu
probe=$1
shift
[ $# -gt 0 ] || set -- $("$probe" --list | grep -v '^nothing$')
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
irefs() {
    valgrind --tool=callgrind --callgrind-out-file="$out/cg" "$probe" "$1" "$2" 2>&1 |
        sed -n 's/.*Collected : *\([0-9]*\).*/\1/p'
}
for entry in "$@"; do
    case $entry in
    xml_parse_1m*) k=3 ;;
    get_node_or_attr* | xml_parse_4k*) k=20 ;;
    *) k=100 ;;
    esac
    one=$(irefs "$entry" 1)
    many=$(irefs "$entry" $((k + 1)))
    echo "$entry $(((many - one) / k))"
done
