"""Every function of the library is there, typed and explained, and has its place among the natural ones."""

import inspect
import re
import typing
from ctypes import sizeof
from pathlib import Path

import numpy as np
import pytest

import orlune_ptk as ptk
from orlune_ptk import constants, lowlevel, records

ROOT = Path(__file__).resolve().parents[2]
PACKAGE = Path(ptk.__file__).parent
EXPORTS = re.findall(r"^ZEL_\w+$", (ROOT / "include/exports.txt").read_text(), re.MULTILINE)

# What Image, Table and the lock see to themselves, or what only a C program needs.
NOT_NATURAL = {
    "ZEL_malloc",
    "ZEL_calloc",
    "ZEL_realloc",
    "ZEL_InitSys",
    "ZEL_CloseSys",
    "ZEL_GetImageReference",
    "ZEL_GetPixelAddress",
    "ZEL_ProcessError",
    "ZEL_SetErrorMode",
    "ZEL_GetErrorMode",
}


@pytest.mark.parametrize("name", EXPORTS)
def test_each_export_is_bound_typed_and_explained(name):
    function = getattr(lowlevel, name)
    header = "".join(path.read_text() for path in (ROOT / "include/orlune_ptk").glob("*.h"))
    inside = re.search(rf"\b{name}\(([^)]*)\);", header)[1]
    names = [] if inside == "void" else [part.split()[-1].strip("*") for part in inside.split(",")]
    assert list(inspect.signature(function).parameters) == names
    assert set(function.__annotations__) == {*names, "return"}
    for parameter in names:
        assert f"\n{parameter}:" in function.__doc__.replace("\n    ", "\n")
    assert "Failures:" in function.__doc__


def test_nothing_else_is_bound():
    bound = {name for name in vars(lowlevel) if name.startswith("ZEL_")}
    assert bound == set(EXPORTS)


def test_each_export_is_behind_a_natural_function():
    sources = [path.read_text() for path in PACKAGE.glob("*.py") if path.name != "lowlevel.py"]
    used = set(re.findall(r"lowlevel\.(ZEL_\w+)", "".join(sources)))
    assert used | NOT_NATURAL == set(EXPORTS)
    assert not used & NOT_NATURAL


def test_each_name_is_explained_and_typed():
    for name in ptk.__all__:
        each = getattr(ptk, name)
        if inspect.isfunction(each):
            assert each.__doc__, name
            hints = set(each.__annotations__)
            assert hints == {*inspect.signature(each).parameters, "return"}, name
        elif inspect.isclass(each):
            assert each.__doc__, name


def test_help_of_a_function_tells_what_the_header_tells():
    assert "The C function ZEL_Threshold:" in ptk.threshold.__doc__
    assert "rangeMin:    lowest value that is kept." in ptk.threshold.__doc__


def test_records_have_the_sizes_of_c():
    assert sizeof(records.ImageInfo) == 64
    assert sizeof(records.ThresholdClass) == records.THRESHOLD_CLASS.itemsize == 16
    assert sizeof(records.RoiDescriptor) == 24
    assert sizeof(records.RoiContour) == 12
    for name, record in vars(records).items():
        if inspect.isclass(record) and name[0].isupper() and hasattr(record, "_fields_"):
            array = getattr(
                records, re.sub(r"(?<=[a-z])(?=[A-Z])", "_", name.replace("3D", "3d")).upper(), None
            )
            if array is not None:
                assert array.itemsize == sizeof(record), name


def test_failures_are_silent_from_the_start():
    assert lowlevel.ZEL_GetErrorMode() == constants.ErrorMode.SILENT


def test_a_failure_tells_number_text_and_function():
    with pytest.raises(ptk.PtkError) as caught:
        lowlevel.ZEL_Dispose(4_000_000_000)
    error = caught.value
    assert (error.number, error.function) == (-200, "ZEL_Dispose")
    assert error.text == "the reference names no image"
    assert str(error) == "ZEL_Dispose: the reference names no image (-200)"


def test_failures_that_c_tells_as_positive_numbers_are_negative_too():
    with pytest.raises(ptk.PtkError) as caught:
        lowlevel.ZEL_GetImageInfo(4_000_000_000, records.ImageInfo())
    assert caught.value.number == -200


def test_lack_of_memory_is_a_memory_error():
    image = ptk.Image.empty()
    with pytest.raises(MemoryError) as caught:
        image.resize((50_000, 50_000))
    assert isinstance(caught.value, ptk.PtkError)
    assert image.shape == (0, 0)


def test_errors_survive_pickling():
    import pickle

    error = pickle.loads(pickle.dumps(ptk.PtkError(-309, "ZEL_Label")))
    assert (error.number, error.function) == (-309, "ZEL_Label")


def test_arrays_of_another_type_or_with_gaps_are_refused():
    image = ptk.Image.zeros((4, 4))
    counts = np.zeros(256, np.int64)
    with pytest.raises(Exception, match="int64"):
        lowlevel.ZEL_Histogram(image, 0, 256, 0, 0, counts, None)
    with pytest.raises(Exception, match="C-contiguous"):
        lowlevel.ZEL_Histogram(image, 0, 128, 0, 0, np.zeros(256, np.uint32)[::2], None)
    fixed = np.zeros(256, np.uint32)
    fixed.flags.writeable = False
    with pytest.raises(Exception, match="writeable"):
        lowlevel.ZEL_Histogram(image, 0, 256, 0, 0, fixed, None)


def test_enumerators_may_be_given_by_name_number_or_as_they_are(gray):
    by_name = np.asarray(ptk.edges(gray, "prewitt"))
    assert np.array_equal(by_name, ptk.edges(gray, constants.EdgeMethod.PREWITT))
    assert np.array_equal(by_name, ptk.edges(gray, 2))
    with pytest.raises(ValueError, match="sobel"):
        ptk.edges(gray, "nonsense")


def test_annotations_can_be_evaluated():
    for name in ("threshold", "median", "particles", "read", "Image"):
        assert typing.get_type_hints(getattr(ptk, name)) is not None
