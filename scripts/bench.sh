#!/usr/bin/env bash
# Measures Quendle against other tools, side by side, and prints the ratios: `bench.sh` all, `bench.sh files` moving and
# copying, `bench.sh archives` extraction, `bench.sh windows` the start of the windows. `bench.sh curves` measures how the time
# grows and draws the pictures of docs/performance.md anew, which records a run of all. BENCH_DISK and BENCH_MEMORY name
# folders on two different file systems (defaults: /var/tmp and /dev/shm), BENCH_RAR a folder with RAR archives: nothing free
# makes them.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

what=${1:-all}
case $what in all | files | archives | windows | curves) ;; *) echo "usage: bench.sh [files|archives|windows|curves]" >&2; exit 2 ;; esac
install_missing bench
wants() { [ "$what" = all ] || [ "$what" = "$1" ]; }
if wants archives; then install_missing archivers; fi
export PYTHONDONTWRITEBYTECODE=1
build release quendle
if wants files; then python3 "$root/benchmarks/bench.py" "$root/build/release/src/quendle"; fi
if wants archives; then
  python3 "$root/benchmarks/bench_archives.py" "$root/build/release/src/quendle"
  if [ -n "${BENCH_RAR:-}" ]; then python3 "$root/benchmarks/bench_rar.py" "$root/build/release/src/quendle" "$BENCH_RAR"; fi
fi
if [ "$what" = curves ]; then python3 "$root/benchmarks/curves.py" "$root/build/release/src/quendle"; fi
if wants windows; then
  install_missing display
  cmake --preset release -S "$root" >/dev/null
  build release first_paint
  build release bare_window
  "$root/benchmarks/bench_windows.sh" "$root/build/release"
fi
