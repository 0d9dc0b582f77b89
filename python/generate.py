#!/usr/bin/env python3
"""Makes the low-level modules of the package from the public C headers.

usage: generate.py [FOLDER]

Writes constants.py, records.py and lowlevel.py into orlune_ptk beside this file, where git does not look at them.
With FOLDER it makes FOLDER/orlune_ptk, the whole package, and leaves the sources alone.
"""

import re
import shutil
import sys
from pathlib import Path

from headers import Family, Function, Parameter, Record, read_families

HERE = Path(__file__).resolve().parent
PACKAGE = HERE / "orlune_ptk"

# C type: what ctypes calls it, what NumPy calls it, what a caller sees.
SCALARS = {
    "int32_t": ("c_int32", "i4", "int"),
    "uint32_t": ("c_uint32", "u4", "int"),
    "int16_t": ("c_int16", "i2", "int"),
    "uint16_t": ("c_uint16", "u2", "int"),
    "uint8_t": ("c_uint8", "u1", "int"),
    "intptr_t": ("c_ssize_t", "i8", "int"),
    "uintptr_t": ("c_size_t", "u8", "int"),
    "float": ("c_float", "f4", "float"),
    "double": ("c_double", "f8", "float"),
    "ImageRef": ("c_uint32", "u4", "Reference"),
    "RGBValue": ("c_uint32", "u4", "int"),
}

# Functions that return int32_t, but no status: what they return is never a failure.
NO_STATUS = {
    "ZEL_ProcessError",
    "ZEL_SetErrorMode",
    "ZEL_GetErrorMode",
    "ZEL_GetLastError",
    "ZEL_GetImageReference",
}
# Functions that return failures as positive numbers.
POSITIVE_STATUS = {"ZEL_GetImageInfo"}


def snake(name: str) -> str:
    return re.sub(r"(?<=[a-z])(?=[A-Z])", "_", name).lower()


def dtype_name(record: str) -> str:
    return snake(record.replace("3D", "3d")).upper()


def docstring(text: str, indent: str) -> str:
    text = text.replace("\\", "\\\\").replace('"""', "'''")
    lines = [f"{indent}{line}".rstrip() for line in text.split("\n")]
    lines[0] = f'{indent}"""{lines[0].strip()}'
    return "\n".join(lines) + ('"""' if len(lines) == 1 else f'\n{indent}"""')


def stripped(members: list[tuple[str, int, str]]) -> list[str]:
    """The names of enumerators without what all of them begin with."""
    names = [name for name, _, _ in members]
    words = names[0].split("_")
    for length in range(len(words) - 1, 0, -1):
        head = "_".join(words[:length]) + "_"
        if all(name.startswith(head) and not name[len(head)].isdigit() for name in names):
            return [name[len(head) :] for name in names]
    return names


BANNER = '"""{title}\n\nMade by generate.py from the public headers; not to be changed by hand.\n"""\n'


def constants_module(families: list[Family]) -> str:
    lines = [BANNER.format(title="The numbers that functions take and give: enumerations and limits.")]
    lines.append("from enum import IntEnum\n")
    for family in families:
        lines.extend(f"{name} = {number}" for name, number in family.limits)
    texts: dict[int, str] = {}
    for family in families:
        for enumeration in family.enumerations:
            lines.append(f"\n\nclass {enumeration.name}(IntEnum):")
            lines.append(docstring(enumeration.comment or f"See {family.name}.h.", "    ") + "\n")
            for short, (_, number, text) in zip(stripped(enumeration.members), enumeration.members):
                lines.append(f"    {short} = {number}")
                if text:
                    lines.append(docstring(text, "    "))
                if enumeration.name == "FailureNumber":
                    text = text.replace("... that", "a pixel type that")
                    texts[number] = f"{texts[number]}; or {text}" if number in texts else text
    lines.append("\n\nFAILURE_TEXTS: dict[int, str] = {")
    lines.extend(f'    {number}: "{text}",' for number, text in texts.items())
    lines.append("}")
    return "\n".join(lines) + "\n"


def ctypes_of(parameter: Parameter) -> str:
    scalar = SCALARS.get(parameter.type)
    name = "c_void_p" if parameter.stars > 0 else scalar[0] if scalar else parameter.type
    length = re.search(r"\[(\d*)\]", parameter.name)
    return f"{name} * {length[1] or 0}" if length else name


def array_fields(record: Record, records: dict[str, Record]) -> list[tuple[str, str]] | None:
    """The fields of a record in an array of NumPy; those of a record inside it are its own. None for a
    record that holds addresses."""
    fields: list[tuple[str, str]] = []
    for each in record.fields:
        if each.stars > 0 or each.name.endswith("[]"):
            return None
        if each.type in records:
            inside = array_fields(records[each.type], records)
            assert inside is not None
            fields.extend(inside)
        else:
            code = SCALARS[each.type][1]
            length = re.search(r"\[(\d+)\]", each.name)
            name = snake(each.name.split("[")[0])
            fields.append((name, f"({length[1]},){code}" if length else code))
    return fields


def records_module(families: list[Family]) -> str:
    records = {record.name: record for family in families for record in family.records}
    lines = [BANNER.format(title="Records: as ctypes structures, and as NumPy types of their arrays.")]
    lines.append("import ctypes")
    lines.append("from ctypes import c_float, c_int32, c_uint8, c_uint16, c_uint32, c_void_p\n")
    lines.append("import numpy as np")
    dtypes = []
    for record in records.values():
        lines.append(f"\n\nclass {record.name}(ctypes.Structure):")
        lines.append(docstring(record.comment or f"{record.name} of the C interface.", "    ") + "\n")
        lines.append("    _fields_ = [")
        for each in record.fields:
            lines.append(f'        ("{each.name.split("[")[0]}", {ctypes_of(each)}),')
        lines.append("    ]")
        fields = array_fields(record, records)
        if fields is not None:
            inside = ", ".join(f'("{field_name}", "{code}")' for field_name, code in fields)
            dtypes.append(f"{dtype_name(record.name)} = np.dtype([{inside}], align=True)")
    lines.append("\n\n# Fields of a rectangle inside a record stand among the record's own.")
    lines.extend(dtypes)
    return "\n".join(lines) + "\n"


def argument_of(parameter: Parameter, records: dict[str, Record]) -> tuple[str, str]:
    """How ctypes converts an argument, and what a type checker knows of it."""
    if parameter.stars == 0:
        if parameter.type in SCALARS:
            ctype, _, seen = SCALARS[parameter.type]
            return f"ctypes.{ctype}", seen
        if parameter.type == "WindowCallback":
            return "WindowCallback", "Pointer"
        return f"records.{parameter.type}", f"records.{parameter.type}"
    if parameter.stars == 2:
        return "pointer()", "Pointer"
    if parameter.type == "char" and parameter.const:
        return "ctypes.c_char_p", "bytes | None"
    if parameter.type in ("char", "void"):
        return "pointer()", "Pointer"
    access = "" if parameter.const else ", written=True"
    if parameter.type in SCALARS:
        return f'pointer("{SCALARS[parameter.type][1]}"{access})', "Pointer"
    if array_fields(records[parameter.type], records) is None:
        return "pointer()", "Pointer"
    return f"pointer(records.{dtype_name(parameter.type)}{access})", "Pointer"


def function_text(function: Function, records: dict[str, Record]) -> list[str]:
    arguments = [argument_of(parameter, records) for parameter in function.parameters]
    names = [parameter.name for parameter in function.parameters]
    if function.result == "void":
        ctype, seen = "None", "None"
    elif function.result == "int32_t":
        ctype, seen = "ctypes.c_int32", "int"
    else:
        ctype, seen = "ctypes.c_void_p", "int | None"

    bound = f"_{function.name[4:]}"
    converters = "".join(f"\n    {converter}," for converter, _ in arguments)
    lines = [f'\n\n{bound} = bind("{function.name}", {ctype}' + (f",{converters}\n)" if arguments else ")")]
    signature = ", ".join(f"{name}: {kind}" for name, (_, kind) in zip(names, arguments))
    if len(signature) > 80:
        signature = "".join(f"\n    {name}: {kind}," for name, (_, kind) in zip(names, arguments)) + "\n"
    lines.append(f"\n\ndef {function.name}({signature}) -> {seen}:")
    # What is told of parameters and failures begins after a blank line.
    told = re.sub(rf"\n({names[0]}: )" if names else r"\n(Failures: )", r"\n\n\1", function.comment, count=1)
    lines.append(docstring(told, "    "))
    passed = [
        # ctypes would find this number by itself, but takes longer for it than for all the rest of a call
        f'getattr({parameter.name}, "_as_parameter_", {parameter.name})'
        if parameter.type == "ImageRef" and parameter.stars == 0
        else parameter.name
        for parameter in function.parameters
    ]
    call = f"{bound}({', '.join(passed)})"
    if function.result == "int32_t" and function.name not in NO_STATUS:
        failed = "status > 0" if function.name in POSITIVE_STATUS else "status < 0"
        lines.append(f"    with lock:\n        status: int = {call}")
        lines.append(f'    if {failed}:\n        raise failure(status, "{function.name}")')
        lines.append("    return status")
    elif function.result == "void":
        lines.append(f"    with lock:\n        {call}")
    else:
        lines.append(f"    with lock:\n        result: {seen} = {call}\n    return result")
    return lines


def lowlevel_module(families: list[Family]) -> str:
    records = {record.name: record for family in families for record in family.records}
    title = (
        "Every function of the library by its C name, with the arguments of C.\n\n"
        "An image is an Image or the number of a reference, 0 is none. Where C takes an address, a contiguous\n"
        "NumPy array of the right type goes, what ctypes makes (byref, arrays), an address as a number, or None.\n"
        "A failure raises PtkError. One thread at a time is inside the library; others wait.\n\n"
        "Image.pixels notices what functions here do to an image. Arrays of NumPy over an image's pixels do\n"
        "not: an image that such an array lies on is not to be resized, replaced or disposed of from here."
    )
    lines = [BANNER.format(title=title)]
    lines.append("import ctypes\n")
    lines.append("from . import records")
    lines.append("from ._library import Pointer, Reference, bind, failure, lock, pointer\n")
    lines.append("WindowCallback = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_size_t)")
    for family in families:
        title = f"# ---- {family.name}.h "
        lines.append(f"\n\n{title}{'-' * (108 - len(title))}")
        for function in family.functions:
            lines.extend(function_text(function, records))
    return "\n".join(lines) + "\n"


def write_modules(folder: Path) -> None:
    families = read_families()
    (folder / "constants.py").write_text(constants_module(families))
    (folder / "records.py").write_text(records_module(families))
    (folder / "lowlevel.py").write_text(lowlevel_module(families))


def make_package(folder: Path) -> Path:
    """Copies the package into a folder and writes its other modules there."""
    package = folder / "orlune_ptk"
    shutil.rmtree(package, ignore_errors=True)
    package.mkdir(parents=True)
    for source in sorted(PACKAGE.iterdir()):
        if source.suffix == ".py" or source.name == "py.typed":
            shutil.copy(source, package)
    write_modules(package)
    return package


if __name__ == "__main__":
    if len(sys.argv) > 1:
        make_package(Path(sys.argv[1]))
    else:
        write_modules(PACKAGE)
