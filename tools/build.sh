#!/usr/bin/env bash
# Builds the Windows DLL, its tools and tests into build/win.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
cmake -S "$top" -B "$top/build/win" -DCMAKE_TOOLCHAIN_FILE="$top/cmake/mingw-w64-x86_64.cmake" \
      -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$top/build/win" -j "$(nproc)"
