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
from ._log import Log, Product, open_log
from ._table import Choice, earlier, later
from ._types import Descriptions

__all__ = ["LEAD", "PRODUCTS", "Part", "PartTable", "Piece", "divide"]

#: Tables of what several types say.
PRODUCTS = ("observations", "positions", "ephemerides")

#: Seconds before the first epoch of a part of observations from which on the log is read.
LEAD = 600

Paths = Union[str, "os.PathLike[str]", Sequence["str | os.PathLike[str]"]]


@dataclass(frozen=True)
class Piece:
    """Bytes of a file, or of several that are joined and read whole."""

    paths: tuple[str, ...]
    begin: int
    end: int


@dataclass(frozen=True)
class Part:
    """A part of a log. It can be pickled and read wherever the files have the same paths."""

    path: str
    begin: int
    end: int
    #: decoding context at its start
    week: int = 0
    tow: int = 0
    time_before: int | None = None
    #: blocks of all types in it
    blocks: int = 0
    #: whether it is all of the file
    is_whole: bool = True
    #: files that go on with the last block of the one before; they are read whole
    further: tuple[str, ...] = ()
    #: for observations: what is read for them, and the first epochs of this and of the next part in
    #: milliseconds of GNSS time
    pieces: tuple[Piece, ...] = ()
    first_epoch: int | None = None
    end_epoch: int | None = None

    @property
    def paths(self) -> list[str]:
        """The files that it is in."""
        return [self.path, *self.further]

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
        part, choice = self._part, self._choice
        if choice.type == "observations":
            pieces = [_tqx.EpochPiece(list(p.paths), p.begin, p.end) for p in part.pieces]
            start = later(part.first_epoch, choice.start)
            end = earlier(part.end_epoch, choice.end)
            return _tqx.part_observations(pieces, start=start, end=end)
        if choice.type in PRODUCTS:
            return _product(part.paths, choice)._open()
        return _tqx.read_part(part.paths, part.native(), choice.request())

    def _ended(self, stream: Any) -> None:
        self.last_read = stream.counts()

    def __repr__(self) -> str:
        return f"<{self._choice.type} of {self._part.path} from {self._part.begin} on>"


def _product(paths: list[str], choice: Choice) -> ArrowTable:
    log = open_log(paths, progress=False)
    times = (choice.start, choice.end)
    return Product(log, choice.type, ("", *times) if choice.type == "positions" else times)


def divide(
    paths: Paths,
    *,
    part_bytes: int = 64 << 20,
    start: int | None = None,
    end: int | None = None,
    table: str = "",
    description: Descriptions | None = None,
    save_index: bool = False,
) -> list[Part]:
    """The parts of a log, in order, of about ``part_bytes`` bytes each.

    Parts without a block from ``start`` on and before ``end`` (milliseconds of GNSS time) are left
    out. A compressed file is one part, and so are files that share a block.

    ``table`` says what the parts are for: the name of a type, or one of PRODUCTS. Those of
    "observations" are read from LEAD seconds before their first epoch on, for the reference epochs
    of compact measurements and for losses of lock; a signal that comes back after a longer time
    counts as a new one. For "positions" and "ephemerides" each file is one part.
    """
    log = open_log(paths, description=description, save_index=save_index, progress=False)
    if table == "observations":
        return _epoch_parts(log, max(1, part_bytes), start, end)
    parts = []
    for each in log.files:
        found = each.divide((1 << 62) if table in PRODUCTS else max(1, part_bytes))
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
                    tuple(each.paths[1:]),
                )
            )
    return parts


def _epoch_parts(log: Log, part_bytes: int, start: int | None, end: int | None) -> list[Part]:
    found = _tqx.divide_epochs(log.files, part_bytes, LEAD * 1000)
    parts = []
    for each in found:
        if start is not None and each.end_epoch is not None and each.end_epoch <= start:
            continue
        if end is not None and each.first_epoch is not None and each.first_epoch >= end:
            continue
        pieces = tuple(Piece(tuple(p.paths), p.begin, p.end) for p in each.pieces)
        parts.append(
            Part(
                pieces[0].paths[0] if pieces else "",
                pieces[0].begin if pieces else 0,
                pieces[-1].end if pieces else 0,
                is_whole=len(found) == 1,
                pieces=pieces,
                first_epoch=each.first_epoch,
                end_epoch=each.end_epoch,
            )
        )
    return parts
