#!/bin/bash
# wine-run.sh PREFIX PROGRAM [ARGUMENT...]
# wine-run.sh PREFIX --stop
#
# Runs a Windows program under Wine, without a display and in its own prefix,
# which is made when it is missing.
#
# The first program of a prefix starts Wine's server and services, which would
# keep that program's output open and so make a test runner wait for them.
# They are therefore started here, with their output closed, and stay a minute.
set -eu
mkdir -p "$1"
WINEPREFIX=$(cd "$1" && pwd)
shift
export WINEPREFIX
# Wine's errors: a program that it cannot start says nothing else.
export WINEDEBUG=${WINEDEBUG:--all,err+all}
# No offers to download components that nothing here needs; no display.
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml,winemenubuilder.exe=}
export WINEARCH=win64
unset DISPLAY WAYLAND_DISPLAY

if [ "$1" = --stop ]; then
  exec wineserver -k
fi

# Wine's loader lies at a low address, and the system puts a program's heap
# anywhere in the gigabyte behind it: once in thousands of times where Wine needs
# to map a page of its own, and the program ends before it begins.  So addresses
# are left in their order, where that is allowed.
in_order=()
if setarch -R true 2>/dev/null; then
  in_order=(setarch -R)
fi

(
  flock 9
  # Fails when the server of this prefix is running already.
  if wineserver -p60 9>&-; then
    "${in_order[@]}" wineboot --init 9>&- || true
  fi
) 9>"$WINEPREFIX/.start.lock" </dev/null >/dev/null 2>&1

exec "${in_order[@]}" wine "$@"
