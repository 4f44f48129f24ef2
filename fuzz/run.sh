#!/usr/bin/env bash
# Builds every libFuzzer target (fuzz/fuzz_*.cpp) with clang and runs each
# for a bounded time on a copy of its committed corpus.
#   fuzz/run.sh [build-folder]     QRX_FUZZ_SECONDS=<s> (default 20) per target
# A crash, leak or sanitizer report fails the run; the input that caused it
# is left in the build folder (crash-*, leak-*) to become a regression row.
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
BUILD="${1:-$ROOT/build-fuzz}"
SECONDS_EACH="${QRX_FUZZ_SECONDS:-20}"

if [ ! -f "$BUILD/build.ninja" ]; then
  launcher=()
  if command -v ccache >/dev/null; then
    launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  fi
  CC=clang CXX=clang++ cmake -S "$ROOT" -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    "${launcher[@]}" -DQRX_FUZZ=ON -DQRX_BUILD_TESTS=OFF -DQRX_BUILD_BENCH=OFF
fi
targets=()
for source in "$ROOT"/fuzz/fuzz_*.cpp; do
  targets+=("$(basename "$source" .cpp)")
done
cmake --build "$BUILD" -j "$(nproc)" --target "${targets[@]}"

export ASAN_OPTIONS=detect_leaks=1:halt_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
for target in "${targets[@]}"; do
  name="${target#fuzz_}"
  seeds="$ROOT/fuzz/corpus/$name"
  work="$BUILD/corpus-$name"
  mkdir -p "$work"
  options=(-max_total_time="$SECONDS_EACH" -print_final_stats=1 -artifact_prefix="$BUILD/$name-")
  [ -f "$ROOT/fuzz/$target.dict" ] && options+=(-dict="$ROOT/fuzz/$target.dict")
  dirs=("$work")
  [ -d "$seeds" ] && dirs+=("$seeds")
  echo "== $target: ${SECONDS_EACH}s"
  status=0
  (cd "$BUILD" && "./fuzz/$target" "${options[@]}" "${dirs[@]}") >"$BUILD/$target.log" 2>&1 || status=$?
  grep -E '^(#[0-9]+[[:space:]]+DONE|stat::number_of_executed_units|stat::average_exec_per_sec)' "$BUILD/$target.log" || true
  if [ "$status" -ne 0 ]; then
    tail -n 60 "$BUILD/$target.log"
    echo "$target failed (exit $status)"
    exit 1
  fi
done
