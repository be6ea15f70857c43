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

# Of these packages those that can be had. What Fedora and Arch have stands in the table.
available_of() {
  local package
  for package in "$@"; do
    if [ "$distribution" != Debian ] || LC_ALL=C apt-cache policy "$package" | grep -q '^  Candidate: [^(]'; then
      echo "$package"
    fi
  done
}

# The packages of the groups as the distribution calls them, each once. Of those that it does not have Debian's name with a
# "-" before it; an optional one has a "?" before it and is left out then.
packages_of() {
  awk -v distribution="$distribution" -v groups=" $* " '
    BEGIN { column = distribution == "Arch" ? 4 : distribution == "Fedora" ? 3 : 2 }
    { group = $1; optional = sub(/[?]$/, "", group) }
    /^#/ || !index(groups, " " group " ") || (optional && $column == "-") { next }
    { name = $column == "-" ? "-" $2 : $column }
    !(name in needed) { names[++count] = name }
    { needed[name] += !optional }
    END { for (i = 1; i <= count; i++) print (needed[names[i]] ? "" : "?") names[i] }' "$root/scripts/packages.txt"
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

# Whether it can be done without asking anybody.
may_install() {
  [ "$distribution" = Debian ] && { [ "$(id -u)" -eq 0 ] || sudo -n true 2>/dev/null; }
}
as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo -n "$@"; fi
}

# Runs a command silently. When it fails, prints everything and stops.
quietly() {
  local log
  log=$(mktemp)
  if ! "$@" >"$log" 2>&1 </dev/null; then
    cat "$log" >&2
    rm -f "$log"
    exit 1
  fi
  rm -f "$log"
}

# Installs the packages of the groups that are missing (beside those of `groups`), or prints the line that would and stops.
# Optional ones come with them where they can be had; nobody is asked for these alone.
install_missing() {
  local asked=("${groups[@]}" "$@") missing=() optional=() elsewhere=() available package
  if [ -z "$distribution" ]; then
    echo "these scripts know Debian, Fedora, Arch and what descends from them; scripts/packages.txt says what is needed" >&2
    exit 1
  fi
  iconv -f CP932 -t UTF-8 </dev/null 2>/dev/null || asked+=(converters)
  for package in $(packages_of "${asked[@]}"); do
    case $package in
      -*) elsewhere+=("${package#-}") ;;
      \?*) is_installed "${package#\?}" || optional+=("${package#\?}") ;;
      *) is_installed "$package" || missing+=("$package") ;;
    esac
  done
  available=$(available_of "${optional[@]}")
  if [ ${#missing[@]} -eq 0 ] && { [ -z "$available" ] || ! may_install; }; then return 0; fi
  if [ ${#elsewhere[@]} -gt 0 ]; then
    echo "no package of $distribution is known for these of Debian's, which are to be installed otherwise: ${elsewhere[*]}" >&2
  fi
  may_install || ask_for "${missing[@]}" $available

  quietly as_root apt-get update
  mapfile -t -O ${#missing[@]} missing < <(available_of "${optional[@]}")  # a new system had no lists until now
  echo "installing ${missing[*]}" >&2
  quietly as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"
}

# Configures a preset and builds a target of it, silently; prints everything on a failure.
build() {
  local preset=$1 target=$2
  [ -f "$root/build/$preset/build.ninja" ] || quietly cmake --preset "$preset" -S "$root"
  quietly cmake --build "$root/build/$preset" --target "$target"
}
