#!/bin/bash
# Runs the unit tests of the library's layers under valgrind's memcheck, which
# finds what the sanitizers do not look for: decisions and system calls that
# depend on memory that nobody has set.
#
#   scripts/valgrind.sh [LAYER...]
#
# TABWERK_BUILD_ROOT names another folder than build/.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh

layers=("$@")
[ ${#layers[@]} -gt 0 ] || layers=(ztypes platform schema table base interp)
root=${TABWERK_BUILD_ROOT:-build}
mkdir -p "$root/logs"
root=$(realpath "$root")
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
cmake --preset dev -B "$root/dev" >"$root/logs/valgrind-build.log"
cmake --build "$root/dev" -j "$(nproc)" --target "${layers[@]/%/_test}" \
  -- --quiet >>"$root/logs/valgrind-build.log"

# The longest random tests are cut down; leaks are the sanitizer's to find.
export TABWERK_OPERATIONS=${TABWERK_OPERATIONS:-100}
. scripts/timed_tests.sh
export GTEST_FILTER="*:-$timed_tests"
# Tests put their own operator new in the place of the system's and make it
# fail, so valgrind must leave it alone.
run() {
  valgrind -q --error-exitcode=9 --leak-check=no \
    --soname-synonyms=somalloc=nouserintercepts \
    --suppressions=tests/valgrind.supp \
    "$1/dev/bin/$2_test" --gtest_brief=1 >"$1/logs/valgrind-$2.log" 2>&1
}
export -f run
failed=0
printf '%s\n' "${layers[@]}" |
  xargs -P "$(nproc)" -I{} bash -c 'run "$1" "$2"' - "$root" {} || failed=1
for layer in "${layers[@]}"; do
  log=$root/logs/valgrind-$layer.log
  errors=$(grep -c '^==.*\(uninitialised\|Invalid\|points to\)' "$log" || true)
  echo "[ SWEEP    ] valgrind $layer: $errors reports," \
    "$(sed -n 's/^\[  PASSED  \] /passed /p' "$log")," \
    "$(grep -c '^\[  FAILED  \].* ms)$' "$log" || true) failed"
  grep -q '^\[  PASSED  \]' "$log" && ! grep -q '^\[  FAILED  \]' "$log" &&
    [ "$errors" -eq 0 ] || sed -n '1,60p' "$log"
done
exit $failed
