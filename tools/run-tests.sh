#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test under Wine in a fresh throwaway prefix.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
"$top/tools/setup.sh"
"$top/tools/build.sh"
work=$(mktemp -d "${TMPDIR:-/tmp}/qvr-tests.XXXXXX")
trap 'rm -rf "$work"' EXIT
"$top/tools/new-prefix.sh" "$work/template"
export QVR_WINEPREFIX_TEMPLATE="$work/template"
cd "$top/build/win"
xvfb-run -a -s "-screen 0 1280x1024x24" ctest --output-on-failure -j "$(nproc)" "$@"
