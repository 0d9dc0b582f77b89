#!/bin/sh
# The rooms of the library stand in one order, and a source uses only its own room and those before
# it; no two rooms have a source of the same name; what lies beside the library is not used by it.
# usage: room_order.sh SOURCE_FOLDER ROOM...   (the rooms in their order)
set -eu
source=$1
shift
status=0
fail() {
  echo "$1"
  status=1
}

before=""
for room in "$@"; do
  before="$before $room"
  # Tests may use all rooms up to their own, and what tests share.
  for file in "$source/src/$room"/*; do
    case $file in *.cpp | *.h) ;; *) continue ;; esac
    ! grep -q '^#include "\.' "$file" || fail "$file includes a header by a relative path, which hides its room"
    for used in $(sed -n 's/^#include "\([a-z]*\)\/.*/\1/p' "$file" | sort -u); do
      case " $before " in *" $used "*) continue ;; esac
      case "$file $used" in *_test.cpp\ harness | *_test.h\ harness | *_test.cpp\ tests | *_test.h\ tests) continue ;; esac
      fail "$file uses the room $used, which does not stand before $room"
    done
  done
done

for folder in "$source"/src/*/; do
  room=$(basename "$folder")
  case " $before " in *" $room "*) ;; *) fail "src/$room is in no order" ;; esac
done

twice=$(for room in "$@"; do ls "$source/src/$room"; done | grep -v '^CMakeLists.txt$' | sort | uniq -d)
[ -z "$twice" ] || fail "two rooms have a source of the name: $twice"
exit $status
