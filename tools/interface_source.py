#!/usr/bin/env python3
"""Writes a C source with empty definitions of all public functions, and a variable for each enumeration, record and
limit: what a compiler makes of it has all types of the public interface, and none of the library's own.

usage: interface_source.py >FILE
"""

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "python"))

from headers import Family, Function, read_families  # noqa: E402


def function_definition(function: Function) -> str:
    parameters = [
        f'{"const " if each.const else ""}{each.type}{"*" * each.stars} {each.name}'
        for each in function.parameters
    ]
    contents = "" if function.result == "void" else " return 0; "
    return f'{function.result} {function.name}({", ".join(parameters) or "void"}) {{{contents}}}'


def variables(family: Family) -> list[str]:
    """Callers pass enumerators as plain numbers, so no function leads to their types: these do."""
    types = [each.name for each in family.enumerations] + [each.name for each in family.records]
    lines = [f"{name} a_{name};" for name in types]
    lines += [f"enum LIMIT_{name} {{ THE_{name} = {name} }} a_{name};" for name, _ in family.limits]
    return lines


def main() -> None:
    print("#include <orlune_ptk.h>")
    for family in read_families():
        print("\n".join([*variables(family), *map(function_definition, family.functions)]))


if __name__ == "__main__":
    main()
