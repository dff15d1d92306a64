#!/bin/bash
# Lays out every source file with clang-format.
set -euo pipefail
cd "$(dirname "$0")/.."
formatter=$(command -v clang-format-14 || command -v clang-format)
find include ztypes platform schema table base interp cli tests bench fuzz \
  examples \( -name '*.h' -o -name '*.cpp' \) -print0 |
  xargs -0 "$formatter" -i
