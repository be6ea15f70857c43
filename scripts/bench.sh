#!/usr/bin/env bash
# Measures Quendle against the system's own tools, side by side, and prints the ratios. docs/performance.md records a
# run. BENCH_DISK and BENCH_MEMORY name folders on two different file systems (defaults: /var/tmp and /dev/shm).
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_missing python3
build release quendle
exec python3 "$root/benchmarks/bench.py" "$root/build/release/src/quendle"
