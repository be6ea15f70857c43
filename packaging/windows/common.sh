# Sourced by the scripts that build for Windows: what they need beside the packages of scripts/common.sh, and where the
# libraries for Windows are kept.
. "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

export QUENDLE_WINDOWS_DEPS=${QUENDLE_WINDOWS_DEPS:-$HOME/.cache/quendle/windows}
windows=$root/packaging/windows
packages+=(gcc-mingw-w64-x86-64-posix g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 icoutils)
# To run what was built: scripts/wine.sh makes the Japanese locale that decides on the code page.
wine_packages=(wine64 locales)
