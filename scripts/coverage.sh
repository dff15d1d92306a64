#!/bin/bash
# Says how much of the library the tests run: lines, and branches apart from
# the edges that only an exception takes.  Lists the branches that none takes
# in both directions.
#
#   scripts/coverage.sh          fails below 98 % of lines or 92 % of branches
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

if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
cmake --preset coverage -B "$build" >"$logs/coverage-build.log"
cmake --build "$build" -j "$(nproc)" -- --quiet >>"$logs/coverage-build.log"
find "$build" -name '*.gcda' -delete

for program in "$build"/bin/*_test; do
  name=$(basename "$program")
  if ! "$program" --gtest_brief=1 >"$logs/coverage-$name.log" 2>&1; then
    tail -n 40 "$logs/coverage-$name.log"
    echo "FAILED: $name"
    exit 1
  fi
done

# Every layer of the library; what only Windows compiles is not there to count.
gcovr --root . --object-directory "$build" \
  --filter '(include|ztypes|platform|schema|table|base|interp)/' \
  --exclude-throw-branches --exclude-unreachable-branches \
  --json "$logs/coverage.json" --json-summary "$logs/coverage-summary.json"
exec scripts/coverage_report.py "$logs/coverage.json" \
  "$minimum_lines" "$minimum_branches"
