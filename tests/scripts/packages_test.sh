#!/usr/bin/env bash
# What the scripts ask for on each system: packages_test.sh COMMON.SH
common=$1
status=0
described=$(mktemp)
trap 'rm -f "$described"' EXIT

# expect SYSTEM WANTED [MISSING...]: of the groups build and lint, by somebody who may not install. All packages are there but
# those; of the optional ones Debian's lists have 7zip alone.
expect() {
  printf '%b\n' "$1" >"$described"
  local said
  said=$(QUENDLE_OS_RELEASE=$described MISSING=" ${*:3} " bash -c '
    . "$0"
    is_installed() { [[ $1 != -* && $MISSING != *" $1 "* ]]; }
    apt-cache() { if [ "$2" = 7zip ]; then echo "  Candidate: 25.01"; else echo "  Candidate: (none)"; fi; }
    id() { echo 1000; }
    sudo() { return 1; }
    iconv() { :; }
    install_missing lint && echo ready' "$common" 2>&1 | grep -v '^packages are missing')
  if [ "$said" != "$2" ]; then
    printf 'for %s without %s\n  wanted: %s\n  said:   %s\n' "$1" "${*:3}" "$2" "$said"
    status=1
  fi
}

fedora='no package of Fedora is known for these of Debian'\''s, which are to be installed otherwise: liblhasa-dev
  dnf install -y gtest-devel clang-tools-extra 7zip'
expect 'ID=fedora' "$fedora" clang-tools-extra gtest-devel 7zip
expect 'ID="nobara"\nID_LIKE="rhel centos fedora"' "$fedora" clang-tools-extra gtest-devel 7zip
expect 'ID=arch' '  pacman -S --needed shellcheck 7zip' shellcheck 7zip
expect 'ID=manjaro\nID_LIKE=arch' ready 7zip
expect 'ID=debian' '  apt-get update && apt-get install -y shellcheck 7zip' shellcheck p7zip-full 7zip
expect 'ID=linuxmint\nID_LIKE="ubuntu debian"' ready p7zip-full 7zip
expect 'ID=void' \
  'these scripts know Debian, Fedora, Arch and what descends from them; scripts/packages.txt says what is needed'
exit $status
