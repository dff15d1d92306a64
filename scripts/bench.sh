#!/bin/bash
# Measures the library beside what else could be used, on this machine:
#
#   scripts/bench.sh                 at 10,000, 100,000 and 1,000,000 rows;
#                                    writes the table of docs/performance.md
#   scripts/bench.sh rows N...       at so many rows; prints the table only
#   scripts/bench.sh growth          how the cost grows from 1 to 4 million
#                                    rows; writes that table
#
# Every figure is the median of repetitions that all contenders take turns in,
# so that what else the machine does hits all of them.
#
# TABWERK_BENCH_ONLY names some of the programs (lookup, open …),
# TABWERK_BENCH_REPETITIONS how often (5), TABWERK_BUILD_ROOT another folder
# than build/.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=${1:-document}
shift || true
case $mode in
  document) set -- 10000 100000 1000000 ;;
  growth) set -- 1000000 2000000 4000000 ;;
  rows) [ $# -gt 0 ] ;;
  *)
    sed -n '2,/^set /s/^#\( \|$\)//p' "$0" >&2
    exit 2
    ;;
esac

scripts/install-packages.sh build bench
root=${TABWERK_BUILD_ROOT:-build}
mkdir -p "$root/logs"
log=$root/logs/bench-build.log
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
if ! { cmake --preset release -B "$root/release" -DTABWERK_BENCH=ON &&
  cmake --build "$root/release" -- --quiet; } >"$log" 2>&1; then
  tail -n 40 "$log" >&2
  exit 1
fi

results=$root/bench/$mode
rm -rf "$results"
mkdir -p "$results"
filter=.
[ "$mode" != growth ] || filter=/tabwerk/
programs=(open lookup text_search pattern save script rows user_rows)
for program in ${TABWERK_BENCH_ONLY:-${programs[@]}}; do
  for rows in "$@"; do
    echo "$program, $rows rows" >&2
    "$root/release/bin/${program}_bench" --rows="$rows" \
      --benchmark_filter="$filter" \
      --benchmark_repetitions="${TABWERK_BENCH_REPETITIONS:-5}" \
      --benchmark_enable_random_interleaving=true \
      --benchmark_min_time=0.02 \
      --benchmark_out="$results/$program-$rows.json" \
      --benchmark_out_format=json >"$root/logs/bench-$program.log"
  done
done
python3 scripts/bench_table.py "$mode" "$results"
