#!/usr/bin/env bash
# Milliseconds from the start of the program to the first paint of its action window, beside those of bare Qt windows, and of an
# archive of many entries beside one of few, under an X server of its own: bench_windows.sh BUILD_FOLDER
set -euo pipefail
build=$1
work=$(mktemp -d)
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset 3>"$work/display" 2>/dev/null &
server=$!
finish() {
  kill "$server" 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT
until [ -s "$work/display" ]; do sleep 0.1; done
DISPLAY=:$(cat "$work/display")
export DISPLAY XDG_RUNTIME_DIR=$work
unset WAYLAND_DISPLAY QT_QPA_PLATFORM
mkdir "$work/settings"
printf '[Texts]\r\nPattern=.*\\.txt\r\nMoveTo=/nowhere\r\n[Archives]\r\nPattern=.*\\.zip\r\nExtractTo=/nowhere\r\nAction=1\r\n' >"$work/settings/items.ini"
printf '[General]\r\nConfirmAlways=1\r\n' >"$work/settings/mover.ini"
echo text >"$work/a.txt"
for count in 100 100000; do python3 "$(dirname "$0")/tiny_files.py" "$work/$count.zip" "$count"; done

for round in $(seq 0 20); do
  latin=$("$build/benchmarks/first_paint" "$build/benchmarks/bare_window")
  japanese=$("$build/benchmarks/first_paint" "$build/benchmarks/bare_window" 解凍・移動・コピー 'Noto Sans CJK JP')
  ours=$("$build/benchmarks/first_paint" "$build/src/quendle" --settings "$work/settings" "$work/a.txt" 2>/dev/null)
  few=$("$build/benchmarks/first_paint" "$build/src/quendle" --settings "$work/settings" "$work/100.zip" 2>/dev/null)
  many=$("$build/benchmarks/first_paint" "$build/src/quendle" --settings "$work/settings" "$work/100000.zip" 2>/dev/null)
  [ "$round" = 0 ] || echo "$latin $japanese $ours $few $many"  # the first warms up
done | awk '
  { latin[NR] = $1; japanese[NR] = $2; ours[NR] = $3; few[NR] = $4; many[NR] = $5 }
  END { n = asort(latin); asort(japanese); asort(ours); asort(few); asort(many)
        middle = int((n + 1) / 2)
        printf "first paint, median of %d: %.1f ms; a bare Qt window %.1f ms (%.2f), one with Japanese text %.1f ms (%.2f)\n",
               n, ours[middle], latin[middle], ours[middle] / latin[middle], japanese[middle],
               ours[middle] / japanese[middle]
        printf "of an archive of 100,000 entries %.1f ms, of 100 %.1f ms (%.2f)\n", many[middle], few[middle],
               many[middle] / few[middle] }'
