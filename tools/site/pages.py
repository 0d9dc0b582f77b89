"""Pages of the site with commands and programs in them: what a page shows is what is run.

A fenced block of a page is one of
- ```LANGUAGE file=NAME   a file that is written into the page's folder, to be used by a command further down;
- ```sh run               commands that are run there; `status=N` after `run` is the exit status that they must have;
- ```python run           a program that is run there;
- ```text                 a drawing or the like.
What a command prints is shown below it. A picture or file that a page names without saying `.md` must have been made
by its commands.
"""

import html
import os
import re
import shutil
import subprocess
import sys
from dataclasses import dataclass, field
from pathlib import Path

FENCE = re.compile(r"^```(\w+)([^\n]*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
LINK = re.compile(r"(?<=\]\()([^)#:\s]+)(?=[)#])")
SECONDS = 300  # longer than any command takes on a busy machine


class PageError(Exception):
    """What is wrong with a page, in words for its writer."""


@dataclass
class Workshop:
    """Where commands run and what they find there."""

    build: Path  # of the library and the tools
    include: Path
    python: Path  # holds the Python package
    folder: Path
    runs: int = 0

    def environment(self) -> dict[str, str]:
        library = str(self.build)
        return dict(
            os.environ,
            PATH=f"{self.build / 'tools'}:{Path(sys.executable).parent}:{os.environ['PATH']}",
            CPATH=str(self.include),
            LIBRARY_PATH=library,
            LD_LIBRARY_PATH=library,
            ORLUNE_PTK_LIBRARY=str(self.build / "liborlune_ptk.so.1"),
            PYTHONPATH=str(self.python),
            PYTHONDONTWRITEBYTECODE="1",
            LC_ALL="C.UTF-8",
        )

    def run(self, command: list[str], where: Path, status: int) -> str:
        """What a command prints. A page does not stand if a command of it ends otherwise than the page says."""
        self.runs += 1
        done = subprocess.run(
            command,
            cwd=where,
            env=self.environment(),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
            timeout=SECONDS,
        )
        if done.returncode != status:
            raise PageError(f"exit status {done.returncode}, not {status}, of:\n{command[-1]}\n{done.stdout}")
        return done.stdout


def whole_words(command: str) -> str:
    """Escaped commands that go on in the next line where there is no room, but never within a word."""
    words = re.split(r"([ \n]+)", command)
    words[::2] = [
        f"<span>{html.escape(word)}</span>" if "-" in word else html.escape(word) for word in words[::2]
    ]
    return "".join(words)


@dataclass
class Page:
    name: str  # as tutorial/count
    shop: Workshop
    work: Path = field(init=False)
    unused: set[str] = field(default_factory=set)  # files that no command has used yet

    def __post_init__(self) -> None:
        self.work = self.shop.folder / self.name
        shutil.rmtree(self.work, ignore_errors=True)
        self.work.mkdir(parents=True)

    def block(self, match: re.Match[str]) -> str:
        language, options, text = match[1], match[2].split(), match[3]
        shown = f"```{language}\n{text}```"
        if not options and language == "text":
            return shown
        if len(options) == 1 and options[0].startswith("file="):
            name = options[0].removeprefix("file=")
            (self.work / name).write_text(text)
            self.unused.add(name)
            return f'<p class="label">{html.escape(name)}</p>\n\n{shown}'
        if options[:1] == ["run"] and language in ("sh", "python"):
            status = int("".join(options[1:]).removeprefix("status=") or "0")
            command = ["sh", "-euc", text] if language == "sh" else [sys.executable, "-c", text]
            self.unused = {name for name in self.unused if name not in text}
            printed = self.shop.run(command, self.work, status)
            if language == "sh":
                shown = f'<pre class="shell">{whole_words(text.rstrip())}</pre>'
            if not printed.strip():
                return shown
            return f'{shown}\n\n<pre class="printed">{html.escape(printed.rstrip())}</pre>'
        raise PageError(f"a block that is neither a file nor run: ```{language} {match[2]}")

    def made(self, target: str, site: Path) -> str:
        """The place in the site of a file that the page's commands have made."""
        if target.endswith(".md"):
            return target
        source = self.work / target
        if not source.is_file():
            raise PageError(f"no command of the page has made {target}")
        place = site / "made" / self.name / target
        place.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(source, place)
        return "../" * self.name.count("/") + f"made/{self.name}/{target}"

    def text(self, source: str, site: Path) -> str:
        blocks = FENCE.sub(self.block, source)
        if self.unused:
            raise PageError(f"files that no command uses: {', '.join(sorted(self.unused))}")
        # Blocks are left alone: a link may only stand outside of them.
        parts = re.split(r"(^```.*?^```$|<pre.*?</pre>)", blocks, flags=re.MULTILINE | re.DOTALL)
        for index in range(0, len(parts), 2):
            parts[index] = LINK.sub(lambda match: self.made(match[1], site), parts[index])
        return "".join(parts)
