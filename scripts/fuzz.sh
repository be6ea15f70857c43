#!/usr/bin/env bash
# Runs each fuzz target for a while: `fuzz.sh [SECONDS [TARGET...]]`, ten minutes for each by default. What crashes is
# written to build/fuzz/found; a file that is worth keeping goes to tests/fuzz/corpus/TARGET, which the tests replay.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

seconds=${1:-600}
shift || true
targets=("$@")
[ $# -gt 0 ] || targets=(fuzz_command fuzz_names fuzz_version fuzz_zip fuzz_lzh fuzz_cab fuzz_rar fuzz_rar_headers fuzz_sevenzip
  fuzz_unpack fuzz_filters)
install_missing fuzz
for target in "${targets[@]}"; do build fuzz "$target"; done
cd "$root/build/fuzz"
# A library that asks for more memory than there is gets none, as without the sanitizer.
export ASAN_OPTIONS=allocator_may_return_null=1
for target in "${targets[@]}"; do
  mkdir -p "corpus/$target" found
  "tests/fuzz/$target" -max_total_time="$seconds" -max_len=65536 -rss_limit_mb=4096 -timeout=20 -print_final_stats=1 \
    -artifact_prefix="found/$target-" "corpus/$target" "$root/tests/fuzz/corpus/$target" 2>&1 | tail -n 12
done
