#!/usr/bin/env bash
# Drives the windows of Quendle for Windows under Wine, and fails when one does not come or an archive is not unpacked;
# their pictures go to docs/images/ or a folder that is given: windows-pictures.sh [FOLDER]
. "$(dirname "${BASH_SOURCE[0]}")/../packaging/windows/common.sh"
install_missing pictures wine
build windows quendle

out=$(mkdir -p "${1:-$root/docs/images}" && cd "${1:-$root/docs/images}" && pwd)
work=$(mktemp -d)
export WINEPREFIX=$work/wine
. "$(dirname "${BASH_SOURCE[0]}")/window_driver.sh"
leave() {
  /usr/lib/wine/wineserver -k || true
  finish
}
trap leave EXIT
# Only now: Wine's desktop keeps to the display that it began with, or to none.
timeout 300 "$root/scripts/wine.sh" wineboot -i >/dev/null 2>&1

quendle() { exec "$root/scripts/wine.sh" 'C:\Quendle\Quendle.exe' "$@"; }
start() {
  quendle "$@" >"$work/log" 2>&1 &
  program=$!
}

# Of the windows that lie on each other. Wine lets the window manager decide which has the keys.
topmost() { xprop -root _NET_CLIENT_LIST_STACKING | sed 's/.*[ ,]//'; }

# As the packed program is laid out, and one profile with Japanese folders for an archive with Japanese names.
drive=$WINEPREFIX/drive_c
mkdir -p "$drive/Quendle/modules" "$drive/settings" "$drive/in" "$work/日本"
cp "$root/build/windows/src/Quendle.exe" "$drive/Quendle"
cp "$root"/build/windows/src/modules/*.dll "$drive/Quendle/modules"
iconv -f UTF-8 -t CP932 >"$drive/settings/items.ini" <<'END'
[文書]
Pattern=.*\.txt
MoveTo=C:\文書
ID=1
Action=2
[書庫]
Pattern=.*\.zip
ExtractTo=C:\展開
MoveTo=C:\済
ID=1
Action=3
SmartMakeDir=1
END
printf '[General]\nConfirmAlways=1\nShowResult=1\n' >"$drive/settings/mover.ini"
echo one >"$work/日本/表示.txt"
(cd "$work" && zip -qr "$drive/in/写真.zip" 日本)

start --settings 'C:\settings'
await 'Quendle [0-9]'
shoot windows-list
press Home Return
await '文書\|書庫'
shoot windows-editor
stop

# A copy with other settings lies on the first one's window until a second start fetches that to the front.
start --settings 'C:\settings' 'C:\in\写真.zip'
await '1/1'
shoot windows-action
(quendle --settings 'C:\other') >/dev/null 2>&1 &
other=$!
await 'Quendle [0-9]'
[ "$(xdotool getwindowname "$(topmost)")" != '1/1 - 書庫' ]
(quendle --settings 'C:\settings' 'C:\in\写真.zip') >/dev/null 2>&1 || true
sleep 1
[ "$(xdotool getwindowname "$(topmost)")" = '1/1 - 書庫' ]
kill "$other"
await '1/1'
press ctrl+Return
await '解凍結果'
shoot windows-result
press Escape
for _ in $(seq 100); do
  [ ! -f "$drive/済/写真.zip" ] || break
  sleep 0.1
done
cmp "$work/日本/表示.txt" "$drive/展開/表示.txt"
[ -f "$drive/済/写真.zip" ]
