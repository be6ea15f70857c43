#!/usr/bin/env bash
# Installs MinGW and Wine, builds Quendle for Windows and its tests, and runs the tests under Wine with a Japanese code
# page. Where Qt for Windows is there (packaging/windows/dependencies.sh --windows), the windows are built, driven and
# photographed before. Arguments go to ctest (-R NAME, say).
. "$(dirname "${BASH_SOURCE[0]}")/../packaging/windows/common.sh"

install_missing "${wine_packages[@]}"
"$windows/dependencies.sh"
build windows all
# The windows are there when Qt is.
if [ -f "$root/build/windows/src/modules/QuendleWindows.dll" ]; then
  "$root/scripts/windows-pictures.sh" "$root/build/windows-pictures"
fi
# One start makes the folder of Wine, which tests that start at the same time would get in each other's way with.
timeout 300 "$root/scripts/wine.sh" wineboot -i >/dev/null 2>&1
# The server would go on for some seconds behind the last program and keep the folder.
trap 'WINEPREFIX=${WINEPREFIX:-$root/build/wine} /usr/lib/wine/wineserver -k || true' EXIT
cd "$root"
ctest --preset windows --parallel "$(nproc)" "$@"
