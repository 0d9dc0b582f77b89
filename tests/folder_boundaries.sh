#!/bin/sh
# The fuzz targets and the tests know nothing of each other; what both use is in harness/, which
# knows neither.
# usage: folder_boundaries.sh SOURCE_FOLDER
set -eu
cd "$1"

status=0
# refuse FOLDER OTHER: no source or build file in the folder names a file of the other.
refuse() {
  [ -d "$1" ]
  [ -d "$2" ]
  if grep -rnE --include='*.h' --include='*.cpp' --include=CMakeLists.txt "[\"</]$2/" "$1"; then
    echo "$1/ uses $2/"
    status=1
  fi
}
refuse fuzz tests
refuse tests fuzz
refuse harness tests
refuse harness fuzz
exit $status
