#!/usr/bin/env python3
"""Makes the bar codes of another program that the tests read, with zint (and convert for pictures).

FOLDER/printed.tsv: one code a line: kind, its text, its text when the check is asked for ("refused"
where the reader must not take it, "none" where the kind looks at no such wish), and the widths of
bars and spaces in modules, from the first bar to the last one. Bytes that do not print stand as \\xNN.
FOLDER/*.pbm: some of them as pictures, as zint draws them.
usage: make_barcodes.py FOLDER
"""
import os
import subprocess
import sys

NAMES = ("NU SH SX EX ET EQ AK BL BS HT LF VT FF CR SO SI "
         "DL D1 D2 D3 D4 NK SY EB CN EM SB EC FS GS RS US").split()
CODE39 = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%"
CODABAR = "0123456789-$:/.+ABCD"
REFUSED = "refused"
NONE = "none"


def widths(kind, data, options):
    command = ["zint", "-b", kind, "--dump", "--esc", "-d", escaped(data)] + options
    rows = subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()
    bits = "".join(format(int(digit, 16), "04b") for digit in rows[0].replace(" ", "")).strip("0")
    runs, before = [], ""
    for bit in bits:
        if bit == before:
            runs[-1] += 1
        else:
            runs.append(1)
        before = bit
    return "".join(map(str, runs))


def escaped(data):
    return "".join(c if " " <= c <= "~" and c != "\\" else f"\\x{ord(c):02X}" for c in data)


def weighed(digits, weights):
    return -sum(int(d) * weights[i % 2] for i, d in enumerate(digits)) % 10


def luhn(digits):
    doubled = (2 * int(d) if i % 2 == 0 else int(d) for i, d in enumerate(reversed(digits)))
    return -sum(d // 10 + d % 10 for d in doubled) % 10


def named(data, first):
    """What the reader gives for ASCII characters, with this name for character 0."""
    return "".join("DEL" if c == "\x7f" else c if c >= " " else first if c == "\0" else NAMES[ord(c)]
                   for c in data)


def code93(data):
    """One letter of each name, and zero bytes for what the name is longer."""
    full = [named(c, "NL") for c in data]
    return "".join(name[0] for name in full) + "\0" * sum(len(name) - 1 for name in full)


def codes():
    """kind, zint's kind, data, zint's options, text, checked text"""
    for data in ("A40156B", "C12-34$D", "B0:1/2.3+4A", "D56789C", "A9B"):
        yield "Codabar", "CODABAR", data, [], data, None
        check = CODABAR[-sum(map(CODABAR.index, data)) % 16]
        whole = data[:-1] + check + data[-1]
        yield "Codabar", "CODABAR", data, ["--vers=1"], whole, whole[:-1]
    for data in ("12", "0987654321", "5554443332", "1357924680", "11111111", "12345678901234567890"):
        yield "Interleaved", "C25INTER", data, [], data, None
    for data in ("1234567", "1000003", "5", "29", "7777721", "6131", "24680"):
        data = data if len(data) % 2 else "0" + data
        check = weighed(data, (3, 1))
        whole = data + str(check)
        yield "Interleaved", "C25INTER", data, ["--vers=1"], whole, data if check == 0 else REFUSED
    for data in ("0", "7", "123456", "9876543210", "55555", "0123456789012"):
        yield "MSI", "MSI_PLESSEY", data, [], data, None
        check = luhn(data)
        passes = len(data) % 2 == 0 or check == weighed_msi(data)
        yield ("MSI", "MSI_PLESSEY", data, ["--vers=1"], f"{data}{check}", data if passes else REFUSED)
    for data in ("CODE-39", "0123456789", "ABCDEFGHIJKLM", "NOPQRSTUVWXYZ", "A. $/+%Z", "1"):
        yield "Code39", "CODE39", data, [], f"*{data}*", None
        check = CODE39[sum(map(CODE39.index, data)) % 43]
        yield "Code39", "CODE39", data, ["--vers=1"], f"*{data}{check}*", data
    for data in ("9638507", "0000000", "1234567", "8909090", "5512345"):
        yield "EAN8", "EANX", data, [], data + str(weighed(data, (3, 1))), NONE
    for data in ("012345678901", "123456789012", "290123412345", "305678901234", "400638133393",
                 "590123412345", "601234567890", "735353535353", "848484848484", "978020137962"):
        yield "EAN13", "EANX", data, [], data + str(weighed(data, (1, 3))), NONE
    for data in ("01234567890", "63938200039", "98765432109", "55555555555"):
        yield "UPCA", "UPCA", data, [], data + str(weighed(data, (3, 1))), NONE
    ascii_characters = "".join(map(chr, range(128)))
    for i in range(0, 128, 6):
        data = ascii_characters[i:i + 6]
        yield "Code93", "CODE93", data, [], code93(data), NONE
    for data in ("CODE93", "0123456789ABCD", "A", "abcdefg"):
        yield "Code93", "CODE93", data, [], code93(data), NONE
    for i in range(0, 128, 8):
        data = ascii_characters[i:i + 8]
        yield "Code128", "CODE128", data, [], named(data, "NU"), NONE
    for i in range(0, 100, 10):
        data = "".join(format(n, "02d") for n in range(i, i + 10))
        yield "Code128", "CODE128", data, [], data, NONE
    for data in ("Ab12345678", "12345678Ab", "A", "PJJ123C", "99887766554433221100", "a1b2c3d4"):
        yield "Code128", "CODE128", data, [], data, NONE
    yield "Code128", "CODE128", "ab\x01cd", [], "abSHIFTacd", NONE
    yield "Code128", "GS1_128", "[01]04012345678901", [], "FNC 10104012345678901", NONE
    yield "Code128", "CODE128", "AB", ["--init"], "FNC 3AB", NONE


def weighed_msi(data):
    """The reader's check of digits before one more, which differs for an odd number of them."""
    count = len(data) + 1
    pairs = (count - 1) // 2
    total = sum(int(data[2 * i]) for i in range(pairs))
    total += sum(map(int, str(2 * int("0" + "".join(data[2 * i + 1] for i in range(pairs))))))
    if count % 2 == 0:
        total += int(data[count - 2])
    return -total % 10


PICTURES = {
    "codabar": ("CODABAR", "A40156B"),
    "interleaved": ("C25INTER", "0987654321"),
    "msi": ("MSI_PLESSEY", "123456"),
    "code39": ("CODE39", "CODE-39"),
    "ean8": ("EANX", "9638507"),
    "ean13": ("EANX", "590123412345"),
    "upca": ("UPCA", "01234567890"),
    "code93": ("CODE93", "CODE93"),
    "code128": ("CODE128", "Ab12345678"),
}


def main():
    folder = sys.argv[1]
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, "printed.tsv"), "w", encoding="ascii") as table:
        for kind, printed, data, options, text, checked in codes():
            run = widths(printed, data, options)
            fields = [kind, escaped(text), escaped(checked if checked is not None else "unknown"), run]
            table.write("\t".join(fields) + "\n")
    for name, (kind, data) in PICTURES.items():
        path = os.path.join(folder, name)
        subprocess.run(["zint", "-b", kind, "-d", data, "--notext", "--height=10", "-w", "5",
                        "-o", path + ".png"], check=True)
        subprocess.run(["convert", path + ".png", path + ".pbm"], check=True)
        os.remove(path + ".png")


main()
