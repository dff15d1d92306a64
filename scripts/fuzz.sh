#!/bin/bash
# Runs fuzz targets with their corpora and dictionaries.
#
#   scripts/fuzz.sh SECONDS [TARGET...]   each target so long on one core, as
#                                         many at a time as there are cores,
#                                         at most two
#   scripts/fuzz.sh --merge [TARGET...]   adds to fuzz/corpus what earlier runs
#                                         found new and worth keeping
#
# New inputs go into build/fuzz/run/NAME/corpus, which the next run goes on with
# (a run of less than a minute begins anew), finds into build/fuzz/run/finds.
# The exit code is 0 only when nothing was found; a find is checked in under
# fuzz/corpus/NAME together with what mends it.
# TABWERK_BUILD_ROOT names another folder than build/.
set -uo pipefail
cd "$(dirname "$0")/.." || exit 1

# A corpus is replayed on every test run: it stays small.
most_files=180
most_bytes=250000

usage() {
  sed -n '2,/^set /s/^#\( \|$\)//p' "$0" >&2
  exit 2
}

[ $# -gt 0 ] || usage
mode=$1
shift
[[ $mode = --merge || $mode =~ ^[1-9][0-9]*$ ]] || usage
all=()
for source in fuzz/*_fuzz.cpp; do
  name=${source#fuzz/}
  all+=("${name%_fuzz.cpp}")
done
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=("${all[@]}")
for name in "${targets[@]}"; do
  [[ " ${all[*]} " == *" $name "* ]] || usage
done

root=${TABWERK_BUILD_ROOT:-build}
root=$(mkdir -p "$root/logs" && realpath "$root")
run=$root/fuzz/run
mkdir -p "$run/finds" "$run/golden"
jobs=$(nproc)
[ "$jobs" -le 2 ] || jobs=2
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

# Files of the targets are in memory where that is possible.
if [ -d /dev/shm ] && [ -w /dev/shm ]; then
  TMPDIR=$(mktemp -d /dev/shm/tabwerk-fuzz.XXXXXX)
else
  TMPDIR=$(mktemp -d)
fi
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT
export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1
export UBSAN_OPTIONS=print_stacktrace=1

build() {
  local log=$root/logs/fuzz-build.log
  cmake --preset asan -B "$root/asan" >"$log" 2>&1 &&
    cmake --build "$root/asan" -j "$(nproc)" \
      --target "${targets[@]/%/_fuzz}" -- --quiet >>"$log" 2>&1 ||
    { tail -n 40 "$log"; return 1; }
}

# The golden files as bytes.
make_golden() {
  local hex digits
  for hex in tests/data/*.hex; do
    digits=$(sed 's/#.*//' "$hex" | tr -d ' \t\r\n')
    # shellcheck disable=SC2059
    printf "$(sed 's/../\\x&/g' <<<"$digits")" \
      >"$run/golden/$(basename "$hex" .hex)"
  done
}

# corpora_of NAME: the folders with inputs that are there before.
corpora_of() {
  echo "$PWD/fuzz/corpus/$1"
  case $1 in
    database | index | pair) echo "$run/golden" ;;
  esac
}

fuzz() {
  local name=$1 folder=$run/$1 new=corpus options corpora
  if [ "$mode" -lt 60 ]; then
    new=short
    rm -rf "$folder/short"
  fi
  mkdir -p "$folder/$new"
  mapfile -t corpora < <(corpora_of "$name")
  options=(-max_total_time="$mode" -max_len=4096 -timeout=25 -entropic=0
    -artifact_prefix="$run/finds/$name-" -print_final_stats=1)
  [ ! -e "fuzz/$name.dict" ] || options+=(-dict="$PWD/fuzz/$name.dict")
  # The tool's own output would hide the fuzzer's.
  [ "$name" != tool ] || options+=(-close_fd_mask=3)
  rm -f "$run/finds/$name-"*
  "$root/asan/bin/${name}_fuzz" "${options[@]}" "$folder/$new" \
    "${corpora[@]}" >"$folder/log" 2>&1
  echo $? >"$folder/exit_code"
}

stat_of() { sed -n "s/^stat::$2: *//p" "$run/$1/log" | tail -n 1; }

# Tells how a run ended; false when it found something.
report() {
  local name=$1 find finds=()
  for find in "$run/finds/$name-"*; do
    [ ! -e "$find" ] || finds+=("$find")
  done
  printf '[ SWEEP    ] fuzz %s: %s runs, %s per second, %s new units, %d finds\n' \
    "$name" "$(stat_of "$name" number_of_executed_units)" \
    "$(stat_of "$name" average_exec_per_sec)" \
    "$(stat_of "$name" new_units_added)" "${#finds[@]}"
  if [ ${#finds[@]} -eq 0 ] && [ "$(cat "$run/$name/exit_code")" = 0 ]; then
    return 0
  fi
  for find in "${finds[@]}"; do
    echo "found: $find"
    timeout 60 "$root/asan/bin/${name}_fuzz" "$find" 2>&1 |
      grep -a -E -m 4 -A 12 '^(does not hold|expected|.*ERROR:|.*runtime error:)' |
      cut -c 1-200
  done
  echo "whole output: $run/$name/log"
  return 1
}

fuzz_all() {
  local name result=0
  for name in "${targets[@]}"; do
    while [ "$(jobs -rp | wc -l)" -ge "$jobs" ]; do wait -n; done
    fuzz "$name" &
  done
  wait
  for name in "${targets[@]}"; do report "$name" || result=1; done
  return $result
}

# new_in FOLDER CORPUS: names of files that only the folder has, at most so many
# that the corpus stays small, of all sizes, small ones first.
new_in() {
  local room
  room=$((most_files - $(find "$2" -type f | wc -l)))
  find "$1" -type f -printf '%s %f\n' | sort -n | cut -d' ' -f2 |
    grep -vxFf <(ls "$2") |
    awk -v room=$room '{ name[NR] = $0 }
      END { for (i = 1; i <= NR; ++i)
              if (NR <= room || int(i * room / NR) != int((i - 1) * room / NR))
                print name[i] }'
}

# Adds what the checked-in corpus does not reach yet.
merge() {
  local name=$1 corpus=fuzz/corpus/$1 folder=$run/$1/merged file bytes
  rm -rf "$folder"
  mkdir -p "$folder" "$run/$name/corpus"
  cp "$corpus"/* "$folder/"
  "$root/asan/bin/${name}_fuzz" -merge=1 -max_len=4096 "$folder" \
    "$run/$name/corpus" >"$run/$name/merge.log" 2>&1 || return 1
  for file in $(new_in "$folder" "$corpus"); do
    bytes=$(cat "$corpus"/* "$folder/$file" | wc -c)
    [ "$bytes" -le $most_bytes ] || break
    cp "$folder/$file" "$corpus/"
  done
  echo "$corpus: $(find "$corpus" -type f | wc -l) files," \
    "$(cat "$corpus"/* | wc -c) bytes"
}

build || exit 1
if [ "$mode" = --merge ]; then
  for name in "${targets[@]}"; do merge "$name" || exit 1; done
else
  make_golden
  fuzz_all
fi
