"""Bar codes, meters and displays, drawn and read."""

import numpy as np
import pytest

import orlune_ptk as ptk


def printed(modules):
    """A picture of a code whose dark modules are ones."""
    row = np.repeat([255 * (module == "0") for module in "0" * 12 + modules + "0" * 12], 3)
    return np.tile(row.astype(np.uint8), (60, 1))


def of_widths(widths):
    """Modules of bars and spaces in turn, narrow (0) or wide (1)."""
    return "".join("10"[at % 2] * (3 if wide == "1" else 1) for at, wide in enumerate(widths))


LEFT = "0001101 0011001 0010011 0111101 0100011 0110001 0101111 0111011 0110111 0001011".split()


def flipped(modules):
    return modules.translate(str.maketrans("01", "10"))


def check_digit(digits):
    weighted = sum(int(digit) * (3 if at % 2 == 0 else 1) for at, digit in enumerate(reversed(digits)))
    return digits + str(-weighted % 10)


def retail(left, right, mirrored=""):
    first = [LEFT[int(d)] for d in left]
    first = [flipped(m)[::-1] if p == "G" else m for m, p in zip(first, mirrored or "L" * len(first))]
    return "101" + "".join(first) + "01010" + "".join(flipped(LEFT[int(d)]) for d in right) + "101"


def test_ean8_and_upca():
    code = check_digit("1234567")
    assert ptk.read_ean8(printed(retail(code[:4], code[4:]))) == code
    code = check_digit("03600029145")
    assert ptk.read_upca(printed(retail(code[:6], code[6:]))) == code


def test_ean13():
    code = check_digit("400638133393")
    assert ptk.read_ean13(printed(retail(code[1:7], code[7:], "LGLLGG")), 4) == code
    with pytest.raises(ptk.PtkError) as caught:
        ptk.read_ean8(np.full((40, 200), 255, np.uint8))
    assert caught.value.number == -3030  # too few bars


def test_code39():
    patterns = {"*": "010010100", "A": "100001001", "B": "001001001", "1": "100100001"}
    widths = "0".join(patterns[character] for character in "*AB1*")
    assert ptk.read_code39(printed(of_widths(widths))) == "*AB1*"


def test_interleaved25():
    digits = "00110 10001 01001 11000 00101 10100 01100 00011 10010 01010".split()
    pairs = "".join(
        a + b for first, second in ("12", "90") for a, b in zip(digits[int(first)], digits[int(second)])
    )
    assert ptk.read_interleaved25(printed(of_widths("0000" + pairs + "100"))) == "1290"


def test_codabar():
    patterns = {"A": "0011010", "B": "0101001", "1": "0000110", "2": "0001001", "3": "1100000"}
    assert ptk.read_codabar(printed(of_widths("0".join(patterns[c] for c in "A123B")))) == "A123B"


def test_msi():
    bits = "".join(f"{int(digit):04b}" for digit in "1290")
    assert (
        ptk.read_msi(printed("110" + bits.replace("1", "x").replace("0", "100").replace("x", "110") + "1001"))
        == "1290"
    )


def test_code93_and_code128():
    # "12" with the checks 4 and B.
    characters = ["101011110", "101001000", "101000100", "100101000", "110100100", "101011110", "1"]
    assert ptk.read_code93(printed("".join(characters))) == "12"
    # "AB" in set B with the check 102.
    characters = ["11010010000", "10100011000", "10001011000", "11110101110", "1100011101011"]
    assert ptk.read_code128(printed("".join(characters))) == "AB"


def test_a_region_says_where_a_code_is():
    code = printed(retail("1234", "5670"))
    picture = np.full((200, 400), 255, np.uint8)
    picture[50:110, 30 : 30 + code.shape[1]] = code
    where = (60, 35, 40, code.shape[1] - 10)
    assert ptk.read_ean8(picture, where) == "12345670"
    assert ptk.read_ean8(picture, ptk.Region.rectangle(*where)) == "12345670"


def dial(degrees):
    """A dark needle on a light dial, turned from the left."""
    picture = np.full((120, 200), 230, np.uint8)
    end = 100 - 80 * np.cos(np.radians(degrees)), 100 - 80 * np.sin(np.radians(degrees))
    for along in np.linspace(0, 1, 400):
        x, y = 100 + along * (end[0] - 100), 100 + along * (end[1] - 100)
        picture[int(y) : int(y) + 2, int(x) : int(x) + 2] = 20
    return picture


def test_meters():
    meter = ptk.calibrate_meter_at((100, 100), (20, 100), (180, 100))
    assert len(meter.arc) > 100
    for percent in (10, 37, 50, 80):
        assert ptk.read_meter(dial(1.8 * percent), meter).percent == pytest.approx(percent, abs=2)
    lines = ((30, 60), (80, 90)), ((170, 60), (120, 90))
    found = ptk.calibrate_meter(*lines)
    assert found.base == pytest.approx((100, 102), abs=0.1)


SEGMENTS = [
    "1111110",
    "0110000",
    "1101101",
    "1111001",
    "0110011",
    "1011011",
    "1011111",
    "1110000",
    "1111111",
    "1111011",
]
STROKES = [
    np.s_[0:6, 6:34],
    np.s_[6:37, 34:40],
    np.s_[43:74, 34:40],
    np.s_[74:80, 6:34],
    np.s_[43:74, 0:6],
    np.s_[6:37, 0:6],
    np.s_[37:43, 6:34],
]


def display(text):
    picture = np.full((120, 30 + 60 * len(text)), 220, np.uint8)
    for at, digit in enumerate(text):
        cell = picture[20:100, 20 + 60 * at : 60 + 60 * at]
        for stroke, on in zip(STROKES, SEGMENTS[int(digit)]):
            if on == "1":
                cell[stroke] = 30
    return picture


def test_displays():
    digits = ptk.calibrate_display(display("888"))
    assert len(digits.contours) == 3
    for text in ("205", "649", "380"):
        shown = ptk.read_display(display(text), digits)
        assert (shown.text, shown.value) == (text, float(text))
        assert shown.segments.shape == (3, 7)
    one = ptk.read_digit(display("5"), (20, 20, 79, 39))
    assert one.text == "5" and one.value == 5
    assert "".join(str(int(on)) for on in one.segments[0]) == SEGMENTS[5]
