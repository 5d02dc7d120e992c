"""What dravo raises on purpose."""

from __future__ import annotations

import re
from typing import Callable


#: what the commands advise, and how it is said here; other options are arguments of their name
_ADVICE: tuple[tuple[str, str | Callable[[re.Match[str]], str]], ...] = (
    (r"\n?Run with --help for more\.", ""),
    (r"--no-check accepts", "check=False accepts"),
    (r"--(split|frame) (N1|K|[0-9]+)\b", r"\1=\2"),
    (r"--(split|unit|energy) (auto|angstrom|bohr|nm|command)\b", r'\1="\2"'),
    (r"(?<![\w-])--([a-z][a-z-]*)", lambda option: option[1].replace("-", "_")),
)


def _in_words_of_python(message: str) -> str:
    for words, here in _ADVICE:
        message = re.sub(words, here, message)
    return message


class Error(Exception):
    """Base of all. ``str`` of it is a message for people."""

    def __init__(self, message: str) -> None:
        super().__init__(_in_words_of_python(message))


class InputError(Error, ValueError):
    """A file or a value that cannot be what it should be.

    Attributes: `file` (``""`` for input that came from no file), `line` and `column`, which count
    from 1 and are 0 where they are not known.
    """

    def __init__(self, message: str, file: str = "", line: int = 0, column: int = 0) -> None:
        super().__init__(message)
        self.file = file
        self.line = line
        self.column = column


class OutOfRange(Error, ValueError):
    """A parameter outside its range.

    Attributes: `name` (``"theta"``), `value`, `lowest` and `highest`, Angstrom or degrees.
    """

    def __init__(
        self,
        message: str,
        name: str = "",
        value: float = float("nan"),
        lowest: float = float("nan"),
        highest: float = float("nan"),
    ) -> None:
        super().__init__(message)
        self.name = name
        self.value = value
        self.lowest = lowest
        self.highest = highest


class NoUniqueFrame(Error):
    """A molecule with fewer than two principal axes that have a direction, by the strict rule.

    Attributes: `molecules` (1, 2), and `reasons`, a sentence for each.
    """

    def __init__(
        self, message: str, molecules: list[int] | None = None, reasons: list[str] | None = None
    ) -> None:
        super().__init__(message)
        self.molecules = molecules or []
        self.reasons = reasons or []


class NoRotationFound(Error):
    """``qn-dravo`` finds no rotation between two frames."""


class EngineError(Error, RuntimeError):
    """An engine of energies cannot be had, or cannot compute the molecules alone."""


class FileError(Error, OSError):
    """The system refused to read or write a file."""
