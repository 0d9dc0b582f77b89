"""The shared library: found, loaded and guarded, and how arguments get to it."""

import ctypes
import os
import threading
from functools import lru_cache
from pathlib import Path
from typing import Any, Protocol, TypeAlias

import numpy as np

from .errors import failure

__all__ = ["Pointer", "Reference", "bind", "failure", "lock", "pointer"]

FILE_NAME = "liborlune_ptk.so.1"


def _path() -> str:
    """The library that ORLUNE_PTK_LIBRARY names, else the one in this package, else the system's."""
    beside = Path(__file__).with_name(FILE_NAME)
    return os.environ.get("ORLUNE_PTK_LIBRARY") or (str(beside) if beside.exists() else FILE_NAME)


_library = ctypes.CDLL(_path())
_library.ZEL_SetErrorMode(1)  # failures are exceptions here, never message boxes

# The library takes one caller at a time. A callback of a window may call it again from inside a call.
lock = threading.RLock()
# A child begins with the lock free and nobody inside the library.
os.register_at_fork(before=lock.acquire, after_in_parent=lock.release, after_in_child=lock.release)


class HasReference(Protocol):
    """What ctypes takes for a number."""

    @property
    def _as_parameter_(self) -> int:
        ...


Reference: TypeAlias = int | HasReference
Pointer: TypeAlias = Any


def bind(name: str, result: Any, *arguments: Any) -> Any:
    """A C function with its types."""
    function = getattr(_library, name)
    function.restype = result
    function.argtypes = arguments
    return function


class _AnyPointer:
    """Takes what can stand for an address; of arrays only those that are what C expects there."""

    dtype: "np.dtype[Any] | None" = None
    written = False

    @classmethod
    def from_param(cls, value: Any) -> Any:
        if not isinstance(value, np.ndarray):
            # What is no address was made by ctypes: byref, an array, a pointer.
            return ctypes.c_void_p(value) if value is None or isinstance(value, int) else value
        if not value.flags.c_contiguous:
            raise TypeError("an array for the library has to be C-contiguous")
        if cls.dtype is not None and value.dtype != cls.dtype:
            raise TypeError(f"an array of {value.dtype} where the library takes {cls.dtype}")
        if cls.written and not value.flags.writeable:
            raise TypeError("an array that the library writes into has to be writeable")
        return ctypes.c_void_p(value.ctypes.data)


@lru_cache(maxsize=None)
def pointer(dtype: Any = None, written: bool = False) -> type[_AnyPointer]:
    """The type of arguments that point to elements of a type, which a function reads or writes."""
    of = None if dtype is None else np.dtype(dtype)
    return type("_Pointer", (_AnyPointer,), {"dtype": of, "written": written})
