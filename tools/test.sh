#!/bin/sh
# Sets all up, builds everything and runs all tests.
# usage: test.sh [PRESET], release if none is given
set -eu
cd "$(dirname "$0")/.."
preset=${1:-release}
tools/setup.sh
cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset"
