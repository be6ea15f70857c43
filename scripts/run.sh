#!/usr/bin/env bash
# Installs what is missing, builds Quendle and runs it: scripts/run.sh [OPTION...] [PATH...]
# scripts/run.sh --demo shows it at work on files of its own in a temporary folder.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

install_missing
build release quendle
program=$root/build/release/src/quendle
if [ "${1:-}" = --demo ]; then
  exec "$root/scripts/demo.sh" "$program"
fi
exec "$program" "$@"
