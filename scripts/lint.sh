#!/bin/bash
# cppcheck over the library and the tool, and clang-tidy over the tool; that
# over the library belongs to scripts/test.sh.  What cppcheck says and is not
# followed stands in cmake/cppcheck.txt with the reasons.
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

cmake --preset tidy -B "$root/tidy" >/dev/null
if cmake --build "$root/tidy" --target tidy_tool >"$root/cppcheck/tidy.log" 2>&1; then
  echo "[ SWEEP    ] clang-tidy over the tool: no findings"
else
  grep 'error:' "$root/cppcheck/tidy.log" | sort -u
  exit 1
fi
