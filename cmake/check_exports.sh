#!/bin/bash
# check_exports.sh [--update] linux|windows LIBRARY LIST
#
# Compares what the built library exports with the checked-in list.  With
# --update, rewrites the list for that system instead; run it on both systems.
#
# The list holds demangled names in one form for both systems:
#   - std::size_t is "unsigned long" on one system and "unsigned long long" on
#     the other: both are written "unsigned long";
#   - the C library's stream type is written FILE.
# A name that only one system exports has that system in front.
set -euo pipefail
export LC_ALL=C

update=false
if [ "$1" = --update ]; then
  update=true
  shift
fi
system=$1 library=$2 list=$3
nm=${NM:-nm} objdump=${OBJDUMP:-objdump}

exported_symbols() {
  if [ "$system" = linux ]; then
    "$nm" --dynamic --defined-only --format=posix "$library" | cut -d' ' -f1
  else
    # The names of the export table, one a line behind their ordinals.
    "$objdump" -p "$library" | sed -n '/^\[Ordinal\/Name Pointer\]/,/^$/p' |
      sed -n -e 1d -e 's/^[[:space:]]*\[.*[] ]\([^] ]*\)$/\1/p' | tr -d '\r'
  fi
}

one_form() {
  c++filt | sed \
    -e 's/unsigned long long/unsigned long/g' \
    -e 's/\b_IO_FILE\b/FILE/g' -e 's/\b_iobuf\b/FILE/g' |
    sort -u
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

exported_symbols | one_form >"$work/actual"
if [ ! -s "$work/actual" ]; then
  echo "$library exports nothing" >&2
  exit 1
fi

# names_of SYSTEM: what the list says about that system.
names_of() {
  [ -e "$list" ] || return 0
  sed -e '/^#/d' -e '/^$/d' -e "s/^$1: //" -e '/^\(linux\|windows\): /d' \
    "$list" | sort -u
}

names_of "$system" >"$work/expected"

if $update; then
  if [ "$system" = linux ]; then other=windows; else other=linux; fi
  names_of "$other" >"$work/other"
  {
    echo '# What the shared library exports.  Written by the build target'
    echo '# update_exports, once on each system; see check_exports.sh.'
    comm -12 "$work/actual" "$work/other"
    comm -23 "$work/actual" "$work/other" | sed "s/^/$system: /"
    comm -13 "$work/actual" "$work/other" | sed "s/^/$other: /"
  } >"$work/list"
  cp "$work/list" "$list"
  exit 0
fi

if ! diff -u --label "$list" --label "$library" \
  "$work/expected" "$work/actual"; then
  echo "The exported symbols have changed.  If that is meant, build the" >&2
  echo "target update_exports on both systems." >&2
  exit 1
fi
echo "$(wc -l <"$work/actual") exported symbols, all in the list"
