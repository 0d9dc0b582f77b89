#!/bin/sh
# Builds the library for arm64 with a cross-compiler, holds what it computes under qemu to the digests
# that every machine has to give, and runs the tests of rooms there.
# usage: test_arm64.sh [TEST_PROGRAM...]   (as engine_tests; without any: the digests alone)
set -eu
cd "$(dirname "$0")/.."
tools/setup.sh --arm64

began=$(date +%s)
stage() {
  printf '\n== %s (%d s so far)\n' "$1" $(($(date +%s) - began))
}

emulator="$(command -v qemu-aarch64 || command -v qemu-aarch64-static) -L /usr/aarch64-linux-gnu"
build=build/arm64

stage "build for arm64"
cmake --preset arm64
cmake --build --preset arm64 --target session_digest "$@"

# digests LEVEL: whether the level gives the digests; what it gave stays in a file.
digests() {
  # shellcheck disable=SC2086 # the emulator's options are words of their own
  ORLUNE_PTK_LEVEL=$1 ORLUNE_PTK_THREADS=$2 $emulator $build/tests/session_digest harness/digests.txt >"$build/digests_$1"
}

stage "digests at levels plain and neon"
status=0
digests plain 1 &
digests neon 3 || status=1
wait $! || status=1
cat $build/digests_neon
cmp $build/digests_plain $build/digests_neon || status=1
[ "$status" -eq 0 ] || exit 1

if [ $# -gt 0 ]; then
  stage "tests"
  ctest --preset arm64 -R "^($(echo "$@" | tr ' ' '|'))(_at_.*)?\$"
fi
stage "done"
