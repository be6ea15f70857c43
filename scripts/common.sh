# Sourced by the scripts: where things are, and installing what a build needs.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# Debian packages that building and testing need. xdg-utils opens files and folders at run time; zlib is what
# pkg-config wants for unarr.
packages=(g++ cmake ninja-build pkg-config ccache libpcre2-dev libutf8proc-dev nlohmann-json3-dev libgtest-dev xdg-utils
          libarchive-dev libunarr-dev zlib1g-dev liblhasa-dev libmspack-dev qt6-base-dev libgl-dev librsvg2-bin libxcb1-dev
          fonts-noto-cjk)
# What the scripts drive and photograph windows with.
window_packages=(xvfb openbox xdotool x11-utils imagemagick)

is_installed() {
  [ "$(dpkg-query -W -f '${db:Status-Abbrev}' "$1" 2>/dev/null | cut -c1-2)" = ii ]
}

# Installs the packages that are missing, or prints the one line that would and stops.
install_missing() {
  command -v dpkg-query >/dev/null || { echo "these scripts know Debian and Ubuntu; elsewhere see README.md" >&2; exit 1; }
  local missing=() package
  for package in "${packages[@]}" "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  # Newer systems ship the converters for Japanese settings files apart from the C library.
  iconv -f CP932 -t UTF-8 </dev/null 2>/dev/null || missing+=(libc-gconv-modules-extra)
  [ ${#missing[@]} -gt 0 ] || return 0

  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null || ! sudo -n true 2>/dev/null; then
      echo "packages are missing; run this line as root and start again:" >&2
      echo "  apt-get update && apt-get install -y ${missing[*]}" >&2
      exit 1
    fi
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
