#!/bin/sh
# Runs as root in a clean system: installs the packages, uses each, and removes them.
# usage: inside.sh PACKAGES CONSUMER
set -eu
packages=$1 consumer=$2
export DEBIAN_FRONTEND=noninteractive HOME=/tmp/home LC_ALL=C.UTF-8
mkdir -p $HOME

stage() {
  echo "== $1"
}
get() {
  apt-get -qq -o Dpkg::Use-Pty=0 --yes --no-install-recommends "$@" >/tmp/apt.log 2>&1 || {
    cat /tmp/apt.log
    return 1
  }
}
# All files but those of the system's own records, which change with any package.
all_files() {
  find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /tmp -o -path /run -o -path /srv -o \
    -path /var/cache -o -path /var/log -o -path /var/lib/apt -o -path /var/lib/dpkg \) -prune -o -print | sort
}

stage "what others have to give"
get update
needed=""
for package in "$packages"/*.deb; do
  needed="$needed, $(dpkg-deb -f "$package" Depends | sed -E 's/liborlune-ptk1 \([^)]*\)(, )?//g')"
done
# shellcheck disable=SC2001 # an expression
needed=$(echo "$needed" | sed -E 's/^[, ]+//; s/(, *)+/, /g; s/, *$//')
get satisfy "$needed"
get install bash-completion cmake dpkg-dev fish gcc libc6-dev make man-db pkgconf zsh
all_files >/tmp/before

stage "installing"
get install "$packages"/*.deb
dpkg --verify liborlune-ptk1 liborlune-ptk-dev orlune python3-orlune-ptk
ldconfig -p | grep -q 'liborlune_ptk\.so\.1 '

stage "a C program by pkg-config"
mkdir /tmp/program
cd /tmp/program
# shellcheck disable=SC2046 # the flags are words of their own
gcc -std=c11 -Wall -Wextra -Werror "$consumer/consumer.c" $(pkg-config --cflags --libs orlune_ptk) -o consumer
./consumer
mkdir debian
printf 'Source: program\n\nPackage: program\nArchitecture: any\n' >debian/control
dpkg-shlibdeps -O consumer | tee /tmp/depends
grep -q 'liborlune-ptk1 (>= 1\.0\.0)' /tmp/depends

stage "a C program by CMake"
cmake -S "$consumer" -B /tmp/program/build >/tmp/cmake.log
cmake --build /tmp/program/build >>/tmp/cmake.log
/tmp/program/build/consumer

stage "Python"
cat >/tmp/program/use.py <<'END'
import sys

import numpy as np
import orlune_ptk as ptk

picture = np.zeros((50, 60), np.uint8)
picture[10:20, 10:25] = picture[30:40, 30:50] = 200
ptk.write(picture, "parts.bmp")
parts = ptk.threshold(ptk.read("parts.bmp"), 100)
assert list(ptk.particles(parts)["area"]) == [150, 200]
try:
    drawn = np.asarray(ptk.draw_text(picture, "text", 2, 2)).any(where=picture == 0)
except ptk.PtkError as error:
    drawn = False
    print(error)
assert drawn == (sys.argv[1] == "with")
END
python3 use.py without

stage "the command"
orlune --version
orlune info parts.bmp
orlune inspect parts.bmp | grep '2 particles found'

stage "manual pages"
for name in $(nm -D --defined-only /usr/lib/*/liborlune_ptk.so.1 | sed -n 's/.* \(ZEL_[A-Za-z0-9_]*\)@.*/\1/p'); do
  man -w "$name" >/dev/null
done
man ZEL_Threshold | grep -q rangeMin
man orlune-inspect | grep -q -e --fill-holes

stage "completions"
bash -c '. /usr/share/bash-completion/bash_completion && _completion_loader orlune; complete -p orlune'
zsh -c 'autoload -Uz compinit && compinit -D && print $_comps[orlune]' | grep -x _orlune
fish -c "complete -C 'orlune ins'" | grep '^inspect'

stage "removing"
get purge liborlune-ptk1 liborlune-ptk-dev orlune python3-orlune-ptk
all_files >/tmp/after
cmp /tmp/before /tmp/after || { diff /tmp/before /tmp/after; exit 1; }
if ldconfig -p | grep orlune || grep -r orlune /var/lib/dpkg/status /var/lib/dpkg/info; then exit 1; fi

stage "what is recommended draws text"
get install --install-recommends "$packages"/liborlune-ptk1_*.deb
get install "$packages"/python3-orlune-ptk_*.deb
dpkg -s libxcb1 libfreetype6 libfontconfig1 fonts-dejavu-core >/dev/null
python3 use.py with
echo "installed, used and removed"
