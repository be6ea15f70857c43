#!/usr/bin/env bash
# Runs a test program under Wine. Once in some thousand starts Wine ends before the program has begun; a test program that
# has begun has said so. So one that said nothing at all is started again, three times at most, and that is told.
said=$(mktemp)
trap 'rm -f "$said"' EXIT
for attempt in 1 2 3; do
  "$(dirname "${BASH_SOURCE[0]}")/wine.sh" "$@" >"$said"
  status=$?
  if [ -s "$said" ]; then break; fi
  echo "start $attempt of $1 ended with $status, without a word" >&2
done
cat "$said"
exit "$status"
