#!/usr/bin/env bash
# Looks over the sources without running them: layout (clang-format), the order of the rooms, the scripts (shellcheck) and
# clang-tidy, which takes some seconds for each file. It therefore reads only what differs from the main branch, in commits
# and beyond; on that branch itself what the last commits have brought. `lint.sh --all` has it read everything.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

most_files=16  # of commits that are in the main branch already: somebody has looked at those
case ${1:-} in '' | --all) ;; *) echo "usage: lint.sh [--all]" >&2; exit 2 ;; esac
install_missing lint
cd "$root"
failed=()

# step NAME COMMAND...: what is found is printed and counts, and the next step comes all the same.
step() {
  local name=$1 log
  shift
  log=$(mktemp)
  if "$@" >"$log" 2>&1; then
    echo "ok      $name"
  else
    echo "FAILED  $name"
    grep -v -E '^[0-9]+ warnings? (and [0-9]+ errors? )?generated|^(Suppressed|Use -header-filter)' "$log" | sed 's/^/  /'
    failed+=("$name")
  fi
  rm -f "$log"
}

format() { git ls-files -z '*.h' '*.cpp' | xargs -0 clang-format --dry-run --Werror; }
rooms() { cmake -DSOURCE_FOLDER=src -P cmake/check_rooms.cmake; }
# What is sourced sets variables for others and leaves the rest to `set -e`.
scripts() {
  git ls-files -z '*.sh' .ci/run | xargs -0 shellcheck --external-sources --source-path=SCRIPTDIR --severity=warning \
    --exclude=SC1090,SC2034,SC2154,SC2164
}

# The newest commit of the main branch that this one builds on.
branch_point() {
  local main
  for main in origin/main main; do
    if git merge-base HEAD "$main" 2>/dev/null; then return; fi
  done
}

# Changed sources, the most recently changed first.
changed() {
  local base
  base=$(branch_point)
  if [ -n "$base" ] && { [ "$base" != "$(git rev-parse HEAD)" ] || [ -n "$(git status --porcelain)" ]; }; then
    git diff --name-only --diff-filter=d "$base" -- '*.h' '*.cpp'
    git ls-files --others --exclude-standard -- '*.h' '*.cpp'
  else
    git log --first-parent --diff-merges=first-parent -n 20 --name-only --diff-filter=d --format= -- '*.h' '*.cpp' |
      awk -v most="$most_files" '!seen[$0]++ && count++ < most'
  fi
}

# The file that has a source compiled; for a header one of those that include it.
compiled() {
  local path includer
  while read -r path; do
    [ -f "$path" ] || continue
    for includer in $(case $path in
      *.cpp) echo "$path" ;;
      *) git grep -l -F "#include \"${path#*/}\"" -- '*.cpp' ;;
    esac); do
      if grep -q -F "\"file\": \"$root/$includer\"" build/lint/compile_commands.json; then
        echo "$includer"
        break
      fi
    done
  done
}

tidy() { tr '\n' '\0' <"$1" | xargs -0 -r -n 1 -P "$(nproc)" clang-tidy -p build/lint --quiet; }

step "layout" format
step "rooms" rooms
step "scripts" scripts
# A folder of its own, in which nothing is ever built: clang would stumble over headers that GCC has precompiled.
cmake --preset debug -B build/lint >/dev/null
files=$(mktemp)
trap 'rm -f "$files"' EXIT
{ if [ "${1:-}" = --all ]; then git ls-files '*.cpp'; else changed; fi; } | compiled | sort -u >"$files"
step "clang-tidy ($(wc -l <"$files") files)" tidy "$files"
[ ${#failed[@]} -eq 0 ]
