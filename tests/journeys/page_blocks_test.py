"""Tries the commands and programs in the pages that stand by themselves: README.md, those of docs/ and that of the
Python package. A comment before each block, which no reader of the page sees, says what becomes of it:
  <!-- run -->                    commands or a program; `run, status N` if it ends otherwise than with 0
  <!-- run: COMMANDS -->          the same, after these commands of a shell, which lay ready what the reader has
  <!-- body of a program: ... --> the same for statements of C
  <!-- file NAME -->              a file, for blocks further down
  <!-- file NAME beside PATH -->  a file which but for comments and names of steps is that of the repository
  <!-- not run: REASON -->        a drawing, or what another test tries
Lines after `$ COMMAND` are what it has to print, but for times; `...` stands for any lines.

usage: page_blocks_test.py BUILD SCENES WORK_FOLDER
"""

import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tools" / "site")]
sys.dont_write_bytecode = True

from pages import PageError, Workshop  # noqa: E402

PAGES = [ROOT / "README.md", ROOT / "python/README.md", *sorted((ROOT / "docs").glob("*.md"))]
BLOCK = re.compile(r"(?:^<!-- ((?:(?!-->).)*) -->\n+)?^```(\w*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
PROGRAM = "#include <stdio.h>\n#include <orlune_ptk.h>\nint main(void) {{\n{}return status;\n}}\n"


def told(printed: str) -> list[str]:
    """The lines of an output, with a word for each time in it."""
    return [re.sub(r"\b[0-9.]+ m?s\b", "TIME", line.rstrip()) for line in printed.rstrip("\n").split("\n")]


def agrees(wanted: list[str], found: list[str]) -> bool:
    """Whether lines are the wanted ones, of which `...` is any number of lines."""
    if not wanted:
        return not found
    if wanted[0] == "...":
        return any(agrees(wanted[1:], found[begin:]) for begin in range(len(found) + 1))
    return bool(found) and wanted[0] == found[0] and agrees(wanted[1:], found[1:])


def bare(text: str) -> str:
    """A recipe without its comments and the names of its filter steps, which nothing is found by."""
    return re.sub(r'\s*#.*|^name = "quiet"\n', "", text, flags=re.MULTILINE).strip()


class Tried:
    """The blocks of a page, tried in a folder of the page."""

    def __init__(self, shop: Workshop, page: Path, scenes: Path) -> None:
        self.shop = shop
        self.work = shop.folder / page.parent.name / page.stem
        self.work.mkdir(parents=True)
        (self.work / "scenes").symlink_to(scenes)
        (self.work / "examples").symlink_to(ROOT / "examples")
        self.text = page.read_text()

    def block(self, kind: str, before: str, language: str, text: str) -> None:
        if kind == "not run":
            if not before:
                raise PageError("a block that is not run, without a reason")
            return
        if kind.startswith("file "):
            name, _, other = kind.removeprefix("file ").partition(" beside ")
            (self.work / name).write_text(text)
            if other and bare(text) != bare((ROOT / other).read_text()):
                raise PageError(f"{name} is not {other}:\n{text}")
            return
        found = re.fullmatch(r"(run|body of a program)(?:, status (\d+))?", kind)
        if not found:
            raise PageError(f"a block of which no comment before it tells what becomes of it:\n{text}")
        self.run(before, 0)
        status = int(found[2] or 0)
        if found[1] == "body of a program":
            (self.work / "program.c").write_text(PROGRAM.format(text))
            self.run("cc -Wall -Wextra -Werror program.c -lorlune_ptk -o program && ./program", status)
        elif language == "python":
            self.shop.run([sys.executable, "-c", text], self.work, status)
        elif text.startswith("$ "):
            self.dialogue(text, status)
        elif language == "sh":
            self.run(text, status)
        else:
            raise PageError(f"a block of {language} cannot be run:\n{text}")

    def run(self, commands: str, status: int) -> str:
        return self.shop.run(["sh", "-euc", commands], self.work, status)

    def dialogue(self, text: str, status: int) -> None:
        command, wanted = re.fullmatch(r"\$ ((?:[^\n]*\\\n)*[^\n]*\n)(.*)", text, re.DOTALL).groups()  # type: ignore
        printed = self.run(command, status)
        if not agrees(told(wanted), told(printed)):
            raise PageError(f"{command} prints\n{printed}\nand not\n{wanted}")

    def all_blocks(self) -> int:
        count = 0
        for comment, language, text in BLOCK.findall(self.text):
            kind, _, before = comment.partition(":")
            self.block(kind, before.strip(), language, text)
            count += 1
        fences = len(re.findall("^```", self.text, re.MULTILINE))
        if fences != 2 * count:
            raise PageError(f"{fences} fences are not those of {count} blocks")
        return count


class Rules(unittest.TestCase):
    """What must not pass does not."""

    def test_lines_are_compared_but_for_times(self) -> None:
        self.assertTrue(agrees(told("a 1.5 ms\n...\nb"), told("a 20 ms\nx\ny\nb\n")))
        self.assertTrue(agrees(told("...\nb\n..."), told("b")))
        for wanted, found in (("a", "b"), ("a", "a\nb"), ("a\n...\nb", "a\nc"), ("a 1", "a 2"), ("a 1 mm", "a 2 mm")):
            self.assertFalse(agrees(told(wanted), told(found)), (wanted, found))

    def test_blocks_without_a_word_of_what_becomes_of_them_are_refused(self) -> None:
        tried = object.__new__(Tried)
        for text in ("```sh\ntrue\n```\n", "<!-- not run -->\n```sh\ntrue\n```\n", "words\n```\nx\n"):
            tried.text = text
            with self.assertRaises(PageError):
                tried.all_blocks()


class Pages(unittest.TestCase):
    shop: Workshop
    scenes: Path

    def test_commands_and_programs_do_what_the_pages_say(self) -> None:
        tried = 0
        for page in PAGES:
            with self.subTest(page.relative_to(ROOT)):
                try:
                    tried += Tried(self.shop, page, self.scenes).all_blocks()
                except PageError as problem:
                    self.fail(f"{page.relative_to(ROOT)}: {problem}")
        self.assertGreater(self.shop.runs, 10)
        self.assertGreater(tried, 10)


def main() -> None:
    if len(sys.argv) != 4:
        sys.exit("usage: page_blocks_test.py BUILD SCENES WORK_FOLDER")
    if shutil.which("sqlite3") is None:
        print("skipped: there is no program sqlite3")
        sys.exit(77)
    build, scenes, work = (Path(argument).resolve() for argument in sys.argv[1:])
    subprocess.run(["rm", "-rf", str(work)], check=True)
    work.mkdir(parents=True)
    subprocess.run([sys.executable, str(ROOT / "python" / "generate.py"), str(work / "python")], check=True)
    Pages.shop = Workshop(build, ROOT / "include", work / "python", work / "pages")
    Pages.scenes = scenes
    unittest.main(argv=sys.argv[:1])


if __name__ == "__main__":
    main()
