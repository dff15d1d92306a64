#!/bin/bash
# Says how much of the library the tests of its layers run, together with the
# sweeps in which its calls fail: lines, and branches apart from the edges that
# only an exception takes.  What only Windows compiles is counted under Wine.
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
root=$(realpath "$root")
logs=$root/logs
layers=(ztypes platform schema table base interp)

if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
# One seed, or what is taken would differ from run to run.
export TABWERK_SEED=1
. scripts/timed_tests.sh
left_out='SweepDamage*:SweepKill*:SweepPower*:SweepPatterns*:SweepShare*'
export GTEST_FILTER="*:-$left_out:$timed_tests"

# built PRESET FOLDER PROGRAM...: builds them, to count anew.
built() {
  local preset=$1 folder=$2
  shift 2
  cmake --preset "$preset" -B "$folder" -D TABWERK_COVERAGE=ON \
    -D TABWERK_TOOL=OFF -D TABWERK_EXAMPLES=OFF >"$folder-build.log"
  cmake --build "$folder" -j "$(nproc)" --target "$@" -- --quiet \
    >>"$folder-build.log"
  find "$folder" -name '*.gcda' -delete
}

# ran PROGRAM COMMAND...: its tests; prints only what fails.
ran() {
  local log=$logs/coverage-$1.log
  "${@:2}" --gtest_brief=1 >"$log" 2>&1 ||
    { tail -n 40 "$log"; echo "FAILED: $1"; return 1; }
}

# counted REPORT FOLDER FILTER ARGUMENT...: what was run of these sources.
counted() {
  gcovr --root . --object-directory "$2" -j "$(nproc)" --filter "$3" "${@:4}" \
    --exclude-throw-branches --exclude-unreachable-branches \
    --json "$logs/$1.json" "$2"
}

# Every layer of the library, but for what only Windows compiles.
built coverage "$root/coverage" "${layers[@]/%/_test}" sweeps_test
export -f ran
export logs
printf '%s\n' table sweeps "${layers[@]/table/}" | grep . | xargs -P "$(nproc)" \
  -I{} bash -c 'ran "$1" "$2/coverage/bin/$1_test"' - {} "$root"
# Which request for memory fails decides what is run here, so all of them do.
TABWERK_SWEEP=whole GTEST_FILTER='SweepMemory/OpenSweep*:SweepMemory/SaveSweep*' \
  ran sweeps "$root/coverage/bin/sweeps_test"
counted coverage "$root/coverage" \
  '(include|ztypes|platform|schema|table|base|interp)/'

# What only Windows compiles.
windows=(platform schema table base interp)
built mingw "$root/coverage-mingw" "${windows[@]/%/_test}"
for program in "${windows[@]}"; do
  ran "$program-windows" cmake/wine-run.sh "$root/coverage-mingw/wineprefix" \
    "$root/coverage-mingw/bin/${program}_test.exe"
done
cmake/wine-run.sh "$root/coverage-mingw/wineprefix" --stop >/dev/null 2>&1
counted coverage-windows "$root/coverage-mingw" 'platform/os_windows' \
  --gcov-executable x86_64-w64-mingw32-gcov-posix

exec scripts/coverage_report.py "$minimum_lines" "$minimum_branches" \
  "$logs/coverage.json" "$logs/coverage-windows.json"
