#!/usr/bin/env bash
# What takes hours on an idle machine: many runs of the fuzz targets and many wild calls under the
# sanitizers and valgrind, the same results from all builds, coverage, and a long soak. Writes what
# was really run and what came out to docs/robustness.md. A stage that fails is told there, lets the
# others run, and fails the script.
# usage: tools/check_deep.sh [--scale X] [--out FILE] [STAGE...]
#   --scale X   the share of the full counts, 1 if none is given: 0.01 tries everything out
#   STAGE       readers calls memory valgrind digests coverage soak; all if none is given
set -uo pipefail
cd "$(dirname "$0")/.."

scale=1
out=docs/robustness.md
stages=()
while [ $# -gt 0 ]; do
  case $1 in
    --scale) scale=$2; shift 2 ;;
    --out) out=$2; shift 2 ;;
    readers | calls | memory | valgrind | digests | coverage | soak) stages+=("$1"); shift ;;
    *) sed -n 's/^# \(usage.*\|  .*\)$/\1/p' "$0" >&2; exit 2 ;;
  esac
done
[ ${#stages[@]} -gt 0 ] || stages=(readers calls memory valgrind digests coverage soak)

work=build/deep
rows=$work/rows.md
mkdir -p "$work"
: >"$rows"
rm -f "$work/failed"

# share COUNT: that much of the scale, at least 1.
share() {
  awk -v count="$1" -v scale="$scale" 'BEGIN { n = int(count * scale); print n < 1 ? 1 : n }'
}

# row WHAT COUNT SECONDS RESULT
row() {
  printf '| %s | %s | %s | %s |\n' "$@" >>"$rows"
  printf '%s, %s: %s (%s s)\n' "$1" "$2" "$4" "$3"
}

# failure WHAT COUNT SECONDS [RESULT]: a row that fails the script, also from a part of it in the background.
failure() {
  row "$1" "$2" "$3" "**FAILED**${4:+: $4}"
  : >"$work/failed"
}

# check WHAT COUNT COMMAND...: a row from a command; its last words are kept where it fails.
check() {
  local what=$1 count=$2 log began=$SECONDS
  log=$(mktemp "$work/log.XXXXXX")
  if "${@:3}" >"$log" 2>&1; then
    row "$what" "$count" $((SECONDS - began)) "no finding"
  else
    failure "$what" "$count" $((SECONDS - began))
    tail -n 30 "$log"
  fi
  rm "$log"
}

# build FOLDER TARGETS OPTION...
build() {
  local folder=$1 targets=$2
  # shellcheck disable=SC2086 # targets are words of their own
  cmake -S . -B "$folder" -G Ninja -DPTK_WARNINGS_AS_ERRORS=ON -DPTK_BUILD_BENCHMARKS=OFF \
    -DPTK_BUILD_TOOLS=OFF "${@:3}" >"$work/build.log" 2>&1 &&
    cmake --build "$folder" --target $targets >>"$work/build.log" 2>&1 && return
  echo "check_deep.sh: $folder cannot be built:"
  tail -n 20 "$work/build.log"
  failure "build of $folder" - -
  return 1
}

build_release() {
  build "build/deep-release" "$1" -DCMAKE_BUILD_TYPE=Release
}

sequences=(chain api)
mapfile -t readers < <(tools/fuzz.sh --list | grep -vxF "$(printf '%s\n' "${sequences[@]}")")
# The front's reader throws and keeps strings, which the memory sanitizer does not see the making of in
# the standard library: valgrind watches it instead.
mapfile -t library_readers < <(printf '%s\n' "${readers[@]}" | grep -vx front_bmp)

# fuzzed WHAT RUNS ARGUMENT... -- TARGET...: a row for each of the targets, of which two go at a time.
fuzzed() {
  local what=$1 runs=$2 arguments=() target told log=$work/fuzz.txt
  shift 2
  while [ "$1" != -- ]; do
    arguments+=("$1")
    shift
  done
  shift
  tools/fuzz.sh "${arguments[@]}" --runs "$runs" "$@" >"$log" 2>&1 || tail -n 60 "$log"
  for target in "$@"; do
    # "read_bmp Done 1000 runs in 3 second(s)"
    if told=$(grep -aE "^$target +Done [0-9]+ runs" "$log"); then
      row "\`$target\`, $what" "$(awk '{ print $3 " runs" }' <<<"$told")" "$(awk '{ print $6 }' <<<"$told")" "no finding"
    else
      failure "\`$target\`, $what" "$runs runs" -
    fi
  done
}

# fuzz SANITIZER RUNS TARGET...: a hundredth of them learns from what is compared, and the others begin
# with what it has found.
fuzz() {
  fuzzed "$1 sanitizer, comparisons watched" $(($2 / 100 + 1)) --sanitizer "$1" -- "${@:3}"
  fuzzed "$1 sanitizer" "$2" --fast --sanitizer "$1" -- "${@:3}"
}

stage_readers() {
  fuzz address "$(share 10000000)" "${readers[@]}"
}

# wild CALLS SEED COMMAND...: wild calls from a seed on; how often they reached the exports stays in a file.
wild() {
  local told=$work/wild-$2.txt
  "${@:3}" "$1" "$2" >"$told" 2>&1 || { tail -n 30 "$told"; return 1; }
}

stage_calls() {
  local calls
  calls=$(share 20000000)
  build "build/deep-asan" wild_calls -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g -O1" \
    -DCMAKE_C_FLAGS_DEBUG="-g -O1" -DPTK_SANITIZE=address || return
  local seed
  for seed in 1 1000000000; do
    check "wild calls from seed $seed, address and undefined-behaviour sanitizers" "$((calls / 2)) calls" \
      wild $((calls / 2)) $seed build/deep-asan/fuzz/wild_calls &
  done
  wait
  cat "$work"/wild-1.txt "$work"/wild-1000000000.txt | grep '^exports' >"$work/calls.txt"
  fuzz address "$(share 1000000)" "${sequences[@]}"
}

stage_memory() {
  local calls
  fuzz memory "$(share 1000000)" "${library_readers[@]}" "${sequences[@]}"
  calls=$(share 2000000)
  cmake --build build/fuzz-memory-fast --target wild_calls >"$work/build.log" 2>&1
  check "wild calls, memory sanitizer" "$calls calls" wild "$calls" 1 build/fuzz-memory-fast/fuzz/wild_calls
}

under_valgrind=(valgrind -q --error-exitcode=99 --leak-check=full --show-leak-kinds=all
  "--errors-for-leak-kinds=definite,indirect,possible" --track-origins=yes)

stage_valgrind() {
  local calls
  calls=$(share 200000)
  build_release "wild_calls session_digest make_seeds replay_front_bmp" || return
  check "session of every export, valgrind" "1 session" \
    "${under_valgrind[@]}" "build/deep-release/tests/session_digest"
  local seeds=$work/seeds
  rm -rf "$seeds"
  build/deep-release/fuzz/make_seeds "$seeds"
  check "\`front_bmp\`, valgrind" "$(find "$seeds/front_bmp" -type f | wc -l) seeds" \
    "${under_valgrind[@]}" build/deep-release/fuzz/replay_front_bmp "$seeds/front_bmp"
  check "wild calls, valgrind" "$calls calls" wild "$calls" 1 "${under_valgrind[@]}" \
    "build/deep-release/fuzz/wild_calls"
}

# same_digests PROGRAM CALLS: what a build computes at all levels and for several numbers of workers,
# and of wild calls, against the first one.
same_digests() {
  local level threads digest bad=0
  for level in plain baseline v3 v4; do
    for threads in 1 2 3 7; do
      digest=$(ORLUNE_PTK_LEVEL=$level ORLUNE_PTK_THREADS=$threads "$1/tests/session_digest") || bad=1
      digest+=$'\n'$(ORLUNE_PTK_LEVEL=$level ORLUNE_PTK_THREADS=$threads "$1/fuzz/wild_calls" "$2" |
        grep '^digest') || bad=1
      [ -f "$work/digest.txt" ] || echo "$digest" >"$work/digest.txt"
      if [ "$digest" != "$(cat "$work/digest.txt")" ]; then
        printf '%s at level %s with %s workers:\n%s\ninstead of\n%s\n' "$1" "$level" "$threads" \
          "$digest" "$(cat "$work/digest.txt")"
        bad=1
      fi
    done
  done
  return $bad
}

# digests NAME OPTION...: a build and its digests.
digests() {
  local calls
  calls=$(share 100000)
  build "build/deep-$1" "session_digest wild_calls" "${@:2}" || return
  check "results of $1, each level of this processor with 1, 2, 3, 7 workers" "session, large images, $calls wild calls" \
    same_digests "build/deep-$1" "$calls"
}

stage_digests() {
  local version
  rm -f "$work/digest.txt"
  digests g++-O3 -DCMAKE_BUILD_TYPE=Release
  digests g++-O2 -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-O2 -DPTK_ROW_OPTIMISATION=-O2
  digests g++-O0 -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0
  digests g++-march=native -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS=-march=native
  for version in 14 19; do
    # New ones complain of what g++'s standard library does within itself.
    digests clang-$version -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=clang++-$version \
      -DCMAKE_C_COMPILER=clang-$version -DCMAKE_CXX_FLAGS=-Wno-deprecated-declarations
  done
}

# covered FOLDER LINES BRANCHES: the sources of src/FOLDER, tests left out. So are the verbs of vectors, most of
# which are for levels that this build has not.
covered() {
  gcovr -r . --object-directory build/coverage --filter "src/$1/" --exclude '.*_test\.' --exclude 'src/engine/vectors\.h' \
    --exclude-throw-branches --exclude-unreachable-branches --print-summary \
    --fail-under-line "$2" --fail-under-branch "$3" -o "$work/coverage-$1.txt" build/coverage |
    grep -E '^(lines|branches)' | sed 's/:/,/; s/ out of /, /' |
    awk -F'[ ,()]+' '{ printf "%s %s ", $2, $1 }'
  return "${PIPESTATUS[0]}"
}

gate() {
  local found
  if found=$(covered "$@"); then
    row "coverage of \`src/$1\`, asked for $2 % lines and $3 % branches" "all tests" - "$found"
  else
    failure "coverage of \`src/$1\`, asked for $2 % lines and $3 % branches" "all tests" - "$found"
  fi
}

# The tests' own objects are those of the release: what they compute beside the library takes minutes
# without optimisation, and nobody counts it.
counted_tests() {
  cmake --preset release && cmake --build --preset release &&
    cmake --preset coverage -DPTK_OBJECTS_FROM="$PWD/build/release" && cmake --build --preset coverage || return
  find build/coverage -name '*.gcda' -delete
  ctest --preset coverage
}

stage_coverage() {
  check "all tests, coverage build" "1 round" counted_tests
  local folder
  for folder in core files; do gate "$folder" 100 95; done
  for folder in platform engine utilities statistics particles point filters geometry morphology colour frequency \
    regions vision barcode dials display; do
    gate "$folder" 98 90
  done
}

stage_soak() {
  local rounds
  rounds=$(share 1000000)
  build_release soak_test || return
  check "soak: create, read, threshold, label, measure, cast, fail, dispose" "$rounds rounds" \
    env ORLUNE_SOAK_ROUNDS="$rounds" "build/deep-release/tests/soak_test" --gtest_brief=1
}

for stage in "${stages[@]}"; do
  printf '\n== %s (%d s so far)\n' "$stage" $SECONDS
  "stage_$stage"
done

changes=$([ -z "$(git status --porcelain -- src include harness fuzz tests)" ] || echo " with changes")
{
  echo "# What the deep check found"
  echo
  echo "Written by \`make check-deep\` (\`tools/check_deep.sh\`). This run was at $scale of the full counts, of the"
  echo "stages ${stages[*]}, on $(date -u +%Y-%m-%d), commit $(git rev-parse --short HEAD)$changes, with $(nproc) processors,"
  echo "g++ $(g++ -dumpfullversion) and clang $(clang++-19 -dumpversion). It took $SECONDS s."
  echo
  echo "| check | count | seconds | result |"
  echo "|---|---|---|---|"
  cat "$rows"
  if [ -s "$work/calls.txt" ]; then
    echo
    echo "Of the wild calls under the address sanitizer, by seed:"
    sed 's/^/- /' "$work/calls.txt"
  fi
} >"$out"
echo "written: $out"
[ ! -e "$work/failed" ]
