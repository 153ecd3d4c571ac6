#!/usr/bin/env bash
# Prints the size of the tests against the size of the plug-in, in non-blank C++ lines:
# tests/ against the DLL's own sources (oemui, settings, events, pages, imaging). Tools and
# resources count on neither side. The project keeps the tests at about a quarter to a third.
set -euo pipefail
cd "$(dirname "$0")/.."
lines() { find "$@" -type f \( -name '*.cpp' -o -name '*.h' \) -print0 | xargs -0 cat | grep -cv '^[[:space:]]*$'; }
product=$(lines oemui settings events pages imaging)
tests=$(lines tests)
awk -v p="$product" -v t="$tests" 'BEGIN { printf "product %d lines, tests %d lines, tests/product %.2f\n", p, t, t / p }'
