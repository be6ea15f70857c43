#!/usr/bin/env bash
# Photographs the windows in their states into docs/images/ (or a folder that is given), under an X server and a window manager
# of its own: screenshots.sh [FOLDER [SCALE]]
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
install_missing pictures
build release quendle

out=$(mkdir -p "${1:-$root/docs/images}" && cd "${1:-$root/docs/images}" && pwd)
work=$(mktemp -d)
export HOME=$work/home XDG_RUNTIME_DIR=$work/run QT_SCALE_FACTOR=${2:-1}
unset WAYLAND_DISPLAY XDG_CONFIG_HOME QT_QPA_PLATFORM
mkdir -p "$HOME" "$work/in" "$work/out" "$work/settings"
mkdir -m 700 "$XDG_RUNTIME_DIR"
. "$(dirname "${BASH_SOURCE[0]}")/window_driver.sh"

start() {
  "$root/build/release/src/quendle" --settings "$work/settings" "$@" >"$work/log" 2>&1 &
  program=$!
}

# The list of profiles, the editor, the tester and About, from the first start on.
mkdir "$work/fresh"
"$root/build/release/src/quendle" --settings "$work/fresh" >"$work/log" 2>&1 &
program=$!
await 'Quendle [0-9]'
shoot main-empty
press Insert
await 'プロファイル追加'
xdotool type --delay 30 photos
press Return
await 'photos'
shoot edit-new
stop

cat >"$work/settings/items.ini" <<END
[Archives]
Pattern=.*\\.zip
ExtractTo=$work/out
MoveTo=$work/out/done
ID=1
Action=3
SmartRename=3
SmartMakeDir=1
Exclude=.*\\.bak
OpenFile=readme.txt
[Photos]
Pattern=photos.*
CopyTo=$work/out/photos
ID=1
Action=4
SmartRename=2
[Zip]
Pattern=photos_[0-9]+\\.zip
MoveTo=$work/out/zip
ID=1
Action=2
END
printf '[General]\nConfirmAlways=1\nShowResult=1\nOpenDir=0\nAction=2\nMoveTo=%s\n' "$work/out" >"$work/settings/mover.ini"
(cd "$work" && mkdir album && echo one >album/readme.txt && echo two >album/a.bak && zip -qr in/photos_01.zip album)
echo text >"$work/in/notes.txt"
mkdir "$work/in/photos 2026"

start
await 'Quendle [0-9]'
press ctrl+e
xdotool type --delay 30 photos_01.zip
sleep 0.5
shoot main
xdotool mousemove --window "$(xdotool getactivewindow)" 60 122 click --repeat 2 --delay 80 1
await 'Archives'
shoot edit
press Escape
await 'Quendle [0-9]'
press ctrl+t
await 'Regex'
xdotool type --delay 30 'photos.*zip'
press Tab
xdotool type --delay 30 photos_01.zip
sleep 0.3
shoot regex
press Escape
await 'Quendle [0-9]'
for settings in o t e; do
  press alt+o
  sleep 0.3
  press "$settings"
  sleep 1
  shoot "settings-$settings"
  press Escape
  sleep 0.3
done
press alt+h
sleep 0.3
press a
await 'About'
shoot about
stop

start "$work/in/photos_01.zip" "$work/in/notes.txt"
await '1/2'
shoot action-archive
press Escape
await '2/2'
shoot action-unregistered
press alt+e
sleep 0.3
press e
await 'プロファイル追加'
shoot input
stop

start "$work/in/photos 2026"
await 'フォルダ'
shoot action-folder
stop

mkdir -p "$work/out/notes.txt"
start "$work/in/notes.txt"
await '1/1'
press ctrl+Return
sleep 0.3
await 'Quendle'
shoot message
stop
rmdir "$work/out/notes.txt"

printf '[General]\nSmartRename=1\n' >"$work/settings/test.ini"
sed -i 's/^Action=2/Action=2\nSmartRename=1/' "$work/settings/mover.ini"
echo older >"$work/out/notes.txt"
start "$work/in/notes.txt"
await '1/1'
press ctrl+Return
sleep 0.3
await '上書き'
shoot overwrite
stop

start --profile Archives "$work/in/photos_01.zip"
await '1/1'
press ctrl+Return
await '解凍結果'
shoot result
stop

# A copy that takes long enough to be looked at.
head -c 3G /dev/zero >"$work/in/large.bin"
printf '[Large]\nPattern=large.*\nCopyTo=%s\nID=1\nAction=4\n' "$work/out" >"$work/settings/items.ini"
start "$work/in/large.bin"
await '1/1'
press ctrl+Return
await '処理中'
shoot progress
press Escape
stop
