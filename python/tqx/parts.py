"""Parts of logs, for reading by several processes or machines at the same time.

One pass over a log, or the index saved beside it, shows where it can be cut and gives the decoding
context at each cut, so that all parts together have exactly the rows of the whole log.
"""

from __future__ import annotations

import os
from collections.abc import Sequence
from dataclasses import dataclass
from typing import Any, Union

from . import _tqx
from ._arrow import ArrowTable
from ._log import open_log
from ._table import Choice

__all__ = ["PRODUCTS", "Part", "PartTable", "divide"]

#: Tables whose rows depend on the blocks before them: they are read log by log.
PRODUCTS = ("observations", "positions", "ephemerides")

Paths = Union[str, "os.PathLike[str]", Sequence["str | os.PathLike[str]"]]


@dataclass(frozen=True)
class Part:
    """A part of a log. It can be pickled and read wherever the file has the same path."""

    path: str
    begin: int
    end: int
    #: decoding context at its start
    week: int
    tow: int
    time_before: int | None
    #: blocks of all types in it
    blocks: int
    #: whether it is all of the log
    is_whole: bool

    def native(self) -> _tqx.Partition:
        """The same for the C++ library."""
        return _tqx.Partition(self.begin, self.end, self.week, self.tow, self.time_before)


class PartTable(ArrowTable):
    """The rows of a part."""

    _progress = False

    def __init__(self, part: Part, choice: Choice) -> None:
        self._part = part
        self._choice = choice
        self._title = choice.type
        #: see ``Table.last_read``
        self.last_read: dict[str, Any] = {}

    def _open(self) -> Any:
        if self._choice.type in PRODUCTS:
            return _product(self._part.path, self._choice)._open()
        return _tqx.read_part(self._part.path, self._part.native(), self._choice.request())

    def _ended(self, stream: Any) -> None:
        self.last_read = stream.counts()

    def __repr__(self) -> str:
        return f"<{self._choice.type} of {self._part.path} from {self._part.begin} on>"


def _product(path: str, choice: Choice) -> ArrowTable:
    log = open_log(path, progress=False)
    if choice.type == "observations":
        table: ArrowTable = log.observations()
    elif choice.type == "positions":
        table = log.positions()
    else:
        table = log.ephemerides()
    arguments = list(table._arguments)  # type: ignore[attr-defined]
    place = 1 if choice.type == "positions" else 0
    arguments[place : place + 2] = [choice.start, choice.end]
    table._arguments = tuple(arguments)  # type: ignore[attr-defined]
    return table


def divide(
    paths: Paths,
    *,
    part_bytes: int = 64 << 20,
    start: int | None = None,
    end: int | None = None,
    whole: bool = False,
    save_index: bool = False,
) -> list[Part]:
    """The parts of logs, in order, of about ``part_bytes`` bytes each.

    Parts without a block from ``start`` on and before ``end`` (milliseconds of GNSS time) are left
    out. A compressed log is one part, and so is every log if ``whole``, for tables of PRODUCTS.
    """
    log = open_log(paths, save_index=save_index, progress=False)
    parts = []
    for each in log.files:
        found = each.divide((1 << 62) if whole else max(1, part_bytes))
        for cut in found:
            # A block without a time counts as at the time before it.
            before = cut.time_before
            times = [time for time in (before, cut.first, cut.last) if time is not None]
            if start is not None and times and max(times) < start:
                continue
            if end is not None and times and min(times) >= end:
                continue
            parts.append(
                Part(
                    each.name,
                    cut.begin,
                    cut.end,
                    cut.week,
                    cut.tow,
                    before,
                    cut.blocks,
                    len(found) == 1,
                )
            )
    return parts
