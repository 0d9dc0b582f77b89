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

for level in plain neon; do
  stage "digests at level $level"
  # shellcheck disable=SC2086 # the emulator's options are words of their own
  ORLUNE_PTK_LEVEL=$level $emulator $build/tests/session_digest harness/digests.txt
done

for program in "$@"; do
  stage "$program"
  ctest --preset arm64 -R "^$program(_at_.*)?\$"
done
stage "done"
