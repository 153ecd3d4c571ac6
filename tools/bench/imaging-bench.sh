#!/usr/bin/env bash
# imaging-bench.sh [BUILD_DIR]: builds the native imaging benchmarks (Release) in BUILD_DIR
# (default build-imaging-native), runs the preview-pipeline and receipt-throughput benchmarks and,
# in the same run, netpbm's pamditherbw (-floyd, -dither8, -threshold) on the same receipt picture,
# and prints the figures with the ratios. Single thread throughout.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${1:-$root/build-imaging-native}
runs=${QVR_BENCH_RUNS:-15}

if [ ! -f "$build/CMakeCache.txt" ]; then
  cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
fi
cmake --build "$build" -j2 --target imaging_preview_bench imaging_receipt_bench >/dev/null
bin=$build/tools/native
work=$(mktemp -d "${TMPDIR:-/tmp}/imaging-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT

echo "== machine: $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2 | sed 's/^ //'), compiler: $(grep CMAKE_CXX_COMPILER: "$build/CMakeCache.txt" | cut -d= -f2)"
"$bin/imaging_preview_bench"
echo
"$bin/imaging_receipt_bench" "$work/receipt.pgm" "$runs" | tee "$work/ours.txt" | grep -v '^RESULT'
ours() { awk -v m="$1" '/^RESULT/ { split($2, a, "="); split($3, b, "="); if (a[2] == m) print b[2] }' "$work/ours.txt"; }

if ! command -v pamditherbw >/dev/null; then
  echo "netpbm's pamditherbw is not installed (apt-get install netpbm): no comparison"
  exit 0
fi
echo
pixels=$((576 * 4096))
median_seconds() {  # command... : median wall time of $runs runs, in seconds
  local times=()
  for _ in $(seq "$runs"); do
    local t0 t1
    t0=$(date +%s%N); "$@" >/dev/null; t1=$(date +%s%N)
    times+=($((t1 - t0)))
  done
  printf '%s\n' "${times[@]}" | sort -n | awk '{ a[NR] = $1 } END { printf "%.6f", a[int((NR + 1) / 2)] / 1e9 }'
}
io=$(median_seconds pamtopnm "$work/receipt.pgm")
echo "netpbm pamditherbw on the same picture (whole process, median of $runs runs; reading and writing alone: $(awk -v t="$io" 'BEGIN { printf "%.2f ms", t * 1000 }'))"
for mode in -floyd -dither8 -threshold; do
  t=$(median_seconds pamditherbw "$mode" "$work/receipt.pgm")
  rate=$(awk -v p="$pixels" -v t="$t" 'BEGIN { printf "%.1f", p / t / 1e6 }')
  net=$(awk -v p="$pixels" -v t="$t" -v io="$io" 'BEGIN { d = t - io; if (d <= 0) print "n/a"; else printf "%.1f", p / d / 1e6 }')
  printf '  pamditherbw %-11s %9s Mpx/s  (%7.3f ms; %s Mpx/s without reading and writing)\n' "$mode" "$rate" \
    "$(awk -v t="$t" 'BEGIN { printf "%.3f", t * 1000 }')" "$net"
  eval "netpbm_${mode#-}=$rate"
  eval "netpbm_net_${mode#-}=$net"
done
echo
echo "ratios (ours / netpbm, same run):"
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.1fx", a / b }'; }
echo "  Floyd-Steinberg (method 1)  / -floyd:     $(ratio "$(ours 1)" "$netpbm_floyd")   (goal >= 4x; $(ratio "$(ours 1)" "$netpbm_net_floyd") against -floyd without its reading and writing)"
echo "  three-row diffusion         / -floyd:     $(ratio "$(ours 5)" "$netpbm_floyd")"
echo "  Ordered Dither (method 2)   / -dither8:   $(ratio "$(ours 2)" "$netpbm_dither8")"
echo "  4x4 Matrix (method 3)       / -dither8:   $(ratio "$(ours 3)" "$netpbm_dither8")"
echo "  8x8 Matrix (method 4)       / -dither8:   $(ratio "$(ours 4)" "$netpbm_dither8")"
echo "  None (method 0)             / -threshold: $(ratio "$(ours 0)" "$netpbm_threshold")"
