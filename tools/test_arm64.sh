#!/bin/sh
# Builds the library for arm64 with a cross-compiler, holds what it computes under qemu to the digests
# that every machine has to give, and runs tests there.
# usage: test_arm64.sh [--all | TEST_PROGRAM...]   (without: the digests alone)
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
if [ "${1-}" = --all ]; then
  cmake --build --preset arm64
else
  cmake --build --preset arm64 --target session_digest "$@"
fi

# Levels are those of the build, as the compiler's list of macros has them.
levels=$(sed -n 's/.*ZEL_FOR_EACH_LEVEL(X, \.\.\.) //p' $build/generated/engine/level_list.h |
  grep -o 'X([a-z0-9]*' | cut -c3-)
for level in $levels; do
  stage "digests at level $level"
  # shellcheck disable=SC2086 # the emulator's options are words of their own
  ORLUNE_PTK_LEVEL=$level $emulator $build/tests/session_digest harness/digests.txt
done

if [ "${1-}" = --all ]; then
  stage "all tests"
  ctest --preset arm64
else
  for program in "$@"; do
    stage "$program"
    ctest --preset arm64 -R "^$program"
  done
fi
stage "done"
