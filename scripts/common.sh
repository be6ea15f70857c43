# shellcheck shell=bash
# Sourced by the scripts: where things are, and installing what a build needs.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# Debian, Fedora or Arch, also for what descends from them; empty for others. QUENDLE_OS_RELEASE names another
# description of the system than its own.
find_distribution() (
  . "${QUENDLE_OS_RELEASE:-/etc/os-release}" 2>/dev/null || true
  for name in ${ID:-} ${ID_LIKE:-}; do
    case $name in
      debian | ubuntu) echo Debian && return ;;
      fedora) echo Fedora && return ;;
      arch) echo Arch && return ;;
    esac
  done
)
distribution=$(find_distribution)

# The groups of scripts/packages.txt whose packages are asked for; what is sourced after this adds its own.
groups=(build)

is_installed() {
  case $distribution in
    Debian) [ "$(dpkg-query -W -f '${db:Status-Abbrev}' "$1" 2>/dev/null | cut -c1-2)" = ii ] ;;
    Fedora) rpm -q --whatprovides "$1" >/dev/null 2>&1 ;;
    Arch) pacman -T "$1" >/dev/null 2>&1 ;;
  esac
}

# The packages of the groups as the distribution calls them, each once; of those that it does not have Debian's name with
# a "-" before it.
packages_of() {
  awk -v distribution="$distribution" -v groups=" $* " '
    BEGIN { column = distribution == "Arch" ? 4 : distribution == "Fedora" ? 3 : 2 }
    /^#/ || !index(groups, " " $1 " ") { next }
    { name = $column == "-" ? "-" $2 : $column }
    !told[name]++ { print name }' "$root/scripts/packages.txt"
}

# Prints the one line that would install the packages, and stops.
ask_for() {
  echo "packages are missing; run this line as root and start again:" >&2
  case $distribution in
    Debian) echo "  apt-get update && apt-get install -y $*" >&2 ;;
    Fedora) echo "  dnf install -y $*" >&2 ;;
    Arch) echo "  pacman -S --needed $*" >&2 ;;
  esac
  exit 1
}

# Installs the packages of the groups that are missing (beside those of `groups`), or prints the line that would and stops.
install_missing() {
  local asked=("${groups[@]}" "$@") missing=() elsewhere=() package
  if [ -z "$distribution" ]; then
    echo "these scripts know Debian, Fedora, Arch and what descends from them; scripts/packages.txt says what is needed" >&2
    exit 1
  fi
  iconv -f CP932 -t UTF-8 </dev/null 2>/dev/null || asked+=(converters)
  for package in $(packages_of "${asked[@]}"); do
    if [[ $package == -* ]]; then
      elsewhere+=("${package#-}")
    elif ! is_installed "$package"; then
      missing+=("$package")
    fi
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  if [ ${#elsewhere[@]} -gt 0 ]; then
    echo "no package of $distribution is known for these of Debian's, which are to be installed otherwise: ${elsewhere[*]}" >&2
  fi
  [ "$distribution" = Debian ] || ask_for "${missing[@]}"

  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null || ! sudo -n true 2>/dev/null; then ask_for "${missing[@]}"; fi
    as_root=(sudo)
  fi
  echo "installing ${missing[*]}" >&2
  local log
  log=$(mktemp)
  if ! { "${as_root[@]}" apt-get update && "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
         apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1 </dev/null; then
    cat "$log" >&2
    rm -f "$log"
    exit 1
  fi
  rm -f "$log"
}

# Configures a preset and builds a target of it, silently; prints everything on a failure.
build() {
  local preset=$1 target=$2 log
  log=$(mktemp)
  if ! { { [ -f "$root/build/$preset/build.ninja" ] || (cd "$root" && cmake --preset "$preset"); } \
         && cmake --build "$root/build/$preset" --target "$target"; } >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    exit 1
  fi
  rm -f "$log"
}
