#!/usr/bin/env bash
# new-prefix.sh DIR: creates a throwaway Wine prefix in DIR, ready for windows without a window manager.
set -euo pipefail
dir=$1
rm -rf "$dir"; mkdir -p "$dir"
export WINEPREFIX="$dir" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
wineboot -i >/dev/null 2>&1
# Unmanaged windows: without a window manager Wine otherwise waits about 2 s for every hidden window.
wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null 2>&1
wineserver -w
