#!/usr/bin/env bash
# Fuzzes the readers of outside text (see doc/fuzzing.md).
#   tools/fuzz.sh                 every target, 60 seconds each
#   tools/fuzz.sh TARGET [SECS]   one target (SECS defaults to 60)
#   tools/fuzz.sh --replay        every corpus and regression input once through
#                                 its target: what CI runs
#   tools/fuzz.sh --triage        groups the inputs in build/fuzz/crashes by
#                                 fault, smallest input first
#   tools/fuzz.sh --merge DIR     adds the inputs of DIR/TARGET (or of the last
#                                 runs, build/fuzz/work/TARGET, when DIR is
#                                 "work") that reach new code to fuzz/corpus/TARGET
# With KEEP_GOING=1 a run goes on past faults (libFuzzer's fork mode) and
# collects every crashing input it finds.
# The fuzz build lives in build/fuzz (clang, libFuzzer, AddressSanitizer and
# UndefinedBehaviorSanitizer) and is configured here when missing. New inputs a
# run finds go to build/fuzz/work/TARGET; a crash leaves its input in
# build/fuzz/crashes/TARGET.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
build=build/fuzz
targets=(stream database param spec zbo datetext duration repeat expr taskjson)
# A hang is a fault: no input may take longer than this many seconds.
timeout=10

export CCACHE_DIR="${CCACHE_DIR:-$HOME/.cache/ccache}"
export CCACHE_BASEDIR="$root"
export TZ=UTC QT_QPA_PLATFORM=offscreen
# libFuzzer's own leak check covers every input; the suppressions are Qt's.
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"

build_targets() {
  if [ ! -f "$build/build.ninja" ]; then
    CC=clang CXX=clang++ cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTERVALON_FUZZ=ON >/dev/null
  fi
  cmake --build "$build" --target fuzz_all --parallel "$(nproc)"
}

is_target() {
  local t
  for t in "${targets[@]}"; do [ "$t" = "$1" ] && return 0; done
  return 1
}

# Every input kept in the tree, once; fails on the first crash, leak or hang.
replay() {
  local t dirs d count total=0 start=$SECONDS
  for t in "${targets[@]}"; do
    dirs=()
    for d in fuzz/corpus/$t fuzz/regressions/$t; do
      [ -d "$d" ] && [ -n "$(ls -A "$d")" ] && dirs+=("$d")
    done
    [ ${#dirs[@]} -eq 0 ] && continue
    count=$(find "${dirs[@]}" -type f | wc -l)
    total=$((total + count))
    if ! "$build/bin/fuzz_$t" -runs=0 -timeout=$timeout "${dirs[@]}" >"$build/replay_$t.log" 2>&1; then
      tail -n 60 "$build/replay_$t.log" >&2
      echo "fuzz replay: $t failed on a kept input (log: $build/replay_$t.log)" >&2
      return 1
    fi
    echo "fuzz replay: $t: $count inputs"
  done
  echo "fuzz replay: $total inputs in $((SECONDS - start)) s"
}

# One timed run; prints executions per second and the total.
run_one() {
  local t=$1 secs=$2 log work crashes
  work=$build/work/$t
  crashes=$build/crashes/$t
  log=$build/run_$t.log
  mkdir -p "$work" "$crashes"
  local dict=()
  [ -f "fuzz/dict/$t.dict" ] && dict=(-dict="fuzz/dict/$t.dict")
  local rc=0 mode=()
  [ "${KEEP_GOING:-0}" = 1 ] && mode=(-fork=1 -ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1)
  "$build/bin/fuzz_$t" "${mode[@]}" -max_total_time="$secs" -timeout=$timeout -rss_limit_mb=2048 -max_len=4096 \
    -print_final_stats=1 -artifact_prefix="$crashes/" "${dict[@]}" "$work" "fuzz/corpus/$t" \
    $( [ -d "fuzz/regressions/$t" ] && echo "fuzz/regressions/$t" ) >"$log" 2>&1 || rc=$?
  local runs speed
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  # Fork mode reports its running total on lines "#N: cov: ...".
  [ -n "$runs" ] || runs=$(sed -n 's/^#\([0-9]*\): cov:.*/\1/p' "$log" | tail -n 1)
  runs=${runs:-0}
  speed=$((runs / secs))
  if [ $rc -ne 0 ]; then
    echo "$t: FAULT after $runs executions in at most $secs s; input in $crashes (log: $log)"
    grep -m 1 -E 'ERROR: |runtime error|====' "$log" || true
    return 1
  fi
  echo "$t: $runs executions in $secs s, $speed per second"
}

# Keeps only the inputs that add coverage to the corpus in the tree.
merge() {
  local from=$1 t src
  for t in "${targets[@]}"; do
    src=$from/$t
    [ "$from" = work ] && src=$build/work/$t
    [ -d "$src" ] || continue
    mkdir -p "fuzz/corpus/$t"
    mkdir -p "$build/crashes/$t"
    "$build/bin/fuzz_$t" -merge=1 -timeout=$timeout -max_len=65536 -artifact_prefix="$build/crashes/$t/" \
      "fuzz/corpus/$t" "$src" >"$build/merge_$t.log" 2>&1 \
      || { tail -n 30 "$build/merge_$t.log" >&2; echo "merge: $t failed" >&2; return 1; }
    echo "merge: $t: $(ls "fuzz/corpus/$t" | wc -l) inputs in the corpus"
  done
}

# The fault one input shows: the failed check, or the sanitizer's finding and
# the first frame of the project's own code.
signature() {
  local t=$1 input=$2 log
  log=$("$build/bin/fuzz_$t" -timeout=$timeout "$input" 2>&1) && { echo "passes"; return; }
  local what frame
  what=$(printf '%s\n' "$log" | grep -m 1 -oE '^==== .*|runtime error: [a-z -]*|AddressSanitizer: [a-z-]+|LeakSanitizer|libFuzzer: timeout|out-of-memory' || true)
  frame=$(printf '%s\n' "$log" | grep -E '^ +#[0-9]+ .* in ' | grep -v -E 'fuzzsupport|__sanitizer|fuzzer::|libc|abort|raise|pthread|LLVMFuzzer' \
          | grep -m 1 -oE 'in [^(]*' || true)
  echo "${what:-unknown} | ${frame:-?}"
}

triage() {
  local t f
  for t in "${targets[@]}"; do
    [ -d "$build/crashes/$t" ] || continue
    # The smallest inputs show each fault most plainly; a long run can leave thousands.
    for f in $(ls -S -r "$build/crashes/$t" | head -n "${TRIAGE_LIMIT:-150}"); do
      echo "$t | $(signature "$t" "$build/crashes/$t/$f") | $(wc -c <"$build/crashes/$t/$f") bytes | $f"
    done | sort -t '|' -k 1,3 -s | awk -F '|' '{ key = $1 "|" $2 "|" $3; n[key]++; if (!(key in first)) { first[key] = $0; order[++k] = key } }
      END { for (i = 1; i <= k; i++) print n[order[i]] "x  " first[order[i]] }'
  done
}

build_targets
if [ "${1:-}" = "--triage" ]; then
  triage
  exit
fi
if [ "${1:-}" = "--merge" ]; then
  merge "${2:?usage: tools/fuzz.sh --merge DIR}"
  exit
fi
if [ "${1:-}" = "--replay" ]; then
  replay
  exit
fi
if [ $# -ge 1 ]; then
  is_target "$1" || { echo "unknown target $1; targets: ${targets[*]}" >&2; exit 1; }
  run_one "$1" "${2:-60}"
  exit
fi
status=0
for t in "${targets[@]}"; do
  run_one "$t" 60 || status=1
done
exit $status
