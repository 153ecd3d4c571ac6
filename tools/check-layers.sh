#!/usr/bin/env bash
# The plug-in is built in layers, each using only those below it:
#   entry     oemui/intrface, oemui/dllentry: the COM face, dispatching into pages and events
#   pages     pages/ (property pages, dialogs, sheets)   |  events  events/ (printer and driver events)
#   settings  settings/ (printer data, configuration)    |  imaging imaging/ (preview pictures)
#   language  oemui/language
#   base      log, handles, module, themed, the plug-in contract, the record, resource ids, version
# Groups on one line are siblings and may not include each other. Prints every include that
# points up or sideways and fails if there is one.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
cd "$top"

group_of() {
  case "$1" in
    oemui/intrface.*|oemui/dllentry.*) echo "entry 5" ;;
    pages/*) echo "pages 4" ;;
    events/*) echo "events 4" ;;
    settings/dialog_info.*) echo "base 1" ;;
    settings/*) echo "settings 3" ;;
    imaging/*) echo "imaging 3" ;;
    oemui/language.*) echo "language 2" ;;
    oemui/*|resources/*|qvr_version.h) echo "base 1" ;;
    *) echo "outside 0" ;;
  esac
}

bad=0
checked=0
for file in oemui/*.cpp oemui/*.h settings/*.cpp settings/*.h events/*.cpp events/*.h pages/*.cpp pages/*.h \
            imaging/*.cpp imaging/*.h; do
  [ -e "$file" ] || continue
  read -r from_group from_level <<<"$(group_of "$file")"
  while IFS= read -r target; do
    read -r to_group to_level <<<"$(group_of "$target")"
    checked=$((checked + 1))
    if [ "$to_group" = outside ]; then
      echo "$file includes $target, which is not part of the plug-in"; bad=1
    elif [ "$to_group" != "$from_group" ] && [ "$to_level" -ge "$from_level" ]; then
      echo "$file ($from_group) includes $target ($to_group): an include may only point down"; bad=1
    fi
  done < <(sed -n 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*"\([^"]*\)".*/\1/p' "$file" |
           while read -r inc; do
             # Includes are written from the top of the tree, or beside the including file.
             if [ -e "$inc" ] || [ "$inc" = qvr_version.h ]; then echo "$inc"; else echo "$(dirname "$file")/$inc"; fi
           done)
done
[ "$bad" -eq 0 ] && echo "layers: $checked includes checked, none points up"
exit "$bad"
