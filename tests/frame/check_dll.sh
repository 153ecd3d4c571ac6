#!/usr/bin/env bash
# The spooler loads UIQVRPOS.dll: it must export exactly DllGetClassObject and DllCanUnloadNow and
# import nothing but system DLLs (no libstdc++-6, libgcc_s or libwinpthread-1 beside it).
set -euo pipefail
dll=$1
expected_version=$2
dump=$(x86_64-w64-mingw32-objdump -p "$dll")
exports=$(printf '%s\n' "$dump" | sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' | grep -E '^\s+\[' | awk '{print $NF}' | sort | tr '\n' ' ')
if [ "$exports" != "DllCanUnloadNow DllGetClassObject " ]; then
  echo "unexpected exports: $exports"; exit 1
fi
imports=$(printf '%s\n' "$dump" | awk '/DLL Name:/ {print tolower($3)}' | sort -u)
echo "imports: $(echo $imports)"
for dll_name in $imports; do
  case "$dll_name" in
    kernel32.dll|user32.dll|gdi32.dll|advapi32.dll|winspool.drv|comctl32.dll|shell32.dll|ole32.dll|msvcrt.dll) ;;
    api-ms-win-*) ;;
    *) echo "non-system import: $dll_name"; exit 1 ;;
  esac
done
version=$(strings -el "$dll" | grep -A1 -x 'FileVersion' | tail -1)
[ "$version" = "$expected_version" ] || { echo "FileVersion is '$version'"; exit 1; }
echo "2 exports, system imports only, version $version"
