#!/bin/bash
# cppcheck over the library and the tool.  What it says and is not followed
# stands in cmake/cppcheck.txt with the reasons.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh

root=${TABWERK_BUILD_ROOT:-build}
mkdir -p "$root/cppcheck"
folders=(ztypes platform schema table base interp cli)
cppcheck --enable=warning,performance,portability --std=c++20 -q \
  -j "$(nproc)" --cppcheck-build-dir="$root/cppcheck" --error-exitcode=1 \
  -I include -I . --suppress=missingIncludeSystem \
  --suppressions-list=<(grep -v -e '^#' -e '^$' cmake/cppcheck.txt) \
  --template='{file}:{line}: {severity}: {message} [{id}]' "${folders[@]}"
files=$(find "${folders[@]}" -name '*.cpp' | wc -l)
echo "[ SWEEP    ] cppcheck: no findings in $files source files," \
  "$(grep -c '^[a-z].*:' cmake/cppcheck.txt) argued"
