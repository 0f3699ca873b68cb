#!/usr/bin/env bash
# Runs a Win32 program under Wine in a prefix of its own (.wine/ in the checkout, or $QUILLON_WINEPREFIX), without a
# display and without Wine's chatter. The prefix is made on first use.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${QUILLON_WINEPREFIX:-$root/.wine} WINEARCH=win32 WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
unset DISPLAY WAYLAND_DISPLAY
# Several tests may start at once: one of them makes the prefix and brings Wine up, the others wait.
mkdir -p "$WINEPREFIX"
(
  flock 9
  if [ ! -f "$WINEPREFIX/.ready" ]; then
    wineboot --init >/dev/null 2>&1 </dev/null 9>&-
    wineserver --wait
    touch "$WINEPREFIX/.ready"
  fi
  # A server that ended with its last program could go just when the next one has found it. So it stays for a while,
  # $QUILLON_WINE_STAYS seconds. Wine's services are brought up apart from the program: they would hold on to its output.
  if ! wineserver -k0 2>/dev/null; then
    wineserver -p"${QUILLON_WINE_STAYS:-30}" >/dev/null 2>&1 </dev/null 9>&-
    wineboot >/dev/null 2>&1 </dev/null 9>&-
  fi
) 9>"$WINEPREFIX.lock"
exec wine "$@"
