#!/usr/bin/env bash
# Runs a Win32 program under Wine in a prefix of its own (.wine/ in the checkout, or $QUILLON_WINEPREFIX), without a
# display and without Wine's chatter. The prefix is made on first use.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${QUILLON_WINEPREFIX:-$root/.wine} WINEARCH=win32 WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
unset DISPLAY WAYLAND_DISPLAY
# Several tests may start at once: one of them makes the prefix, the others wait.
if [ ! -f "$WINEPREFIX/.ready" ]; then
  mkdir -p "$WINEPREFIX"
  (
    flock 9
    if [ ! -f "$WINEPREFIX/.ready" ]; then
      wineboot --init >/dev/null 2>&1 </dev/null
      wineserver --wait
      touch "$WINEPREFIX/.ready"
    fi
  ) 9>"$WINEPREFIX.lock"
fi
# The first program in a prefix brings up Wine's services, which hold on to its output for as long as any program runs: a
# test would seem to last that long. So they are brought up apart.
if ! wineserver -k0 2>/dev/null; then wineboot >/dev/null 2>&1 </dev/null; fi
exec wine "$@"
