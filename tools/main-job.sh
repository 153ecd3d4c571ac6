#!/usr/bin/env bash
# The main job: builds everything, prepares a demo Wine prefix with a sample printer, and opens its
# Printing Preferences and Printer Properties through the driver-core stand-in in every page
# language, saving a PNG of every page and dialog under out/screenshots/. With a display the English
# Printing Preferences then stay open for you to use; without one everything runs under Xvfb.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
out="$top/out"
prefix="$out/demo-prefix"
shots="$out/screenshots"
printer="ORLIVEX QM-101"
host="$top/build/win/bin/oemhost.exe"
export WINEPREFIX="$prefix" WINEDEBUG=-all

# Installs the demo printer and photographs both sheets in every page language.
tour() {
  local winshots
  winshots=$(winepath -w "$shots")
  wine "$host" prepare-fonts
  wine "$host" install "$printer" "ORLIVEX QM-101" "80 x 297 mm[R80]"
  # language tag, Wine locale (it sets Wine's user-interface language), page-language index
  while read -r tag locale index; do
    LC_ALL=$locale wine "$host" document "$printer" --screenshots "$winshots" --name "$tag" --language-index "$index"
    LC_ALL=$locale wine "$host" device "$printer" --screenshots "$winshots" --name "$tag"
  done <<'LANGS'
en en_US.UTF-8 0
de de_DE.UTF-8 1
fr fr_FR.UTF-8 2
es es_ES.UTF-8 3
it it_IT.UTF-8 4
pl pl_PL.UTF-8 5
hu hu_HU.UTF-8 5
ru ru_RU.UTF-8 5
ko ko_KR.UTF-8 5
ja ja_JP.UTF-8 5
zh-CN zh_CN.UTF-8 5
zh-TW zh_TW.UTF-8 5
LANGS
  wineserver -w
}

if [ "${1:-}" = "--tour" ]; then   # this script again, inside Xvfb
  tour
  exit 0
fi

"$top/tools/setup.sh"
"$top/tools/build.sh"
mkdir -p "$out"
rm -rf "$shots"; mkdir -p "$shots"
echo "main job: preparing the demo Wine prefix in $prefix"
"$top/tools/new-prefix.sh" "$prefix"
# The driver ships its configuration in the system directory and its paper list in the model's folder.
cp "$top/samples/QVRPOS_Config.QVR" "$prefix/drive_c/windows/system32/"
mkdir -p "$prefix/drive_c/windows/QM-101"
cp "$top/samples/AddCustomPaper.txt" "$prefix/drive_c/windows/QM-101/"

if [ -n "${DISPLAY:-}" ]; then
  tour
  echo "main job: opening the Printing Preferences of \"$printer\"; close the window to finish"
  LC_ALL=en_US.UTF-8 wine "$host" document "$printer" --language-index 0
else
  xvfb-run -a -s "-screen 0 1280x1024x24" "$0" --tour
fi
wineserver -k 2>/dev/null || true
count=$(find "$shots" -name '*.png' | wc -l)
echo "main job: $count screenshots in $shots"
echo "main job: the plug-in's log is in $prefix/drive_c/temp/QVRPOS"
