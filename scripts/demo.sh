#!/usr/bin/env bash
# Shows Quendle at work: demo.sh PROGRAM. Everything happens in a temporary folder that is removed afterwards.
set -euo pipefail
program=$1
home=$(mktemp -d "${TMPDIR:-/tmp}/quendle-demo-XXXXXX")
trap 'rm -rf "$home"' EXIT
mkdir "$home/settings" "$home/inbox" "$home/texts" "$home/inbox/Holiday 2025"

# The settings files hold CP932 text with CR LF line ends, as on a Japanese Windows.
ini() { sed 's/$/\r/' | iconv -f UTF-8 -t CP932 >"$home/settings/$1"; }
ini mover.ini <<INI
[General]
MoveTo=$home/elsewhere
CopyTo=$home/backup
SmartRename=3
INI
ini items.ini <<INI
[テキスト]
Pattern=.*\.txt
MoveTo=$home/texts
ID=1
Action=2
SmartRename=3
[Photos]
Pattern=.*\.(jpe?g|png)
MoveTo=$home/photos
ID=1
Action=6
SmartRename=3
[Holidays]
Pattern=Holiday .*
MoveTo=$home/albums
ID=1
Action=2
[Every text of 2025]
Pattern=.*2025.*\.txt
ID=1
Action=4
INI

echo "first" >"$home/texts/notes.txt"
echo "second" >"$home/inbox/notes.txt"
echo "third" >"$home/inbox/report 2025.txt"
echo "picture" >"$home/inbox/cat.JPG"
echo "beach" >"$home/inbox/Holiday 2025/beach.png"
echo "strange" >"$home/inbox/unknown.xyz"
touch -d '2003-11-07 12:00' "$home/inbox/notes.txt"

paths=("$home/inbox/notes.txt" "$home/inbox/cat.JPG" "$home/inbox/Holiday 2025" "$home/inbox/report 2025.txt"
       "$home/inbox/unknown.xyz" "$home/inbox/gone.txt")
# The temporary folder's name would only be noise.
show() {
  local status=0
  echo
  echo "\$ quendle $*"
  "$program" "$@" "${paths[@]}" >"$home/said" 2>&1 || status=$?
  sed "s#$home##g" "$home/said"
  rm "$home/said"
  [ "$status" -eq 1 ]  # some of the files are there to show what is left undone
}
files() { (cd "$home" && find . -path ./settings -prune -o -type f -print | sort | sed 's#^\./#  #'); }

echo "Files before:"
files
cd "$home"
export QUENDLE_HOME=$home/settings
show --dry-run
show --batch
echo
echo "Files after (notes.txt was taken, so the second one got its date):"
files
