#!/bin/bash
# Installs what is missing, then builds and tests everything:
#
#   scripts/test.sh              all steps
#   scripts/test.sh STEP...      some of them
#
#   dev     Linux, g++: tests, checks of the sources and the built library,
#           a project that uses the installed library
#   asan    Linux, clang++: the same tests under address and undefined-
#           behaviour sanitizer
#   mingw   64-bit Windows, MinGW-w64: the same tests, checks of the built
#           library and the project under Wine
#   fuzz    every fuzz target for some seconds, in the build of asan; the other
#           builds replay the corpora
#   tidy    clang-tidy over library and example (over the tool: scripts/lint.sh)
#
# Every step runs even if one before it failed; the exit code is 0 only when
# all succeeded.  TABWERK_BUILD_ROOT names another folder than build/.
set -uo pipefail
cd "$(dirname "$0")/.."

steps=("$@")
[ ${#steps[@]} -gt 0 ] || steps=(dev asan fuzz mingw tidy)
for step in "${steps[@]}"; do
  case $step in
    dev | asan | mingw | fuzz | tidy) ;;
    *)
      sed -n '2,/^set /s/^#\( \|$\)//p' "$0" >&2
      exit 2
      ;;
  esac
done

root=${TABWERK_BUILD_ROOT:-build}
jobs=$(nproc)
mkdir -p "$root/logs"

# Compiling again what has not changed is faster with ccache, where it is.
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
  export CCACHE_SLOPPINESS=pch_defines,time_macros
fi
export CTEST_OUTPUT_ON_FAILURE=1
export ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1
export UBSAN_OPTIONS=print_stacktrace=1

# A locale with a decimal comma, for the tests that a program's locale changes
# nothing.  It is made here, so that the machine's own settings stay as they are.
make_locale() {
  local locales
  locales=$(realpath "$root")/locale
  mkdir -p "$locales"
  [ -d "$locales/de_DE.UTF-8" ] ||
    localedef -i de_DE -f UTF-8 "$locales/de_DE.UTF-8" || return 1
  export LOCPATH=$locales
}

# logged NAME COMMAND...: runs a command with its output in a file, of which
# only the end is shown, and only when it fails.
logged() {
  local log=$root/logs/$1.log
  shift
  if ! "$@" >"$log" 2>&1; then
    tail -n 80 "$log"
    echo "FAILED: $* (whole output: $log)"
    return 1
  fi
}

configure() { logged "$1-configure" cmake --preset "$1" -B "$root/$1"; }

# How many cases the test programs themselves have counted, and those that were
# left out with their reasons.
count_cases() {
  local log=$root/$1/Testing/Temporary/LastTest.log
  awk '/^\[  PASSED  \] [0-9]+ test/ { passed += $4 }
       /^\[  SKIPPED \] [0-9]+ test/ { skipped += $4 }
       END { printf "GoogleTest cases passed: %d, skipped: %d\n",
             passed, skipped }' "$log"
  sed -n '/: Skipped$/{s/.*\/\(tests\/.*\): Skipped$/  left out: \1/;N;s/\n/: /p}' \
    "$log" | sort -u
}

build_and_test() {
  configure "$1" || return 1
  logged "$1-build" cmake --build "$root/$1" -j "$jobs" -- -k 0 --quiet || return 1
  local result=0
  # One more than there are processors, as some tests wait for something.
  ctest --test-dir "$root/$1" -j $((jobs + 1)) --no-tests=error --timeout 600 \
    >"$root/logs/$1-test.log" 2>&1 || result=1
  if [ $result -ne 0 ]; then
    grep -v -E '^ *([0-9]+/[0-9]+ Test|Start) .*(Passed|[^.]*$)' \
      "$root/logs/$1-test.log" | head -n 400
  else
    # The runner's own closing lines.
    sed -n '/% tests passed/,$p' "$root/logs/$1-test.log"
  fi
  count_cases "$1"
  return $result
}

run_dev() { build_and_test dev; }
run_asan() { build_and_test asan; }
run_mingw() {
  local result=0
  build_and_test mingw || result=1
  cmake/wine-run.sh "$root/mingw/wineprefix" --stop >/dev/null 2>&1
  return $result
}
run_fuzz() { scripts/fuzz.sh 5; }
run_tidy() {
  configure tidy && logged tidy cmake --build "$root/tidy" --target tidy &&
    echo "clang-tidy: no findings"
}

scripts/install-packages.sh build test bench || exit 1
make_locale || exit 1

summary=()
failed=0
for step in "${steps[@]}"; do
  printf '\n=== %s ===\n' "$step"
  begin=$SECONDS
  if "run_$step"; then
    outcome=passed
  else
    outcome=FAILED
    failed=1
  fi
  summary+=("$(printf '%-6s %s (%d s)' "$step" "$outcome" \
    $((SECONDS - begin)))")
done

printf '\n=== summary ===\n'
printf '%s\n' "${summary[@]}"
if [ $failed -ne 0 ]; then
  echo "Some steps failed."
  exit 1
fi
echo "All steps passed in $SECONDS s."
