# shellcheck shell=bash
# Sourced by the scripts that build for Windows: what they need beside a build for this system, and where the libraries
# for Windows are kept.
. "$(dirname "${BASH_SOURCE[0]}")/../../scripts/common.sh"

[ "$distribution" = Debian ] || {
  echo "Quendle for Windows is built on Debian only: the libraries come from Debian's source packages" >&2
  exit 1
}
export QUENDLE_WINDOWS_DEPS=${QUENDLE_WINDOWS_DEPS:-$HOME/.cache/quendle/windows}
windows=$root/packaging/windows
groups+=(mingw)
