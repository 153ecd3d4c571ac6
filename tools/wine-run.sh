#!/usr/bin/env bash
# Runs one Windows program under Wine for ctest. The prefix comes from QVR_WINEPREFIX_TEMPLATE:
# each program gets a fresh copy of it, so no test sees what another one stored.
set -u
if [ -n "${QVR_WINEPREFIX_TEMPLATE:-}" ]; then
  prefix=$(mktemp -d "${TMPDIR:-/tmp}/qvr-wine.XXXXXX")
  cp -a "$QVR_WINEPREFIX_TEMPLATE/." "$prefix/"
  export WINEPREFIX="$prefix"
  cleanup() { WINEPREFIX="$prefix" wineserver -k >/dev/null 2>&1; rm -rf "$prefix"; }
  trap cleanup EXIT
elif [ -z "${WINEPREFIX:-}" ]; then
  echo "wine-run.sh: set QVR_WINEPREFIX_TEMPLATE (tools/run-tests.sh does) or WINEPREFIX" >&2
  exit 2
fi
export WINEDEBUG=${WINEDEBUG:--all}
wine "$@"
rc=$?
exit $rc
