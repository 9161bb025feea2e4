"""Tables of the messages of a type."""

from __future__ import annotations

from dataclasses import dataclass, field, replace
from typing import TYPE_CHECKING, Any

from . import _tqx
from ._arrow import ArrowTable
from ._time import Time, gnss_millis
from ._types import schema_of

if TYPE_CHECKING:
    from ._log import Log

__all__ = ["Choice", "Table", "earlier", "later"]


@dataclass(frozen=True)
class Choice:
    """The selection from the messages of a type, and its form; the same for a table and its
    parts."""

    type: str
    columns: tuple[str, ...] = ()
    rows: str = ""
    conditions: tuple[str, ...] = ()
    start: int | None = None
    end: int | None = None
    revisions: int = 0xFF
    options: dict[str, bool] = field(default_factory=dict)
    batch_rows: int = 65536
    #: paths of the descriptions that it is read by, beside the built types
    descriptions: tuple[str, ...] = ()

    def request(self) -> _tqx.TableRequest:
        """The same for the C++ library."""
        request = _tqx.TableRequest()
        request.schema = schema_of(self.descriptions)
        request.type = self.type
        request.fields = list(self.columns)
        request.rows = self.rows
        if len(self.conditions) > 1:
            request.where = " and ".join(f"({each})" for each in self.conditions)
        elif self.conditions:
            request.where = self.conditions[0]
        request.start = self.start
        request.end = self.end
        request.revisions = self.revisions
        request.batch_rows = self.batch_rows
        for name, value in self.options.items():
            setattr(request, name, value)
        return request

    def checked(self) -> Choice:
        """Returns itself; raises RequestError for an unknown name or invalid condition."""
        _tqx.check(self.request())
        return self


def later(a: int | None, b: int | None) -> int | None:
    """The later of two times, of which each may be missing."""
    return b if a is None else a if b is None else max(a, b)


def earlier(a: int | None, b: int | None) -> int | None:
    """The earlier of two times, of which each may be missing."""
    return b if a is None else a if b is None else min(a, b)


class Table(ArrowTable):
    """The messages of a type as a table, read only when needed.

    ``select``, ``where``, ``between`` and the others return a table that reads less: columns that
    were not selected are not filled, blocks of other times are not read, and those that do not meet
    the condition fill nothing.

    The columns are ``time`` (GPS time, nanoseconds), ``offset`` (of the block in its file), and the
    fields, in their units, with values that are not available as null.
    """

    def __init__(self, log: Log, choice: Choice) -> None:
        self._log = log
        self._choice = choice.checked()
        self._title = choice.type
        self._progress = log.progress
        self._counts: dict[str, Any] = {}

    @property
    def name(self) -> str:
        """Name of the type."""
        return self._choice.type

    @property
    def columns(self) -> list[str]:
        """Names of the columns."""
        return list(_tqx.columns_of(self._choice.request()))

    @property
    def choice(self) -> Choice:
        """The selection, for the readers of parts of a log."""
        return self._choice

    @property
    def last_read(self) -> dict[str, Any]:
        """Counts of the last conversion.

        ``found`` blocks of the type in the time, of which ``selected`` meet the condition, of which
        ``refused`` did not decode (``first_refused`` says where the first one is and why).
        """
        return dict(self._counts)

    def _with(self, **changes: Any) -> Table:
        return Table(self._log, replace(self._choice, **changes))

    def select(self, *columns: str) -> Table:
        """The table with only these fields, in this order.

        Fields of sub-blocks are paths, such as "Type1.CN0". The time and the offset stay.
        """
        return self._with(columns=columns)

    def where(self, condition: str) -> Table:
        """Only the messages that meet a condition, such as ``NrSV >= 8 and has COG``.

        A condition on sub-blocks holds when it holds for one of them; ``any(Type1: SVID like "G*"
        and CN0_dBHz > 45)`` requires both of the same one. Conditions are combined.
        """
        return self._with(conditions=(*self._choice.conditions, condition))

    def between(self, start: Time | None = None, end: Time | None = None) -> Table:
        """Only the messages from ``start`` on and before ``end``."""
        return self._with(
            start=later(self._choice.start, None if start is None else gnss_millis(start)),
            end=earlier(self._choice.end, None if end is None else gnss_millis(end)),
        )

    def revisions(self, *numbers: int) -> Table:
        """Only the messages of these revisions of the block, 0 to 7."""
        mask = 0
        for number in numbers:
            if not 0 <= number <= 7:
                raise ValueError(f"there is no revision {number}")
            mask |= 1 << number
        return self._with(revisions=self._choice.revisions & mask)

    def explode(self, path: str) -> Table:
        """One row per sub-block, such as "Type1" or "Type1.Type2", instead of per message.

        The enclosing records contribute the columns that identify them.
        """
        return self._with(rows=path)

    def with_options(
        self,
        *,
        scaled: bool | None = None,
        named: bool | None = None,
        hide_do_not_use: bool | None = None,
        utc: bool | None = None,
        offset: bool | None = None,
        file: bool | None = None,
    ) -> Table:
        """The table in another form.

        ``scaled=False`` leaves integers as on the wire, ``named=False`` gives codes instead of names,
        ``hide_do_not_use=False`` shows the values that mean "not available"; ``utc``, ``offset``
        and ``file`` add or remove these columns.
        """
        given = {
            "scaled": scaled,
            "named": named,
            "hide_do_not_use": hide_do_not_use,
            "utc": utc,
            "offset": offset,
            "file": file,
        }
        changed = {name: value for name, value in given.items() if value is not None}
        return self._with(options={**self._choice.options, **changed})

    def raw(self) -> Table:
        """The table with all values as they are stored."""
        return self.with_options(scaled=False, named=False, hide_do_not_use=False)

    def count(self) -> int:
        """The number of all messages of the type, whatever was selected, from the index."""
        return self._log.types.get(self.name, 0)

    def _open(self) -> Any:
        return _tqx.read_logs(self._log.files, self._choice.request())

    def _ended(self, stream: Any) -> None:
        self._counts = stream.counts()

    def _row_estimate(self) -> int:
        return 0 if self._choice.rows else self.count()

    def __repr__(self) -> str:
        choice = self._choice
        parts = [f"<table {self.name}: {self.count()} messages, {len(self.columns)} columns"]
        if choice.rows:
            parts.append(f"a row for each of {choice.rows}")
        parts.extend(f"where {each}" for each in choice.conditions)
        if choice.start is not None or choice.end is not None:
            parts.append("part of the time")
        return ", ".join(parts) + ">"
