"""Reads the public C headers: families with their functions, records and enumerations, and what is told of them."""

import re
from dataclasses import dataclass, field
from pathlib import Path

INCLUDE = Path(__file__).resolve().parent.parent / "include"
COMMENT = r"/\*(?:[^*]|\*(?!/))*\*/"


@dataclass
class Parameter:
    type: str  # without const and stars
    stars: int
    const: bool
    name: str


@dataclass
class Function:
    name: str
    result: str  # as in the header
    parameters: list[Parameter]
    comment: str


@dataclass
class Enumeration:
    name: str
    comment: str
    source: str  # the declaration, as the header has it
    members: list[tuple[str, int, str]] = field(default_factory=list)


@dataclass
class Record:
    name: str
    comment: str
    source: str
    fields: list[Parameter]


@dataclass
class Family:
    name: str
    comment: str
    enumerations: list[Enumeration] = field(default_factory=list)
    records: list[Record] = field(default_factory=list)
    functions: list[Function] = field(default_factory=list)
    limits: list[tuple[str, int]] = field(default_factory=list)


def plain(comment: str) -> str:
    """The text of a C comment."""
    lines = [re.sub(r"^ ?\* ?", "", line) for line in comment[2:-2].split("\n")]
    return "\n".join(line.rstrip() for line in lines).strip()


def one_line(comment: str) -> str:
    return " ".join(plain(comment).split())


def parameter_of(text: str) -> Parameter:
    match = re.fullmatch(r"(const )?(\w+)\s*(\**)\s*(?:const )?(\w+)(\[\w*\])?", text.strip())
    if match is None:
        raise SystemExit(f"headers.py: no parameter: {text!r}")
    const, type_name, stars, name, array = match.groups()
    return Parameter(type_name, len(stars), bool(const), name + (array or ""))


def read_enumeration(name: str, comment: str, source: str, body: str) -> Enumeration:
    enumeration = Enumeration(name, plain(comment), source)
    for member in re.finditer(rf"(\w+)\s*=\s*(-?\w+),?\s*({COMMENT})?", body):
        text = one_line(member[3]) if member[3] else ""
        enumeration.members.append((member[1], int(member[2], 0), text))
    return enumeration


def read_record(name: str, comment: str, source: str, body: str) -> Record:
    fields = []
    for declaration in re.sub(COMMENT, "", body).split(";"):
        words = " ".join(declaration.split())
        if words:
            first, *others = words.split(",")
            head = first.rsplit(" ", 1)[0]
            fields.append(parameter_of(first))
            fields.extend(parameter_of(f"{head} {other.strip()}") for other in others)
    return Record(name, plain(comment), source, fields)


def read_family(path: Path) -> Family:
    text = path.read_text()
    first = re.match(COMMENT, text)
    assert first is not None, path
    family = Family(path.stem, plain(first[0]))
    # The comment of the family ends where the includes begin; what follows are declarations.
    for item in re.finditer(
        rf"(?P<comment>{COMMENT}\n)?(?P<source>"
        r"#define (?P<limit>[A-Z]\w+) (?P<number>-?\w+)(?: +/\*[^\n]*)?\n"
        r"|typedef enum (?P<enumeration>\w+) \{(?P<members>.*?)\} \w+;"
        r"|(?:__extension__ )?typedef struct (?P<record>\w+) \{(?P<fields>.*?)\} \w+;"
        r"|(?P<result>(?:const )?\w+\**) ?(?P<function>ZEL_\w+)\((?P<parameters>[^)]*)\);)",
        text[first.end() :],
        re.DOTALL,
    ):
        comment = (item["comment"] or "").strip()
        source = item["source"].strip()
        if item["limit"]:
            family.limits.append((item["limit"], int(item["number"].rstrip("u"), 0)))
        elif item["enumeration"]:
            family.enumerations.append(
                read_enumeration(item["enumeration"], comment, source, item["members"])
            )
        elif item["record"]:
            family.records.append(read_record(item["record"], comment, source, item["fields"]))
        else:
            inside = " ".join(item["parameters"].split())
            parameters = [] if inside == "void" else [parameter_of(part) for part in inside.split(",")]
            family.functions.append(Function(item["function"], item["result"], parameters, plain(comment)))
    return family


def read_families() -> list[Family]:
    """All families in the order in which the umbrella header includes them, but first what all of them use."""
    umbrella = (INCLUDE / "orlune_ptk.h").read_text()
    names: list[str] = re.findall(r'^#include "orlune_ptk/(\w+)\.h"', umbrella, re.MULTILINE)
    names.sort(key=lambda name: name != "types")
    families = [read_family(INCLUDE / "orlune_ptk" / f"{name}.h") for name in names]
    exported = re.findall(r"^ZEL_\w+$", (INCLUDE / "exports.txt").read_text(), re.MULTILINE)
    found = [function.name for family in families for function in family.functions]
    if sorted(exported) != sorted(found):
        raise SystemExit(f"headers.py: not as in exports.txt: {sorted(set(exported) ^ set(found))}")
    return families
