#!/usr/bin/env python3
"""Builds the site: runs the commands and programs of its pages, makes the pages of functions from the public
headers, takes in the pages of docs/, and has mkdocs put all of it together. A command that fails ends the build.

usage: build_site.py BUILD SITE [PAGE...]

BUILD: a build folder with orlune, orlune_scenes and the library
PAGE:  as tutorial/count; of the site's own pages only these are run anew, which saves their writer's time
"""

import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
sys.path[:0] = [str(ROOT / "tools"), str(ROOT / "python")]

from comparison import Comparison  # noqa: E402
from functions import Reference, python_functions  # noqa: E402
from headers import read_families  # noqa: E402
from pages import FENCE, Page, PageError, Workshop  # noqa: E402

SOURCES = ROOT / "docs" / "site"
TAKEN = ROOT / "docs"  # pages that stand by themselves


def taken_in(docs: Path) -> None:
    """Copies the pages of docs/ and of the Python package. What they name outside of docs/ is copied too."""
    for source in [*TAKEN.glob("*.*"), *(TAKEN / "benchmarks").iterdir()]:
        place = docs / source.relative_to(TAKEN)
        place.parent.mkdir(parents=True, exist_ok=True)
        if source.suffix == ".md":
            place.write_text(with_sources(source.read_text(), docs))
        else:
            shutil.copyfile(source, place)
    (docs / "python.md").write_text(with_sources((ROOT / "python" / "README.md").read_text(), docs))
    (docs / "changes.md").write_text((ROOT / "CHANGELOG.md").read_text())


def with_sources(text: str, docs: Path) -> str:
    """The text of a page whose links to files of the repository lead to copies in the site."""

    def link(match: re.Match[str]) -> str:
        source = ROOT / match[1]
        names = sorted(source.iterdir()) if source.is_dir() else [source]
        for each in names:
            place = docs / "sources" / each.relative_to(ROOT)
            place.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(each, place)
        if not source.is_dir():
            return f"](sources/{match[1]})"
        listing = docs / "sources" / match[1] / "index.md"
        entries = "\n".join(f"- [{each.name}]({each.name})" for each in names)
        listing.write_text(f"# {match[1]}\n\n{entries}\n")
        return f"](sources/{match[1]}/index.md)"

    text = re.sub(r"^<!-- (?:(?!-->).)* -->\n", "", text, flags=re.MULTILINE | re.DOTALL)  # how its blocks are tried
    # On a narrow screen a spread stays with its value, and the figures of a group stay together.
    text = re.sub(r" \u00b1 |(?<=\d) (?=\d\b)", lambda match: match[0].replace(" ", "\u00a0"), text)
    return re.sub(r"\]\(\.\./([^)#]+)\)", link, text)


def compared(text: str, comparison: Comparison) -> str:
    """A page of tables that set calls side by side; the blocks of declarations are kept for its programs."""

    def block(match: re.Match[str]) -> str:
        language, options = match[1], match[2].strip()
        if language == "compare":
            return comparison.table(match[3])
        if options == "setup":
            name = {"c": "c_setup", "python": "python_setup", "cv2": "cv2_setup"}[language]
            setattr(comparison, name, getattr(comparison, name) + match[3])
            shown = "python" if language == "cv2" else language
            label = {"c": "C", "python": "Python", "cv2": "OpenCV"}[language]
            return f'<p class="label">{label}</p>\n\n```{shown}\n{match[3]}```'
        return match[0]

    return FENCE.sub(block, text)


def run_comparison(comparison: Comparison, page: Page) -> str:
    (page.work / "calls.c").write_text(comparison.c_program())
    (page.work / "calls.py").write_text(comparison.python_program())
    compiled = "cc -Wall -Werror calls.c -lorlune_ptk -o calls && ./calls"
    page.shop.run(["sh", "-euc", compiled], page.work, 0)
    return page.shop.run([sys.executable, "calls.py"], page.work, 0).strip()


def own_pages(docs: Path, shop: Workshop, wanted: list[str]) -> None:
    """Runs the pages in the order of their names, but the one first that makes the pictures of all others."""
    sources = sorted((SOURCES / "pages").rglob("*.md"), key=lambda path: (path.stem != "start", path))
    scenes: Path | None = None
    for source in sources:
        name = str(source.relative_to(SOURCES / "pages").with_suffix(""))
        began = time.monotonic()
        if wanted and name not in wanted and (docs / f"{name}.md").exists():
            scenes = scenes or shop.folder / name / "scenes"
            continue
        page = Page(name, shop)
        if scenes is not None:
            (page.work / "scenes").symlink_to(scenes)
        text = source.read_text()
        said = ""
        try:
            if "```compare" in text:
                comparison = Comparison()
                # The tables are HTML by now, and the declarations blocks without a run.
                text = compared(text, comparison)
                said = f": {len(comparison.rows)} rows; {run_comparison(comparison, page)}"
            else:
                text = page.text(text, docs)
        except (PageError, ValueError) as problem:
            sys.exit(f"{source.relative_to(ROOT)}: {problem}")
        place = docs / f"{name}.md"
        place.parent.mkdir(parents=True, exist_ok=True)
        place.write_text(text)
        scenes = scenes or page.work / "scenes"
        print(f"  {name}{said} ({time.monotonic() - began:.1f} s)", flush=True)


def python_package(build: Path, folder: Path) -> Path:
    """The Python package with its modules that are made from the headers."""
    subprocess.run([sys.executable, str(ROOT / "python" / "generate.py"), str(folder)], check=True)
    return folder


def main() -> None:
    if len(sys.argv) < 3:
        sys.exit("usage: build_site.py BUILD SITE [PAGE...]")
    build, site = (Path(argument).resolve() for argument in sys.argv[1:3])
    wanted = sys.argv[3:]
    work = site.with_name(f"{site.name}-work")
    docs = work / "docs"
    for folder in (docs / "functions", site) if wanted else (work, site):
        shutil.rmtree(folder, ignore_errors=True)
    docs.mkdir(parents=True, exist_ok=True)
    began = time.monotonic()
    shop = Workshop(build, ROOT / "include", python_package(build, work / "python"), work / "pages")
    print("site: running the commands and programs of the pages", flush=True)
    own_pages(docs, shop, wanted)
    taken_in(docs)
    count = Reference(read_families(), python_functions(ROOT / "python" / "orlune_ptk")).write(
        docs / "functions"
    )
    shutil.copyfile(SOURCES / "theme" / "style.css", docs / "style.css")
    configuration = (SOURCES / "mkdocs.yml").read_text()
    theme = SOURCES / "theme"
    (work / "mkdocs.yml").write_text(
        configuration + f"docs_dir: {docs}\nsite_dir: {site}\ntheme: {{name: null, custom_dir: {theme}}}\n"
    )
    subprocess.run(
        [sys.executable, "-m", "mkdocs", "build", "--strict", "--quiet", "-f", str(work / "mkdocs.yml")],
        check=True,
    )
    print(f"site: {shop.runs} commands and programs run, {count} functions, {time.monotonic() - began:.0f} s")


if __name__ == "__main__":
    main()
