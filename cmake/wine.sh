#!/bin/sh
# Runs a Windows program: quietly, without a display, in a Wine prefix of the build folder's own.
# The caller may choose another prefix with WINEPREFIX.
here=$(cd "$(dirname "$0")/.." && pwd)
export WINEPREFIX="${WINEPREFIX:-$here/build/wine}"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="winemenubuilder.exe,mscoree,mshtml=d"
export WINEARCH=win64
unset DISPLAY WAYLAND_DISPLAY
wine=$(command -v wine64 || command -v wine || echo /usr/lib/wine/wine64)

# Programs may start side by side; the first one makes the prefix, the others wait for it.
if [ ! -f "$WINEPREFIX/ready" ]; then
    mkdir -p "$WINEPREFIX"
    (
        flock 9
        if [ ! -f "$WINEPREFIX/ready" ]; then
            "$wine" wineboot -i >/dev/null 2>&1 && touch "$WINEPREFIX/ready"
        fi
    ) 9>"$WINEPREFIX.lock"
fi
exec "$wine" "$@"
