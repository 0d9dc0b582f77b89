#!/usr/bin/env bash
# cppcheck over the sources, clang-tidy over the library's, and mypy over the Python package.
# usage: tools/static_analysis.sh [--quick]
#   --quick  leaves out clang-tidy, which takes nearly all of the time
set -euo pipefail
cd "$(dirname "$0")/.."

is_quick=
case ${1:-} in
  --quick) is_quick=1 ;;
  "") ;;
  *) sed -n 's/^# \(usage.*\|  .*\)$/\1/p' "$0" >&2; exit 2 ;;
esac

# For the flags of each source, which is looked at once for each level in it: the plain one alone, as
# each takes minutes.
build=build/analysis
cmake -S . -B $build -G Ninja -DPTK_SKIP_LEVELS="baseline;v3;v4" -DPTK_BUILD_TESTS=OFF -DPTK_BUILD_TOOLS=OFF \
  -DPTK_BUILD_BENCHMARKS=OFF >/dev/null

mapfile -t sources < <(git ls-files 'src/*/*.cpp' | grep -v '_test\.cpp$')
mapfile -t beside < <(git ls-files 'tools/*.cpp' 'harness/*.cpp' 'fuzz/*.cpp' 'examples/*.c' | grep -v '_test\.cpp$')

# cppcheck takes an assignment to an array of pointers for an unused access. Since C++20 a signed
# number shifts arithmetically; records with floats are cleared by bytes where callers see the bytes
# between the fields. It takes an index added to an address for a number, and pixels of one type seen as
# bytes for a cast between types.
look() {
  cppcheck --std=c++20 --enable=warning,performance,portability --inline-suppr \
    --suppress=shiftTooManyBitsSigned --suppress=constStatement --suppress=memsetClassFloat \
    --suppress=CastIntegerToAddressAtReturn --suppress=invalidPointerCast \
    --error-exitcode=9 -q -j 2 -I src -I include -I "$build/generated" -DZEL_LEVEL=baseline "$@"
}
look --language=c++ "${sources[@]}"
look -I . -I tools/orlune "${beside[@]}"

[ -n "$is_quick" ] || printf '%s\n' "${sources[@]}" |
  xargs -P 2 -n 6 clang-tidy --quiet -p "$build" --extra-arg=-fbracket-depth=1024 --warnings-as-errors='*' 2>/dev/null

# The Python package, with the modules that are made from the headers, and what makes pages from these.
python3 python/generate.py "$build/python"
MYPYPATH=python:tools:tools/site mypy --cache-dir "$build/mypy" "$build/python/orlune_ptk" python/generate.py python/build_wheel.py \
  python/orlune_run.py tools/recipe_speed.py tools/python_call_cost.py tools/manual_pages.py tools/site/*.py tests/site_builder_test.py \
  tests/journeys/page_blocks_test.py
