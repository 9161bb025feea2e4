"""Exceptions of the package."""

from __future__ import annotations

import re

__all__ = ["Error", "RequestError", "SourceError", "LineError", "make_error"]

_PLACE = re.compile(r"^(?P<file>.+?): (?P<offset>\d+): (?P<reason>.*)$", re.DOTALL)


class Error(Exception):
    """Base class of all exceptions of this package.

    ``file`` and ``offset`` say where in which log it happened, as far as that is known.
    """

    file: str | None
    offset: int | None

    def __init__(self, message: str = "") -> None:
        super().__init__(message)
        place = _PLACE.match(message)
        self.file = place["file"] if place else None
        self.offset = int(place["offset"]) if place else None


class RequestError(Error, ValueError):
    """An invalid request: a name that does not exist, a condition that cannot be parsed."""


class SourceError(Error, OSError):
    """A log that cannot be opened or read, with its name and, where it is known, the offset."""

    def __init__(self, message: str = "") -> None:
        Error.__init__(self, message)
        if self.file is None and ": " in message:
            self.file = message.split(": ", 1)[0]

    def __str__(self) -> str:
        return str(self.args[0]) if self.args else ""


class LineError(Error, ValueError):
    """A message that cannot be encoded; the text names the place in it."""


def make_error(kind: str, text: str) -> Error:
    """The exception for an error of the C++ libraries."""
    if kind == "source":
        return SourceError(text)
    if kind == "line":
        return LineError(text)
    return RequestError(text.removeprefix("--"))
