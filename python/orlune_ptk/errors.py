"""What is raised."""

from typing import Any

from .constants import FAILURE_TEXTS, FailureNumber


class PtkError(RuntimeError):
    """A failure that the library reports.

    number:   as in FailureNumber, negative.
    text:     what the number means.
    function: the C function that failed.
    """

    def __init__(self, number: int, function: str) -> None:
        super().__init__(number, function)
        self.number = number
        self.function = function
        self.text = FAILURE_TEXTS.get(number, "a failure of no known kind")

    def __str__(self) -> str:
        return f"{self.function}: {self.text} ({self.number})"


class PtkMemoryError(PtkError, MemoryError):
    """There is no memory, or a size would pass 2^31 - 1 bytes."""


class StaleViewError(RuntimeError):
    """The image under a view of pixels was resized, replaced or disposed of."""


def failure(status: int, function: str) -> PtkError:
    """The exception for what a C function returned."""
    number = -abs(status)
    out_of_memory = number == FailureNumber.MEMORY_FULL
    kind: Any = PtkMemoryError if out_of_memory else PtkError
    error: PtkError = kind(number, function)
    return error
