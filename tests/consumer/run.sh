#!/bin/sh
# Installs the library into a folder of its own, and builds and runs a C program against it.
# usage: run.sh cmake|pkg-config BUILD_FOLDER SOURCE_FOLDER C_COMPILER
set -eu
way=$1 build=$2 source=$3 compiler=$4
place=$build/consumer/$way
rm -rf "$place"
mkdir -p "$place"
cmake --install "$build" --prefix "$place/installed" >"$place/install.log"

case $way in
  cmake)
    cmake -S "$source/tests/consumer" -B "$place/build" -G Ninja -DCMAKE_C_COMPILER="$compiler" \
      -DCMAKE_PREFIX_PATH="$place/installed" >"$place/configure.log"
    cmake --build "$place/build"
    "$place/build/consumer"
    ;;
  pkg-config)
    command -v pkg-config >/dev/null || exit 77
    description=$(find "$place/installed" -name orlune_ptk.pc)
    folder=$(dirname "$description")
    export PKG_CONFIG_PATH="$folder"
    # shellcheck disable=SC2046 # the flags are words of their own
    "$compiler" -std=c11 -Wall -Wextra -Werror "$source/tests/consumer/consumer.c" \
      $(pkg-config --cflags --libs orlune_ptk) -o "$place/consumer"
    LD_LIBRARY_PATH="$(pkg-config --variable=libdir orlune_ptk)" "$place/consumer"
    ;;
  *) exit 2 ;;
esac

# The installed tools find the library beside them, wherever the prefix lies.
tool=$place/installed/bin/orlune
if [ -x "$tool" ]; then "$tool" --version; fi
