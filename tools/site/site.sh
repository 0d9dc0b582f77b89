#!/bin/sh
# Builds the site into build/site: its pages' commands and programs are run, and all of its links are looked at.
# usage: site.sh
set -eu
cd "$(dirname "$0")/../.."
cmake --preset release
cmake --build --preset release --target orlune orlune_scenes orlune_ptk
# Debian's packages for Python belong to Debian's Python.
python=python3
"$python" -c "import mkdocs, numpy, pygments" 2>/dev/null || python=/usr/bin/python3
"$python" tools/site/build_site.py build/release build/site
"$python" tools/site/check_links.py build/site
echo "The site is build/site/index.html."
