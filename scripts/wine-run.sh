#!/usr/bin/env bash
# Runs a Windows program of the build tree under Wine, quietly, in a prefix of the build folder's own.
set -eu
here=$(cd "$(dirname "$0")/.." && pwd)
export WINEPREFIX="${QVCL_WINEPREFIX:-$here/build/wineprefix}"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree=;mshtml=}"
unset DISPLAY
mkdir -p "$WINEPREFIX"
wine=$(command -v wine64 || command -v wine || echo /usr/lib/wine/wine64)
[ -x "$wine" ] || wine=/usr/lib/wine/wine64
exec "$wine" "$@"
