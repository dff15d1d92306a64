#!/bin/bash
# Runs the long proofs whole; the normal tests run a short version of each.
#
#   scripts/sweep.sh             all of them (hours)
#   scripts/sweep.sh STEP...     some of them
#
# On both systems (tests/sweeps, suites Sweep…):
#   faults     every call to the system fails, once and for good
#   memory     every allocation fails, once and for good
#   kill       a writer is killed before every call
#   power      every state of the disk that a power loss in a save can leave
#   damage     files cut at every length, every bit flipped, every number set
#   index      index files of any content
#   patterns   patterns and texts that make matchers hang or overflow
#   share      share modes between programs; one writer, one reader, 10,000 times
#   models     random operations against the plain models
# On Linux:
#   fast       every random test of a fast form, on TABWERK_OPERATIONS (100,000)
#              cases each
#   fuzz       every fuzz target, TABWERK_FUZZ_SECONDS (300) each
#   coverage   lines and branches that the tests run (scripts/coverage.sh)
#   mutation   how many of 100 seeded faults the tests notice
#              (scripts/mutation.py)
#   lint       cppcheck (scripts/lint.sh)
#   valgrind   the unit tests under memcheck (scripts/valgrind.sh)
#
# The figures that go into docs/testing.md are the lines with SWEEP in them.
# TABWERK_BUILD_ROOT names another folder than build/.
set -uo pipefail
cd "$(dirname "$0")/.."

suite_steps=(faults memory kill power damage index patterns share models)
all=("${suite_steps[@]}" fast fuzz coverage mutation lint valgrind)
steps=("$@")
[ ${#steps[@]} -gt 0 ] || steps=("${all[@]}")
for step in "${steps[@]}"; do
  if [[ " ${all[*]} " != *" $step "* ]]; then
    sed -n '2,/^set /s/^#\( \|$\)//p' "$0" >&2
    exit 2
  fi
done

root=${TABWERK_BUILD_ROOT:-build}
root=$(mkdir -p "$root/logs" && realpath "$root")
export TABWERK_BUILD_ROOT=$root
export TABWERK_SWEEP=whole
jobs=$(nproc)
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

# built PRESET TARGET...: builds these targets of the preset.
built() {
  local preset=$1
  shift
  cmake --preset "$preset" -B "$root/$preset" >"$root/logs/sweep-build.log" 2>&1 &&
    cmake --build "$root/$preset" -j "$jobs" --target "$@" -- --quiet \
      >>"$root/logs/sweep-build.log" 2>&1 ||
    { tail -n 40 "$root/logs/sweep-build.log"; return 1; }
}

# run_tests PROGRAM FILTER: these tests on both systems.
run_tests() {
  local result=0
  built dev "$1" && built mingw "$1" || return 1
  echo "-- Linux"
  "$root/dev/bin/$1" --gtest_filter="$2" --gtest_brief=1 || result=1
  echo "-- Windows"
  cmake/wine-run.sh "$root/mingw/wineprefix" \
    "$root/mingw/bin/$1.exe" --gtest_filter="$2" --gtest_brief=1 || result=1
  return $result
}

run_models() {
  TABWERK_OPERATIONS=50000 run_tests end_to_end_test 'Model*'
}

# Tests of random cases have "Random" in their names.
run_fast() {
  local programs=(ztypes platform schema table base interp) program shard
  local result=0 shards=()
  built dev "${programs[@]/%/_test}" || return 1
  export TABWERK_OPERATIONS=${TABWERK_OPERATIONS:-100000}
  for program in "${programs[@]}"; do
    shards=()
    for ((shard = 0; shard < jobs; ++shard)); do
      GTEST_TOTAL_SHARDS=$jobs GTEST_SHARD_INDEX=$shard \
        "$root/dev/bin/${program}_test" --gtest_filter='*Random*' |
        grep -E '^\[( +OK|  FAILED) |^[^[]' &
      shards+=($!)
    done
    for shard in "${shards[@]}"; do wait "$shard" || result=1; done
  done
  return $result
}

run_step() {
  case $1 in
    models) run_models ;;
    fast) run_fast ;;
    fuzz) scripts/fuzz.sh "${TABWERK_FUZZ_SECONDS:-300}" ;;
    coverage) scripts/coverage.sh ;;
    mutation) scripts/mutation.py ;;
    lint) scripts/lint.sh ;;
    valgrind) scripts/valgrind.sh ;;
    *) run_tests sweeps_test "Sweep${1^}*" ;;
  esac
}

scripts/install-packages.sh || exit 1

summary=()
failed=0
for step in "${steps[@]}"; do
  printf '\n=== %s ===\n' "$step"
  begin=$SECONDS
  if run_step "$step"; then outcome=passed; else outcome=FAILED failed=1; fi
  summary+=("$(printf '%-9s %s (%d s)' "$step" "$outcome" $((SECONDS - begin)))")
done

printf '\n=== summary ===\n'
printf '%s\n' "${summary[@]}"
exit $failed
