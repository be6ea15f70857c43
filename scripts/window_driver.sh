# shellcheck shell=bash
# Sourced by the scripts that photograph windows: an X server and a window manager of their own, and what drives a window.
# $work is a folder to work in and $out the one for the pictures; the program is started in the background, its process
# kept in $program and its output in $work/log.
display_file=$work/display
Xvfb -displayfd 3 -screen 0 1600x1200x24 -nolisten tcp 3>"$display_file" 2>/dev/null &
server=$!
manager=
program=
finish() {
  for process in $program $manager $server; do kill "$process" 2>/dev/null || true; done
  rm -rf "$work"
}
trap finish EXIT
until [ -s "$display_file" ]; do sleep 0.1; done
DISPLAY=:$(cat "$display_file")
export DISPLAY LC_ALL=C.UTF-8  # titles and names of files are Japanese
openbox >/dev/null 2>&1 &
manager=$!
until xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q window; do sleep 0.1; done
xdotool mousemove 5 5

# Waits until a window with a title like this has the focus and has been painted.
await() {
  local tries=0
  until xdotool getactivewindow getwindowname 2>/dev/null | grep -q -- "$1"; do
    tries=$((tries + 1))
    [ $tries -lt 100 ] || { echo "no window \"$1\" came" >&2; cat "$work/log" >&2; exit 1; }
    sleep 0.1
  done
  sleep 0.5
}
shoot() {
  import -window "$(xdotool getactivewindow)" "$out/$1.png"
  echo "$out/$1.png"
}
press() { xdotool key --delay 60 "$@"; }
stop() {
  kill "$program" 2>/dev/null || true
  wait "$program" 2>/dev/null || true
  program=
}
