#!/usr/bin/env bash
# Measures Quendle against other tools, side by side, and prints the ratios: `bench.sh` all, `bench.sh files` moving and
# copying, `bench.sh archives` extraction. docs/performance.md records a run. BENCH_DISK and BENCH_MEMORY name folders on
# two different file systems (defaults: /var/tmp and /dev/shm).
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

what=${1:-all}
case $what in all | files | archives) ;; *) echo "usage: bench.sh [files|archives]" >&2; exit 2 ;; esac
install_missing python3
[ "$what" = files ] || install_missing python3 zip unzip 7zip gcab cabextract libarchive-tools lhasa unar
export PYTHONDONTWRITEBYTECODE=1
build release quendle
[ "$what" = archives ] || python3 "$root/benchmarks/bench.py" "$root/build/release/src/quendle"
[ "$what" = files ] || python3 "$root/benchmarks/bench_archives.py" "$root/build/release/src/quendle"
