#!/bin/bash
# install-packages.sh [SECTION...]
#
# Installs the packages of packages.txt that are missing: those of the named
# sections, or all.  Where none is missing, it needs neither a network nor root.
set -euo pipefail
cd "$(dirname "$0")"

sections=" $* "
wanted=()
section=
while read -r word _; do
  case $word in
    '' | '#'*) ;;
    '['*']') section=${word:1:-1} ;;
    *) [[ $# -eq 0 || $sections == *" $section "* ]] && wanted+=("$word") ;;
  esac
done <packages.txt

missing=()
for package in "${wanted[@]}"; do
  status=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
  [ "$status" = 'install ok installed' ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "Missing packages: ${missing[*]}" >&2
    echo "Run this as root, or install sudo." >&2
    exit 1
  fi
  as_root=(sudo)
fi

echo "Installing ${missing[*]}"
# By env, because sudo does not pass the environment on.
as_root+=(env DEBIAN_FRONTEND=noninteractive)
"${as_root[@]}" apt-get update -q
"${as_root[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
