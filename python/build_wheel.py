#!/usr/bin/env python3
"""Makes the wheel of the package, with the library in it; the build backend of pyproject.toml.

usage: build_wheel.py FOLDER

It needs nothing but Python's own library and, to build orlune_ptk, what a C++ build needs. ORLUNE_PTK_LIBRARY names
a library that is built already. The same sources and library give the same bytes.
"""

import base64
import hashlib
import os
import re
import subprocess
import sys
import sysconfig
import tempfile
import zipfile
from pathlib import Path

from generate import make_package

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent
LIBRARY = "liborlune_ptk.so.1"

METADATA = """\
Metadata-Version: 2.1
Name: orlune-ptk
Version: {version}
Summary: Machine vision and image processing for NumPy
Requires-Python: >=3.10
Requires-Dist: numpy>=1.24
"""

# The newest GLIBCXX_3.4.x that systems with a given glibc 2.y have at least: rows of x and y.
STANDARD_LIBRARIES = ((24, 28), (28, 31), (29, 34), (30, 35), (32, 39))


def version() -> str:
    text = (ROOT / "CMakeLists.txt").read_text()
    match = re.search(r"^project\(orlune_ptk VERSION ([\d.]+)", text, re.MULTILINE)
    assert match is not None
    return match[1]


def library() -> Path:
    """The library to put in: the one that is named, or one that is built now."""
    named = os.environ.get("ORLUNE_PTK_LIBRARY")
    if named:
        return Path(named).resolve()
    build = ["cmake", "--build", "--preset", "install", "--target", "orlune_ptk"]
    for command in (["cmake", "--preset", "install"], build):
        subprocess.run(command, cwd=ROOT, check=True, stdout=sys.stderr)
    return ROOT / "build/install" / LIBRARY


def newest(symbols: bytes, prefix: bytes) -> int:
    return max((int(number) for number in re.findall(prefix + rb"\.(\d+)", symbols)), default=0)


def platform_tag(binary: bytes) -> str:
    """The systems on which the library runs, told by the versions of symbols that it asks for."""
    glibc, runtime = newest(binary, rb"GLIBC_2"), newest(binary, rb"GLIBCXX_3\.4")
    machine = sysconfig.get_platform().split("-", 1)[1].replace("-", "_")
    for offered, least_glibc in STANDARD_LIBRARIES:
        if runtime <= offered:
            return f"manylinux_2_{max(glibc, least_glibc)}_{machine}"
    return f"linux_{machine}"


def write_wheel(path: Path, files: dict[str, bytes], record: str) -> None:
    rows = []
    for name, data in files.items():
        digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
        rows.append(f"{name},sha256={digest},{len(data)}\n")
    files = {**files, record: "".join([*rows, f"{record},,\n"]).encode()}
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, data in files.items():
            entry = zipfile.ZipInfo(name, (1980, 1, 1, 0, 0, 0))
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = (0o755 if name.endswith(LIBRARY) else 0o644) << 16
            archive.writestr(entry, data)


def build_wheel(
    wheel_directory: str, config_settings: object = None, metadata_directory: object = None
) -> str:
    """Makes the wheel in a folder and tells its name, as pip asks for it."""
    binary = library().read_bytes()
    with tempfile.TemporaryDirectory() as folder:
        package = make_package(Path(folder))
        files = {f"orlune_ptk/{path.name}": path.read_bytes() for path in sorted(package.iterdir())}
    files[f"orlune_ptk/{LIBRARY}"] = binary
    files["orlune_run.py"] = (HERE / "orlune_run.py").read_bytes()

    tag = f"py3-none-{platform_tag(binary)}"
    info = f"orlune_ptk-{version()}.dist-info"
    readme = (HERE / "README.md").read_text()
    about = METADATA.format(version=version()) + "Description-Content-Type: text/markdown\n\n" + readme
    files[f"{info}/METADATA"] = about.encode()
    files[
        f"{info}/WHEEL"
    ] = f"Wheel-Version: 1.0\nGenerator: orlune_ptk\nRoot-Is-Purelib: false\nTag: {tag}\n".encode()
    name = f"orlune_ptk-{version()}-{tag}.whl"
    write_wheel(Path(wheel_directory) / name, files, f"{info}/RECORD")
    return name


def build_sdist(sdist_directory: str, config_settings: object = None) -> str:
    """The sources are the repository's, as git has them."""
    name = f"orlune_ptk-{version()}"
    path = Path(sdist_directory) / f"{name}.tar.gz"
    command = ["git", "archive", f"--prefix={name}/", f"--output={path}", "HEAD"]
    subprocess.run(command, cwd=ROOT, check=True)
    return path.name


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: build_wheel.py FOLDER")
    Path(sys.argv[1]).mkdir(parents=True, exist_ok=True)
    print(Path(sys.argv[1]) / build_wheel(sys.argv[1]))
