#!/usr/bin/env bash
# Builds the fuzz targets with clang and runs each: first the stored inputs and the seeds, then new
# ones. A finding ends it with the input's place.
# usage: tools/fuzz.sh [--seconds N | --runs N] [--sanitizer address|memory] [--seed N] [--plain] [--fast] [TARGET...]
#        tools/fuzz.sh --list
#   --plain  builds the processor level of plain loops alone, which is soon done
#   --fast   learns from what is reached and not from what is compared, which makes several times as many runs;
#            begins with what runs without it have found as well
#   --list   only names the targets
set -euo pipefail
cd "$(dirname "$0")/.."

limit=-max_total_time=20
sanitizer=address
seed=1
skipped="baseline;v3"
comparisons=ON
folder=
targets=()
mapfile -t all < <(sed -n 's/^ptk_fuzz_target(\([a-z_]*\) .*/\1/p' fuzz/CMakeLists.txt)
while [ $# -gt 0 ]; do
  case $1 in
    --seconds) limit=-max_total_time=$2; shift 2 ;;
    --runs) limit=-runs=$2; shift 2 ;;
    --sanitizer) sanitizer=$2; shift 2 ;;
    --seed) seed=$2; shift 2 ;;
    --plain) skipped="baseline;v3;v4"; shift ;;
    --list) printf '%s\n' "${all[@]}"; exit ;;
    --fast) comparisons=OFF folder=-fast; shift ;;
    *) targets+=("$1"); shift ;;
  esac
done
[ ${#targets[@]} -gt 0 ] || targets=("${all[@]}")

clang=clang++-19
if ! command -v $clang >/dev/null; then
  echo "fuzz.sh: $clang is missing (Debian packages clang-19 and libclang-rt-19-dev)" >&2
  exit 1
fi
build=build/fuzz-$sanitizer$folder

# build FOLDER SANITIZER PROGRAM...
build() {
  cmake -S . -B "$1" -G Ninja -DCMAKE_CXX_COMPILER=$clang -DCMAKE_C_COMPILER=clang-19 \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g1 -O1" -DPTK_SANITIZE="$2" \
    -DPTK_FUZZ=ON -DPTK_FUZZ_COMPARISONS=$comparisons -DPTK_SKIP_LEVELS="$skipped" -DPTK_BUILD_TESTS=OFF -DPTK_BUILD_TOOLS=OFF -DPTK_BUILD_BENCHMARKS=OFF >/dev/null
  cmake --build "$1" --target "${@:3}"
}
build "$build" "$sanitizer" "${targets[@]/#/fuzz_}"
# The seed maker uses more of the standard library than the memory sanitizer sees into, so that the
# address sanitizer watches it always.
build "build/fuzz-address$folder" address make_seeds
rm -rf "$build/seeds"
"build/fuzz-address$folder/fuzz/make_seeds" "$build/seeds"

run() {
  local target=$1 log=$build/$1.log found=$build/found/$1
  mkdir -p "$found" "$build/corpus/$target" "$build/seeds/$target"
  local inputs=("$build/corpus/$target" "$build/seeds/$target")
  for kept in "fuzz/corpus/$target" "fuzz/regress/$target" "build/fuzz-$sanitizer/corpus/$target"; do
    if [ "$kept" != "${inputs[0]}" ] && [ -d "$kept" ]; then inputs+=("$kept"); fi
  done
  if "$build/fuzz/fuzz_$target" -seed="$seed" "$limit" -max_len=4096 -timeout=10 \
    -rss_limit_mb=2048 -artifact_prefix="$found/" "${inputs[@]}" >"$log" 2>&1; then
    printf '%-12s %s\n' "$target" "$(grep -a '^Done' "$log" || tail -n 1 "$log")"
  else
    echo "$target: a finding, kept in $found:"
    tail -n 40 "$log"
    return 1
  fi
}

# Two at a time: there are two cores to count on.
status=0
going=0
for target in "${targets[@]}"; do
  if [ $going -eq 2 ]; then
    wait -n || status=1
    going=1
  fi
  run "$target" &
  going=$((going + 1))
done
while [ $going -gt 0 ]; do
  wait -n || status=1
  going=$((going - 1))
done
exit $status
