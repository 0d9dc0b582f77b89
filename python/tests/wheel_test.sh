#!/bin/sh
# Makes the wheel, installs it in a fresh virtual environment and uses it there; then installs the package from the
# sources, as pip does it, without a network.
# usage: wheel_test.sh LIBRARY WORK_FOLDER
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
library=$1 work=$2

python=""
for each in python3 /usr/bin/python3; do
  if "$each" -c "import numpy, venv, ensurepip" 2>/dev/null; then
    python=$each
    break
  fi
done
if [ -z "$python" ]; then
  echo "skipped: there is no Python with numpy and venv"
  exit 77
fi

rm -rf "$work"
mkdir -p "$work"
cd "$work"
export ORLUNE_PTK_LIBRARY="$library" PIP_DISABLE_PIP_VERSION_CHECK=1 PIP_NO_INDEX=1
"$python" "$root/python/build_wheel.py" once
"$python" "$root/python/build_wheel.py" twice
cmp once/*.whl twice/*.whl
case $(ls once) in
  orlune_ptk-*-py3-none-manylinux_2_*.whl) ;;
  *) echo "another name was expected: $(ls once)" >&2; exit 1 ;;
esac
# What a system of that kind has; anything else would have to come with the wheel.
if readelf -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' |
  grep -vE '^(lib(c|m|stdc\+\+|gcc_s)\.so\.[0-9]+|ld-linux.*)$'; then
  echo "the library needs what not every system has" >&2
  exit 1
fi

"$python" -m venv --system-site-packages environment
cat >use.py <<'END'
import numpy as np
import orlune_ptk as ptk

picture = np.zeros((50, 60), np.uint8)
picture[10:20, 10:25] = picture[30:40, 30:50] = 200
parts = ptk.threshold(picture, 100)
assert list(ptk.particles(parts)["area"]) == [150, 200]
print(ptk.__file__)
END
environment/bin/pip install --quiet once/*.whl
env -u ORLUNE_PTK_LIBRARY environment/bin/python use.py | grep -q "^$work/environment/"
environment/bin/pip uninstall --quiet --yes orlune-ptk
if env -u ORLUNE_PTK_LIBRARY environment/bin/python use.py 2>/dev/null; then
  echo "the package is still there" >&2
  exit 1
fi
environment/bin/pip install --quiet "$root"
env -u ORLUNE_PTK_LIBRARY environment/bin/python use.py | grep -q "^$work/environment/"
