#!/usr/bin/env bash
# Installs what is missing, builds and runs every test. With --sanitize under the address and undefined-behaviour
# sanitizers; other arguments go to ctest (-R NAME, say).
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

preset=debug
if [ "${1:-}" = --sanitize ]; then
  preset=sanitize
  shift
fi
install_missing
build "$preset" all
cd "$root"
exec ctest --preset "$preset" --parallel "$(nproc)" "$@"
