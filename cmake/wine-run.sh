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

(
  flock 9
  # Fails when the server of this prefix is running already.
  if wineserver -p60 9>&-; then
    wineboot --init 9>&- || true
  fi
) 9>"$WINEPREFIX/.start.lock" </dev/null >/dev/null 2>&1

exec wine "$@"
