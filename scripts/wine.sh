#!/usr/bin/env bash
# Runs a Windows program under Wine, in a folder of its own (WINEPREFIX, default: build/wine) and with the Japanese code
# page, under which the settings files are written: wine.sh PROGRAM.EXE [ARGUMENT...]
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$root/build/wine} WINEDEBUG=${WINEDEBUG:--all}
# What tests throw away goes into the folder, too, not into the trash of whoever runs them.
export XDG_DATA_HOME=$WINEPREFIX/data
mkdir -p "$XDG_DATA_HOME"
# No menu entries, no browser engine and no .NET for the folder.
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-winemenubuilder.exe=d;mscoree=d;mshtml=d}
# Wine knows the characters of file names from the locale, which few machines have: it is made here.
export LOCPATH=$root/build/locale
if [[ ! -d $LOCPATH/ja_JP.UTF-8 ]]; then
  mkdir -p "$LOCPATH"
  made=$(mktemp -d "$LOCPATH/XXXXXX")
  LC_ALL=C localedef -i ja_JP -f UTF-8 "$made/ja_JP.UTF-8"
  mv -T "$made/ja_JP.UTF-8" "$LOCPATH/ja_JP.UTF-8" 2> /dev/null || true # another one was faster
  rm -rf "$made"
fi
exec env LC_ALL=ja_JP.UTF-8 /usr/lib/wine/wine64 "$@"
