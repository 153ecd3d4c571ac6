#!/usr/bin/env bash
# fault-replay.sh [ID ...]
# Proves that the tests catch real faults: plants each single-line fault of tools/faults/faults.txt
# (or only the IDs given) into a scratch copy of the working tree, one at a time, builds, runs the
# tests the fault names and reports whether any of them failed. The tree itself is never touched.
# Prints one line a fault and closes with "faults: N caught, M missed, K not planted"; exits 1 if a
# fault was missed or could not be planted. Set FAULTS=file to replay another list.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
faults=${FAULTS:-$top/tools/faults/faults.txt}
"$top/tools/setup.sh"

work=$(mktemp -d "${TMPDIR:-/tmp}/qvr-faults.XXXXXX")
trap 'rm -rf "$work"' EXIT
tree=$work/tree
mkdir -p "$tree"
# Tracked and new files as they are now (uncommitted edits included), without builds or outputs.
(cd "$top" && git ls-files -co --exclude-standard -z | tar --null -T - -cf -) | tar -C "$tree" -xf -

echo "fault-replay: building the scratch tree"
cmake -S "$tree" -B "$tree/build" -DCMAKE_TOOLCHAIN_FILE="$tree/cmake/mingw-w64-x86_64.cmake" \
      -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$tree/build" -j "$(nproc)" >"$work/build.log" 2>&1 || { cat "$work/build.log"; exit 1; }
"$top/tools/new-prefix.sh" "$work/prefix"
export QVR_WINEPREFIX_TEMPLATE="$work/prefix"

field() { awk -F' @@ ' -v n="$1" '{ gsub(/^ +| +$/, "", $n); print $n }' <<<"$2"; }

# The tests of one fault, run with the fault planted: the names of those that failed, or nothing.
failing_tests() {
  (cd "$tree/build" &&
   xvfb-run -a -s "-screen 0 1280x1024x24" ctest -R "$1" -j "$(nproc)" --timeout 300 2>&1 || true) |
    sed -n 's/^[[:space:]]*[0-9]* - \([^ ]*\) .*/\1/p' | sort -u | tr '\n' ' '
}

caught=0 missed=0 unplanted=0
wanted=" $* "
while IFS= read -r line; do
  case "$line" in '#'*|'') continue ;; esac
  id=$(field 1 "$line"); file=$(field 2 "$line"); from=$(field 3 "$line"); to=$(field 4 "$line")
  tests=$(field 5 "$line")
  if [ $# -gt 0 ] && [[ "$wanted" != *" $id "* ]]; then continue; fi
  target=$tree/$file
  if [ ! -f "$target" ] || [ "$(grep -cF -- "$from" "$target")" != 1 ]; then
    printf '%s  NOT PLANTED  %s: the text is not there exactly once\n' "$id" "$file"
    unplanted=$((unplanted + 1)); continue
  fi
  cp -p "$target" "$work/original"
  FROM=$from TO=$to perl -0pi -e 's/\Q$ENV{FROM}\E/$ENV{TO}/' "$target"
  if ! cmake --build "$tree/build" -j "$(nproc)" >"$work/build.log" 2>&1; then
    printf '%s  NOT PLANTED  %s: does not build with the fault\n' "$id" "$file"
    unplanted=$((unplanted + 1))
  else
    failed=$(failing_tests "$tests")
    if [ -n "$failed" ]; then
      printf '%s  caught       %-28s by %s\n' "$id" "$file" "$failed"
      caught=$((caught + 1))
    else
      printf '%s  MISSED       %-28s (%s ran green)\n' "$id" "$file" "$tests"
      missed=$((missed + 1))
    fi
  fi
  cp -p "$work/original" "$target"
  touch "$target"
done <"$faults"
cmake --build "$tree/build" -j "$(nproc)" >/dev/null 2>&1 || true
echo "faults: $caught caught, $missed missed, $unplanted not planted"
[ "$missed" -eq 0 ] && [ "$unplanted" -eq 0 ]
