#!/usr/bin/env bash
# Runs a Windows program under Wine, in a folder of its own (WINEPREFIX, default: build/wine) and with the Japanese code
# page, under which the settings files are written: wine.sh PROGRAM.EXE [ARGUMENT...]
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$root/build/wine} WINEDEBUG=${WINEDEBUG:--all} LC_ALL=ja_JP.UTF-8
# No menu entries, no browser engine and no .NET for the folder.
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-winemenubuilder.exe=d;mscoree=d;mshtml=d}
exec /usr/lib/wine/wine64 "$@"
