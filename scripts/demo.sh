#!/bin/bash
# A tour: installs what is missing, builds the release, makes the example
# database from its script with the tool, shows it in several languages and
# runs the example host program.
#
# TABWERK_BUILD_ROOT names another folder than build/.
set -euo pipefail
cd "$(dirname "$0")/.."

root=${TABWERK_BUILD_ROOT:-build}

scripts/install-packages.sh build

step() { printf '\n== %s\n' "$1"; }
# Shows a command as one would type it, and runs it.
show() {
  printf '$ %s\n' "${*/#$bin\//}"
  "$@"
}

step "Building the release"
mkdir -p "$root/logs"
log=$root/logs/demo.log
if ! { cmake --preset release -B "$root/release" &&
  cmake --build "$root/release" -- --quiet; } >"$log" 2>&1; then
  tail -n 40 "$log" >&2
  exit 1
fi
bin=$(cd "$root/release/bin" && pwd)

# A copy, because the paths in the scripts are relative to the working folder.
geo=$root/demo
rm -rf "$geo"
cp -R examples/reference "$geo"

step "Making the databases from their scripts"
show "$bin/tabwerk" build geo.script -C "$geo"
show "$bin/tabwerk" build user.script -C "$geo"
show "$bin/tabwerk" info "$geo/geo.db" "$geo/GEO.UDB"

languages=(English German French Greek Arabic Japanese Spanish)
for number in "${!languages[@]}"; do
  step "Territories in ${languages[number]}"
  show "$bin/tabwerk" show "$geo/geo.db" -t TERRITORY --language "$number" \
    --limit 5
done

step "The example host program"
show "$bin/tabwerk_host" "$geo"
