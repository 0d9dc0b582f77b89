"""Pages of functions, made from the comments of the public headers: one a function, one a family, and an index."""

import ast
import html
import re
import textwrap
from pathlib import Path

from headers import Enumeration, Family, Function, Record
from manual_pages import first_sentence, library_text, meanings_of, parts_of


class Reference:
    """All families, and where what they declare is told. Pages lie in the folder `functions`."""

    def __init__(self, families: list[Family], python: dict[str, list[str]]) -> None:
        self.families = families
        self.python = python
        self.meanings = meanings_of(families)
        self.places = {
            function.name: f"{function.name}.html" for each in families for function in each.functions
        }
        for family in families:
            declarations: list[Enumeration | Record] = [*family.enumerations, *family.records]
            for declared in declarations:
                self.places[declared.name] = f"{family.name}.html#{declared.name}"
            for enumeration in family.enumerations:
                for name, _, _ in enumeration.members:
                    self.places[name] = f"{family.name}.html#{enumeration.name}"
            for name, _ in family.limits:
                self.places[name] = f"{family.name}.html"

    def linked(self, text: str, here: str = "") -> str:
        """Escaped text in which names that are told elsewhere lead there. Those in quotes are names under which a
        failure is reported, and not always functions."""

        def link(match: re.Match[str]) -> str:
            place = self.places.get(match[0], "")
            return f'<a href="{place}">{match[0]}</a>' if place and match[0] != here else match[0]

        rules = '<a href="rules.html">orlune_ptk.h</a>'
        return re.sub(r"(?<!&quot;)\b[A-Z]\w{3,}\b", link, html.escape(text)).replace(
            "told in orlune_ptk.h", f"told in {rules}"
        )

    def paragraphs(self, text: str, here: str = "") -> str:
        """Paragraphs, lists, and lines that are set in, such as tables, which keep their shape."""
        lines = []
        for paragraph in re.split(r"\n\s*\n", text.strip("\n")):
            for kind, run in runs(paragraph):
                if kind == "list":
                    entries = re.split(r"(?:^|\n)- ", run)[1:]
                    lines += ["<ul>", *(f"<li>{self.linked(entry, here)}</li>" for entry in entries), "</ul>"]
                elif kind == "drawn":
                    lines.append(f'<pre class="drawn">{self.linked(textwrap.dedent(run), here)}</pre>')
                else:
                    lines.append(f"<p>{self.linked(run, here)}</p>")
        return "\n".join(lines)

    def declaration(self, function: Function) -> str:
        parameters = []
        for parameter in function.parameters:
            const = "const " if parameter.const else ""
            kind = self.linked(parameter.type)
            parameters.append(f"{const}{kind}{'*' * parameter.stars} <i>{parameter.name}</i>")
        inside = f",\n{' ' * (len(function.result) + len(function.name) + 2)}".join(parameters) or "void"
        return f"{self.linked(function.result)} <b>{function.name}</b>({inside});"

    def function_page(self, function: Function, family: Family) -> str:
        prose, told, besides, failures = parts_of(function)
        here = function.name
        body = [f'<pre class="declared">#include &lt;orlune_ptk/{family.name}.h&gt;\n']
        body.append(f"{self.declaration(function)}</pre>")
        body += [self.paragraphs(prose, here), self.paragraphs(besides, here)]
        if told:
            body.append('<h2 id="parameters">Parameters</h2>\n<dl>')
            body += [f"<dt>{name}</dt><dd>{self.linked(text, here)}</dd>" for name, text in told.items()]
            body.append("</dl>")
        body.append(f'<h2 id="failures">Failures</h2>\n<p>{self.linked(failures, here)}</p>')
        numbers = sorted(set(re.findall(r"(?<![\w.])-\d+", failures)), key=lambda number: -int(number))
        meant = [number for number in numbers if number in self.meanings]
        if meant:
            body.append('<dl class="numbers">')
            body += [f"<dt>{number}</dt><dd>{self.linked(self.meanings[number])}</dd>" for number in meant]
            body.append("</dl>")
        if function.name in self.python:
            names = ", ".join(f"<code>ptk.{name}</code>" for name in self.python[function.name])
            body.append(f'<h2 id="python">In Python</h2>\n<p>{names}</p>')
        body.append('<h2 id="family">Of the same family</h2>\n<p class="names">')
        body += [
            f'<a href="{each.name}.html">{each.name}</a>' for each in family.functions if each is not function
        ]
        body.append(f'</p>\n<p><a href="{family.name}.html">The family {family.name}</a></p>')
        return page(function.name, body, f"{family.name}.html", title_of(family))

    def family_page(self, family: Family) -> str:
        body = [f'<pre class="declared">#include &lt;orlune_ptk/{family.name}.h&gt;</pre>']
        body.append(self.paragraphs(family.comment))
        if family.functions:
            body += ['<h2 id="functions">Functions</h2>', *self.list_of(family)]
        declarations: list[Enumeration | Record] = [*family.enumerations, *family.records]
        for each in declarations:
            body += [f'<h2 id="{each.name}">{each.name}</h2>', self.paragraphs(each.comment, each.name)]
            body.append(f'<pre class="declared">{self.linked(each.source, each.name)}</pre>')
        return page(title_of(family), body, "index.html", "Functions")

    def list_of(self, family: Family) -> list[str]:
        """Each function of a family with what it does."""
        rows = ['<dl class="functions">']
        for function in family.functions:
            about = html.escape(first_sentence(function.comment))
            rows.append(f'<dt><a href="{function.name}.html">{function.name}</a></dt><dd>{about}</dd>')
        return [*rows, "</dl>"]

    def index(self) -> str:
        count = sum(len(family.functions) for family in self.families)
        body = [
            f"<p>All {count} functions of the library, by families. Each has a page, made from its header.</p>"
        ]
        body.append('<p><a href="rules.html">What holds for all functions</a></p>\n<ul class="families">')
        body += [f'<li><a href="#{family.name}">{title_of(family)}</a></li>' for family in self.families]
        body.append("</ul>")
        for family in self.families:
            title = f'<a href="{family.name}.html">{title_of(family)}</a>'
            about = (
                self.list_of(family)
                if family.functions
                else [self.paragraphs(first_paragraph(family.comment))]
            )
            body += [f'<h2 id="{family.name}">{title}</h2>', *about]
        return page("Functions", body)

    def rules(self) -> str:
        return page(
            "What holds for all functions", [self.paragraphs(library_text())], "index.html", "Functions"
        )

    def write(self, folder: Path) -> int:
        """Writes all pages, and tells how many functions have one."""
        folder.mkdir(parents=True)
        (folder / "index.md").write_text(self.index())
        (folder / "rules.md").write_text(self.rules())
        for family in self.families:
            (folder / f"{family.name}.md").write_text(self.family_page(family))
            for function in family.functions:
                (folder / f"{function.name}.md").write_text(self.function_page(function, family))
        return sum(len(family.functions) for family in self.families)


def first_paragraph(text: str) -> str:
    return text.split("\n\n")[0]


def runs(paragraph: str) -> list[tuple[str, str]]:
    """The lines of a paragraph in runs of one kind: a list, lines that are set in, or words. Lines that are set in
    go on with a list."""
    found: list[tuple[str, str]] = []
    for line in paragraph.split("\n"):
        kind = "list" if line.startswith("- ") else "drawn" if line.startswith("  ") else "words"
        if found and (found[-1][0] == kind or (found[-1][0] == "list" and kind == "drawn")):
            found[-1] = (found[-1][0], f"{found[-1][1]}\n{line}")
        elif line.strip():
            found.append((kind, line))
    return found


def title_of(family: Family) -> str:
    words = re.sub(r"_", " ", family.name)
    return words[:1].upper() + words[1:]


def page(title: str, body: list[str], up: str = "", up_title: str = "") -> str:
    above = f"up: {up}\nup_title: {up_title}\n" if up else ""
    return f"---\ntitle: {title}\n{above}---\n\n# {title}\n\n<div>\n" + "\n".join(body) + "\n</div>\n"


def python_functions(package: Path) -> dict[str, list[str]]:
    """For each C function the functions of the Python package that say that they wrap it."""
    found: dict[str, list[str]] = {}
    public = set(re.findall(r'^    "(\w+)",$', (package / "__init__.py").read_text(), re.MULTILINE))
    for source in sorted(package.glob("[a-z]*.py")):
        for statement in ast.parse(source.read_text()).body:
            if isinstance(statement, ast.FunctionDef) and statement.name in public:
                for name in re.findall(r"ZEL_\w+", " ".join(map(ast.unparse, statement.decorator_list))):
                    found.setdefault(name, []).append(statement.name)
    return found
