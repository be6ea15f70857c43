#!/usr/bin/env bash
# What the scripts ask for on each system: packages_test.sh COMMON.SH
common=$1
status=0
described=$(mktemp)
trap 'rm -f "$described"' EXIT

# expect SYSTEM WANTED: of the groups lint and archivers, where one package of each system is installed already.
expect() {
  printf '%b\n' "$1" >"$described"
  local said
  said=$(QUENDLE_OS_RELEASE=$described bash -c '
    . "$0"
    is_installed() { [ "$distribution" = Debian ] || [ "${1,,}" = shellcheck ]; }
    iconv() { :; }
    groups=()
    install_missing lint archivers' "$common" 2>&1 | grep -v '^packages are missing')
  if [ "$said" != "$2" ]; then
    printf 'for %s\n  wanted: %s\n  said:   %s\n' "$1" "$2" "$said"
    status=1
  fi
}

fedora='no package of Fedora is known for these of Debian'\''s, which are to be installed otherwise: 7zip lhasa
  dnf install -y clang-tools-extra zip unzip gcab cabextract bsdtar unar'
arch='  pacman -S --needed clang zip unzip 7zip gcab cabextract libarchive lhasa unarchiver'
expect 'ID=fedora' "$fedora"
expect 'ID="nobara"\nID_LIKE="rhel centos fedora"' "$fedora"
expect 'ID=arch' "$arch"
expect 'ID=manjaro\nID_LIKE=arch' "$arch"
expect 'ID=linuxmint\nID_LIKE="ubuntu debian"' ''
expect 'ID=void' \
  'these scripts know Debian, Fedora, Arch and what descends from them; scripts/packages.txt says what is needed'
exit $status
