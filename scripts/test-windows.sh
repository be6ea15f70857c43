#!/usr/bin/env bash
# Installs MinGW and Wine, builds Quendle for Windows and its tests, and runs the tests under Wine with a Japanese code
# page. Where Qt for Windows is there (packaging/windows/dependencies.sh --windows), the windows are built, driven and
# photographed before. Arguments go to ctest (-R NAME, say).
. "$(dirname "${BASH_SOURCE[0]}")/../packaging/windows/common.sh"

install_missing wine
"$windows/dependencies.sh"
build windows all
# The windows are there when Qt is.
if [ -f "$root/build/windows/src/modules/QuendleWindows.dll" ]; then
  "$root/scripts/windows-pictures.sh" "$root/build/windows-pictures"
fi
# Wine's folder, server and services are there before the tests: these start at the same time, a server that is about to end
# would fail one of them, and services that one of them started would keep its output open.
# For the same reason the folder is a new one: in an old one nothing of that is started beforehand.
export WINEPREFIX=$root/build/wine
mkdir -p "$WINEPREFIX"
/usr/lib/wine/wineserver -k -w || true
rm -rf "$WINEPREFIX"
mkdir "$WINEPREFIX"
trap '/usr/lib/wine/wineserver -k || true' EXIT
/usr/lib/wine/wineserver -p
timeout 300 "$root/scripts/wine.sh" wineboot -i >/dev/null 2>&1
cd "$root"
# Wine also fails to start a program for another one now and then. A test that did not pass is tried once more: a fault of
# the program's own is there each time.
ctest --preset windows --parallel "$(nproc)" --repeat until-pass:2 "$@"
