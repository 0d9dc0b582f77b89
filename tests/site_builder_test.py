"""Tests what builds the site: pages cannot show what was not run, and no broken link passes.

usage: site_builder_test.py
"""

import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path[:0] = [str(ROOT / "tools" / "site"), str(ROOT / "tools"), str(ROOT / "python")]
sys.dont_write_bytecode = True

from build_site import with_sources  # noqa: E402
from check_links import check  # noqa: E402
from comparison import Comparison, agreement, read_row  # noqa: E402
from functions import Reference, python_functions, runs  # noqa: E402
from headers import read_families  # noqa: E402
from pages import Page, PageError, Workshop  # noqa: E402


class InFolder(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def write(self, name: str, text: str) -> None:
        place = self.folder / name
        place.parent.mkdir(parents=True, exist_ok=True)
        place.write_text(text)


class Pages(InFolder):
    def built(self, text: str, name: str = "page") -> str:
        shop = Workshop(self.folder, self.folder, self.folder, self.folder / "work")
        return Page(name, shop).text(text, self.folder / "docs")

    def test_what_a_command_prints_is_shown(self) -> None:
        page = self.built("```sh run\necho $((6 * 7)) '<b>'\n```\n")
        self.assertIn('<pre class="printed">42 &lt;b&gt;</pre>', page)
        self.assertIn("echo $((6 * 7)) &#x27;&lt;b&gt;&#x27;", page)

    def test_a_program_is_run_with_the_files_of_the_page(self) -> None:
        page = self.built(
            "```text file=note\nhello\n```\n\n```python run\nprint(open('note').read().upper())\n```\n"
        )
        self.assertIn('<pre class="printed">HELLO</pre>', page)

    def test_a_command_that_fails_ends_the_build(self) -> None:
        for command in ("false", "false\ntrue", "there-is-no-such-command"):
            with self.assertRaisesRegex(PageError, "exit status"):
                self.built(f"```sh run\n{command}\n```\n")
        with self.assertRaisesRegex(PageError, "exit status 1, not 0"):
            self.built("```python run\nraise ValueError\n```\n")

    def test_a_status_that_is_told_is_held(self) -> None:
        self.built("```sh run status=3\nexit 3\n```\n")
        with self.assertRaisesRegex(PageError, "exit status 0, not 3"):
            self.built("```sh run status=3\ntrue\n```\n")

    def test_a_block_that_is_not_run_is_refused(self) -> None:
        for block in ("```sh\ntrue\n```\n", "```python\npass\n```\n", "```c run\nint x;\n```\n"):
            with self.assertRaisesRegex(PageError, "neither a file nor run"):
                self.built(block)
        self.assertIn("a drawing", self.built("```text\na drawing\n```\n"))

    def test_a_file_that_no_command_uses_is_refused(self) -> None:
        with self.assertRaisesRegex(PageError, "files that no command uses: first.c"):
            self.built("```c file=first.c\nint x;\n```\n\n```sh run\ntrue\n```\n")

    def test_pictures_have_to_be_made_by_the_page(self) -> None:
        page = self.built("![a](made.png)\n\n```sh run\necho x > made.png\n```\n", "tutorial/one")
        self.assertIn("![a](../made/tutorial/one/made.png)", page)
        self.assertTrue((self.folder / "docs/made/tutorial/one/made.png").is_file())
        with self.assertRaisesRegex(PageError, "made other.png"):
            self.built("![a](other.png)\n")


class PagesOfTheRepository(InFolder):
    def test_files_that_they_name_are_copied(self) -> None:
        text = with_sources("[one](../examples/shaft.json): and ([all](../examples/recipes))\n", self.folder)
        self.assertEqual(text, "[one](sources/examples/shaft.json): and ([all](sources/examples/recipes/index.md))\n")
        self.assertTrue((self.folder / "sources/examples/shaft.json").is_file())
        self.assertTrue((self.folder / "sources/examples/recipes/tray.toml").is_file())

    def test_how_their_blocks_are_tried_is_left_out(self) -> None:
        page = with_sources("words\n\n<!-- run: cd x\ntrue -->\n```sh\ntrue\n```\n", self.folder)
        self.assertEqual(page, "words\n\n```sh\ntrue\n```\n")


class Links(InFolder):
    def wrong(self) -> list[str]:
        return check(self.folder)[0]

    def test_a_sound_site_passes(self) -> None:
        self.write(
            "index.html",
            '<a href="a/b.html#here">b</a><img src="p.png" alt="p"><a href="https://x.org">x</a>',
        )
        self.write("a/b.html", '<h1 id="here">b</h1><a href="../index.html">up</a><a href="#here">here</a>')
        self.write("p.png", "")
        wrong, pages, links = check(self.folder)
        self.assertEqual((wrong, pages, links), ([], 2, 4))

    def test_each_fault_is_named(self) -> None:
        self.write("b.html", '<h1 id="here">b</h1>')
        for body, complaint in (
            ('<a href="c.html">c</a>', "there is no c.html"),
            ('<a href="b.html#there">b</a>', "there is no place b.html#there"),
            ('<a href="#there">b</a>', "there is no place #there"),
            ('<img src="p.png" alt="p">', "there is no p.png"),
            ('<img src="b.html">', "a picture without words"),
            ("<script>x()</script>", "has a script"),
            ('<p onclick="x()">p</p>', "has a script"),
            ('<link rel="stylesheet" href="https://x.org/s.css">', "fetches https://x.org/s.css"),
            ("", "no link leads there"),
        ):
            self.write("index.html", f'<a href="b.html">b</a>{body}' if body else "<p>p</p>")
            self.assertTrue(any(complaint in each for each in self.wrong()), (body, self.wrong()))


class Tables(unittest.TestCase):
    ROW = "task: Add\ncv2: cv2.add(a, b)\nc: ZEL_Add(image,\n    other, result, 0);\npython: ptk.add(a, b)\ndiffers: `x` < y\n"

    def test_calls_that_are_shown_are_those_that_are_run(self) -> None:
        comparison = Comparison()
        table = comparison.table(self.ROW)
        self.assertIn('<td data-label="C"><pre>ZEL_Add(image,\n  other, result, 0);</pre></td>', table)
        self.assertIn("<code>x</code> &lt; y", table)
        self.assertIn('check(ZEL_Add(image, other, result, 0), "Add");', comparison.c_program())
        self.assertIn("'ptk.add(a, b)'", comparison.python_program())

    def test_a_row_that_lacks_something_is_refused(self) -> None:
        for key in ("task", "cv2", "c", "python", "differs"):
            lines = [line for line in self.ROW.split("\n") if not line.startswith((f"{key}:", "  "))]
            with self.assertRaisesRegex(ValueError, "lacks"):
                read_row("\n".join(line for line in lines if line))

    def test_agreement_is_told_in_words(self) -> None:
        self.assertEqual(agreement(""), "")
        self.assertIn("The same result.", agreement("0"))
        self.assertIn("The same result, to within 1, but for 2 pixels at each side.", agreement("2 1"))


class Functions(InFolder):
    def test_each_function_has_a_page_that_tells_each_parameter(self) -> None:
        families = read_families()
        reference = Reference(families, python_functions(ROOT / "python" / "orlune_ptk"))
        count = reference.write(self.folder / "functions")
        self.assertEqual(count, sum(len(family.functions) for family in families))
        index = (self.folder / "functions/index.md").read_text()
        for family in families:
            for function in family.functions:
                page = (self.folder / f"functions/{function.name}.md").read_text()
                self.assertIn(f'<a href="{function.name}.html">{function.name}</a>', index)
                self.assertIn('<h2 id="failures">', page)
                for parameter in function.parameters:
                    self.assertIn(f"<dt>{parameter.name}</dt>", page, function.name)
        self.assertIn("<code>ptk.threshold</code>", (self.folder / "functions/ZEL_Threshold.md").read_text())

    def test_tables_and_lists_are_told_apart(self) -> None:
        text = "Words\n  a  b\n  c  d\nmore\n- one\n  two\n- three"
        kinds = [
            ("words", "Words"),
            ("drawn", "  a  b\n  c  d"),
            ("words", "more"),
            ("list", "- one\n  two\n- three"),
        ]
        self.assertEqual(runs(text), kinds)


if __name__ == "__main__":
    unittest.main()
