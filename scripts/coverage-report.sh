#!/usr/bin/env bash
# Line coverage of src/ from a --coverage build's counters: one line per
# source directory and the total.  Usage: coverage-report.sh BUILD_DIR
set -euo pipefail
build=$(cd "${1:?usage: coverage-report.sh BUILD_DIR}" && pwd)
root=$(cd "$(dirname "$0")/.." && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
summary="$scratch/summary.json"
# gcov writes its intermediate files into the working directory.
(cd "$scratch" && gcovr --root "$root" --filter "$root/src/" --json-summary "$summary" "$build" >/dev/null)
python3 - "$summary" <<'PY'
import collections, json, sys
files = json.load(open(sys.argv[1]))["files"]
dirs = collections.defaultdict(lambda: [0, 0])
for f in files:
    d = f["filename"].rsplit("/", 1)[0]
    dirs[d][0] += f["line_covered"]
    dirs[d][1] += f["line_total"]
row = "{:<16} {:>6} / {:<6} {:6.1f}%"
for d in sorted(dirs):
    c, t = dirs[d]
    print(row.format(d, c, t, 100.0 * c / t if t else 0.0))
c = sum(v[0] for v in dirs.values()); t = sum(v[1] for v in dirs.values())
print(row.format("total", c, t, 100.0 * c / t if t else 0.0))
PY
