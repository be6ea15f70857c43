#!/usr/bin/env bash
# Builds the libraries that Quendle for Windows needs from Debian's source packages (with Debian's patches), static (but 7-Zip's)
# and for x86_64-w64-mingw32, into the folder QUENDLE_WINDOWS_DEPS (default: ~/.cache/quendle/windows):
#   dependencies.sh             all but Qt, some minutes
#   dependencies.sh --windows   Qt as well, about half an hour on two cores
# Each is built once and again only when its lines here change; a run with nothing to do needs no network.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
. "$windows/recipes.sh"

libraries=(zlib bzip2 xz-utils libzstd libdeflate nettle libb2 libarchive lhasa libmspack 7zip pcre2 utf8proc googletest
           nlohmann-json3)
case ${1:-} in
  '') ;;
  --windows) libraries+=(qt6-base) ;;
  *) echo "usage: dependencies.sh [--windows]" >&2; exit 2 ;;
esac

stamps=$QUENDLE_WINDOWS_DEPS/built
mkdir -p "$stamps" "$QUENDLE_WINDOWS_DEPS"/{include,lib/pkgconfig,share,build,log}
exec 9>"$QUENDLE_WINDOWS_DEPS/lock"
flock 9

# The stamp of a library names the version that was built on its first line, and the lines it was built by on the second.
recipe_of() { { declare -f "build_$1" use_autotools use_cmake; } | sha256sum; }
is_built() { [ -f "$stamps/$1" ] && [ "$(sed -n 2p "$stamps/$1")" = "$(recipe_of "$1")" ]; }

# Debian's binary packages are listed on every system, its source packages seldom.
enable_sources() {
  [ -z "$(apt-get indextargets "Identifier: Sources" "Origin: Debian")" ] || return 0
  local entry name
  apt-get indextargets --format '$(SOURCESENTRY)' "Identifier: Packages" "Origin: Debian" | sed 's/:[0-9]*$//' | sort -u |
    while read -r entry; do
      name=/etc/apt/sources.list.d/quendle-$(basename "${entry%.*}")
      case $entry in
        *.sources) sed 's/^Types:.*/Types: deb-src/' "$entry" | as_root tee "$name.sources" >/dev/null ;;
        *) sed -n 's/^deb /deb-src /p' "$entry" | as_root tee "$name.list" >/dev/null ;;
      esac
    done
  as_root apt-get -q update
}

# Unpacks the newest version of a source package that can be had into the current folder, and prints that version.
fetch_source() {
  local version
  for version in $(apt-cache showsrc --only-source "$1" | sed -n 's/^Version: //p' | sort -rVu); do
    if apt-get -q source --only-source "$1=$version" >&2; then
      echo "$version"
      return 0
    fi
  done
  echo "no source package of $1 can be had" >&2
  return 1
}

build_library() {
  local name=$1 version folder=$QUENDLE_WINDOWS_DEPS/build/$1
  rm -rf "$folder"
  mkdir -p "$folder"
  cd "$folder"
  version=$(fetch_source "$name")
  cd "$(find . -mindepth 1 -maxdepth 1 -type d)"
  "build_$name"
  cd "$root"
  rm -rf "$folder"
  printf '%s %s\n%s\n' "$name" "$version" "$(recipe_of "$name")" >"$stamps/$name"
}

prepared=
for library in "${libraries[@]}"; do
  if is_built "$library"; then continue; fi
  log=$QUENDLE_WINDOWS_DEPS/log/$library
  if [ -z "$prepared" ]; then
    install_missing libraries
    enable_sources >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
    prepared=yes
  fi
  echo "building $library for Windows (log: $log)" >&2
  # A shell of its own, so that the first command that fails ends it.
  (build_library "$library") >"$log" 2>&1 </dev/null &
  wait $! || { tail -n 40 "$log" >&2; exit 1; }
done
