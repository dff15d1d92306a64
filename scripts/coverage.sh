#!/bin/bash
# Says how much of the library the tests of its layers run, together with the
# sweeps in which its calls fail: lines, and branches apart from the edges that
# only an exception takes.
#
#   scripts/coverage.sh          fails below 98 % of lines or 92 % of branches,
#                                and when what is not taken differs from what
#                                cmake/coverage.txt argues
#
# TABWERK_BUILD_ROOT names another folder than build/.
set -euo pipefail
cd "$(dirname "$0")/.."

minimum_lines=98
minimum_branches=92

scripts/install-packages.sh
root=${TABWERK_BUILD_ROOT:-build}
mkdir -p "$root/logs"
build=$(realpath -m "$root/coverage")
logs=$(realpath "$root/logs")
layers=(ztypes platform schema table base interp)

if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
cmake --preset coverage -B "$build" -D TABWERK_TOOL=OFF \
  >"$logs/coverage-build.log"
cmake --build "$build" -j "$(nproc)" \
  --target "${layers[@]/%/_test}" sweeps_test -- --quiet \
  >>"$logs/coverage-build.log"
find "$build" -name '*.gcda' -delete

# One seed, or what is taken would differ from run to run.
export TABWERK_SEED=1
. scripts/timed_tests.sh
left_out='SweepDamage*:SweepKill*:SweepPower*:SweepPatterns*:SweepShare*'
export GTEST_FILTER="*:-$left_out:$timed_tests"
run() {
  local log=$2/coverage-$3.log
  "$1/bin/$3_test" --gtest_brief=1 \
    >"$log" 2>&1 || { tail -n 40 "$log"; echo "FAILED: $3"; return 1; }
}
export -f run
printf '%s\n' table sweeps "${layers[@]/table/}" | grep . |
  xargs -P "$(nproc)" -I{} bash -c 'run "$1" "$2" "$3"' - "$build" "$logs" {}
# Which request for memory fails decides what is run here, so all of them do.
TABWERK_SWEEP=whole GTEST_FILTER='SweepMemory/OpenSweep*:SweepMemory/SaveSweep*' \
  run "$build" "$logs" sweeps

# Every layer of the library; what only Windows compiles is not there to count.
gcovr --root . --object-directory "$build" -j "$(nproc)" \
  --filter '(include|ztypes|platform|schema|table|base|interp)/' \
  --exclude-throw-branches --exclude-unreachable-branches \
  --json "$logs/coverage.json" "$build"
exec scripts/coverage_report.py "$logs/coverage.json" \
  "$minimum_lines" "$minimum_branches"
