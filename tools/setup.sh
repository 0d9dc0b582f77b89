#!/bin/sh
# Installs what the build needs on Debian 12, and says what it installs. Does nothing when all is
# there. The library itself needs no more than the compiler; libfreetype and libfontconfig, of which the
# build takes the headers, draw text, and its tests draw with one family of fonts; libcli11, libtiff,
# libpng, libjpeg, libsqlite3 and libtomlplusplus are for the command-line front, imagemagick and its like make the pictures that its
# tests read, sqlite3 looks into its records, and windows on the screen are built with libxcb1-dev and tested with the last packages.
# With --benchmarks also what the benchmarks compare with, with --check-tools also what checks the
# sources, with --scorecard what the scorecard of readers compares with, with --deep-check also the
# fuzzers and what tools/check_deep.sh runs, with --site also what builds the site, with --packages what makes
# and tries Debian packages, with --arm64 the compiler for arm64 and what runs its programs.
# usage: setup.sh [--benchmarks] [--scorecard] [--check-tools] [--deep-check] [--site] [--packages] [--arm64]
set -eu

needed="make g++ cmake ninja-build pkgconf libgtest-dev"
needed="$needed libfreetype-dev libfontconfig-dev fonts-dejavu-core"
needed="$needed libcli11-dev libtiff-dev libpng-dev libjpeg-dev"
needed="$needed libsqlite3-dev libtomlplusplus-dev"
needed="$needed imagemagick netpbm libtiff-tools python3-pil sqlite3"
needed="$needed libxcb1-dev libxcb-xtest0-dev xvfb xclip xdotool openbox"
for argument in "$@"; do
  case $argument in
    --benchmarks) needed="$needed libopencv-core-dev libopencv-imgproc-dev libopencv-imgcodecs-dev libleptonica-dev libzxing-dev" ;;
    --scorecard) needed="$needed libzxing-dev libzbar-dev" ;;
    --deep-check) needed="$needed clang-14 clang-19 libclang-rt-19-dev valgrind gcovr" ;;
    --site) needed="$needed mkdocs python3-pygments" ;;
    --check-tools) needed="$needed abigail-tools clang-format clang-tidy cppcheck mypy" ;;
    --arm64) needed="$needed g++-aarch64-linux-gnu qemu-user googletest" ;;
    --packages) needed="$needed abigail-tools dpkg-dev lintian mmdebstrap" ;;
    *)
      echo "usage: setup.sh [--benchmarks] [--scorecard] [--check-tools] [--deep-check] [--site] [--packages] [--arm64]" >&2
      exit 2
      ;;
  esac
done

# The Python package is tested with these, and recipes on a cluster.
needed="$needed python3-numpy python3-scipy python3-pytest python3-venv python3-distributed"

if ! command -v dpkg-query >/dev/null; then
  echo "setup: this is no Debian system. Please see that these are there: $needed (or their likes)."
  exit 0
fi

missing=""
for package in $needed; do
  state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$state" = installed ] || missing="$missing $package"
done
if [ -z "$missing" ]; then
  echo "setup: all packages are there"
  exit 0
fi

as_root=""
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "setup: these packages are missing, and there is no sudo. As root, run:" >&2
    echo "  apt-get update && apt-get install --yes --no-install-recommends$missing" >&2
    exit 1
  fi
  as_root=sudo
fi
echo "setup: installing$missing"
$as_root apt-get update -qq
# shellcheck disable=SC2086 # the names are words of their own
$as_root env DEBIAN_FRONTEND=noninteractive apt-get install -qq --yes --no-install-recommends \
  -o Dpkg::Use-Pty=0 $missing >/dev/null
