#!/usr/bin/env python3
"""Makes the manual pages of section 3 from the public headers: one for each function, one for each family with its
records and enumerations, and one for what holds for all.

usage: manual_pages.py FOLDER VERSION
"""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "python"))

from headers import INCLUDE, Enumeration, Family, Function, Record, plain, read_families  # noqa: E402


def escaped(text: str) -> str:
    """Text as man takes it: no dashes that become hyphens, no line that begins like a request."""
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return re.sub(r"^(?=[.'])", r"\\&", text, flags=re.MULTILINE)


def linked(text: str) -> str:
    """Escaped text in which functions are seen as pages of their own. Names in quotes are those under which a
    failure is reported, and not always functions."""
    return re.sub(r'(?<!")\b(ZEL_[A-Za-z0-9_]+)\b', r"\\fB\1\\fR(3)", escaped(text))


def block(text: str) -> list[str]:
    """Lines that stay as they are."""
    return [".PP", ".in +4n", ".nf", escaped(text), ".fi", ".in"]


def paragraphs(text: str) -> list[str]:
    """Paragraphs and lists; those with lines that are set in, such as tables, keep their lines."""
    lines: list[str] = []
    for paragraph in re.split(r"\n\s*\n", text.strip("\n")):
        if paragraph.startswith("- "):
            for entry in re.split(r"(?:^|\n)- ", paragraph)[1:]:
                lines += [".IP \\(bu 2", linked(re.sub(r"\n +", "\n", entry))]
        elif re.search(r"^ {2}", paragraph, re.MULTILINE):
            lines += [".PP", ".nf", linked(paragraph), ".fi"]
        else:
            lines += [".PP", linked(paragraph)]
    return lines


def first_sentence(text: str) -> str:
    words = " ".join(text.split())
    match = re.match(r".*?[^ .]{2}(?=[.:;](?: |$))", words)
    sentence = match[0] if match else words.rstrip(".")
    return sentence[:1].lower() + sentence[1:] if not sentence.startswith("IMAGE_") else sentence


def page(name: str, version: str, about: str, sections: list[str]) -> str:
    heading = f'.TH {name} 3 "" "orlune_ptk {version}" "orlune_ptk manual"'
    lines = [heading, ".ad l", ".nh", ".SH NAME"]  # names of functions are not to be hyphenated
    return "\n".join([*lines, f"{name} \\- {escaped(about)}", *sections]) + "\n"


def parts_of(function: Function) -> tuple[str, dict[str, str], str, str]:
    """What a comment tells: of the function, of each parameter, besides these, and of failures."""
    prose: list[str] = []
    told: dict[str, str] = {}
    besides: list[str] = []
    failures: list[str] = []
    names = {parameter.name for parameter in function.parameters}
    where = prose
    at = ""
    for line in function.comment.split("\n"):
        begin = re.match(r"(\w+):\s*(.*)", line)
        if begin and begin[1] in names and where is not failures:
            at = begin[1]
            told[at] = begin[2]
            continue
        if begin and begin[1] == "Failures":
            where, at = failures, ""
            line = begin[2]
        elif at and not line.startswith(" "):
            where, at = besides, ""
        if at:
            told[at] += "\n" + line.strip()
        else:
            where.append(line)
    return "\n".join(prose), told, "\n".join(besides), "\n".join(failures)


def synopsis(function: Function, header: str) -> list[str]:
    parameters = []
    for parameter in function.parameters:
        const = "const " if parameter.const else ""
        parameters.append(f'{const}{parameter.type}{"*" * parameter.stars} " {parameter.name} "')
    inside = ", ".join(parameters) or "void"
    return [".SH SYNOPSIS", ".nf", f".B #include <orlune_ptk/{header}.h>", ".PP", ".fi"] + [
        f'.BI "{function.result} {function.name}({inside});"'.replace('""', "")
    ]


def function_page(function: Function, family: Family, version: str, meanings: dict[str, str]) -> str:
    prose, told, besides, failures = parts_of(function)
    sections = synopsis(function, family.name)
    sections += [".SH DESCRIPTION", *paragraphs(prose)[1:]]
    if besides:
        sections += paragraphs(besides)
    if told:
        sections.append(".SH PARAMETERS")
        for name, text in told.items():
            sections += [".TP", f"\\fI{name}\\fR", linked(text)]
    sections += [".SH FAILURES", linked(failures)]
    numbers = sorted(set(re.findall(r"(?<![\w.])-\d+", failures)), key=lambda number: -int(number))
    for number in numbers:
        if number in meanings:
            sections += [".TP", f"\\fB{escaped(number)}\\fR", escaped(meanings[number])]
    others = [each.name for each in family.functions if each is not function]
    pages = [f"orlune_ptk_{family.name}", "orlune_ptk", *others]
    sections += [".SH SEE ALSO", ",\n".join(f"\\fB{name}\\fR(3)" for name in pages)]
    return page(function.name, version, first_sentence(prose), sections)


def family_page(family: Family, version: str) -> str:
    name = f"orlune_ptk_{family.name}"
    sections = [".SH SYNOPSIS", f".B #include <orlune_ptk/{family.name}.h>", ".SH DESCRIPTION"]
    sections += paragraphs(family.comment)[1:]
    if family.functions:
        sections.append(".SH FUNCTIONS")
        for function in family.functions:
            sections += [
                ".TP",
                f"\\fB{function.name}\\fR(3)",
                escaped(first_sentence(function.comment)) + ".",
            ]
    declarations: list[Enumeration | Record] = [*family.enumerations, *family.records]
    for each in declarations:
        sections += [f".SH {each.name.upper()}", *paragraphs(each.comment)[1:], *block(each.source)]
    sections += [".SH SEE ALSO", "\\fBorlune_ptk\\fR(3)"]
    return page(name, version, first_sentence(family.comment), sections)


def library_text() -> str:
    """What holds for all functions, as the umbrella header tells it."""
    comment = re.match(r"/\*.*?\*/", (INCLUDE / "orlune_ptk.h").read_text(), re.DOTALL)
    assert comment is not None
    return plain(comment[0]).split("What holds for all functions", 1)[1]


def library_page(families: list[Family], version: str) -> str:
    sections = [".SH SYNOPSIS", ".B #include <orlune_ptk.h>", ".PP", "Link with \\fI\\-lorlune_ptk\\fR."]
    sections += [".SH DESCRIPTION", *paragraphs(library_text())[1:], ".SH FAMILIES"]
    for family in families:
        sections += [
            ".TP",
            f"\\fBorlune_ptk_{family.name}\\fR(3)",
            escaped(first_sentence(family.comment)) + ".",
        ]
    sections += [".SH SEE ALSO", "\\fBorlune\\fR(1)"]
    return page(
        "orlune_ptk", version, "machine vision and image processing with a plain C interface", sections
    )


def meanings_of(families: list[Family]) -> dict[str, str]:
    """What each failure number means."""
    numbers = [each for family in families for each in family.enumerations if each.name == "FailureNumber"]
    meanings: dict[str, str] = {}
    for _, number, text in numbers[0].members:
        text = text.replace("... that", "a pixel type that")
        meanings[str(number)] = f"{meanings[str(number)]}; or {text}" if str(number) in meanings else text
    return meanings


def main() -> None:
    if len(sys.argv) != 3:
        sys.exit("usage: manual_pages.py FOLDER VERSION")
    folder, version = Path(sys.argv[1]), sys.argv[2]
    folder.mkdir(parents=True, exist_ok=True)
    families = read_families()
    meanings = meanings_of(families)
    (folder / "orlune_ptk.3").write_text(library_page(families, version))
    for family in families:
        (folder / f"orlune_ptk_{family.name}.3").write_text(family_page(family, version))
        for function in family.functions:
            (folder / f"{function.name}.3").write_text(function_page(function, family, version, meanings))


if __name__ == "__main__":
    main()
