#!/usr/bin/env bash
# Installs whatever Debian packages of tools/apt-packages.txt are missing (idempotent).
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
missing=()
while read -r pkg; do
  case "$pkg" in ''|'#'*) continue ;; esac
  dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q 'install ok installed' || missing+=("$pkg")
done < "$here/apt-packages.txt"
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}" >/dev/null
fi
