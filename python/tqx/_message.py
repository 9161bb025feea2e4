"""Messages one at a time."""

from __future__ import annotations

import datetime as dt
import json
from collections.abc import Iterator, Mapping
from functools import cached_property
from typing import Any

from . import _tqx
from ._time import to_datetime

__all__ = ["Message", "Record"]


def _value(value: Any) -> Any:
    if isinstance(value, dict):
        return Record(value)
    if isinstance(value, list):
        return [_value(each) for each in value]
    return value


class Record(Mapping[str, Any]):
    """Fields with their values, as items and, where their names allow it, as attributes.

    Values are scaled and named as the format defines; those that are not available are None,
    sub-blocks are lists of records.
    """

    def __init__(self, fields: Mapping[str, Any]) -> None:
        self._fields = fields

    def __getitem__(self, name: str) -> Any:
        return _value(self._fields[name])

    def __getattr__(self, name: str) -> Any:
        if name.startswith("_"):
            raise AttributeError(name)
        fields = self._fields
        if name not in fields:
            name = name.replace("_", " ")
        if name not in fields:
            raise AttributeError(f"there is no field {name}; there are {', '.join(fields)}")
        return _value(fields[name])

    def __iter__(self) -> Iterator[str]:
        return iter(self._fields)

    def __len__(self) -> int:
        return len(self._fields)

    def __dir__(self) -> list[str]:
        return [*super().__dir__(), *(name.replace(" ", "_") for name in self._fields)]

    def __repr__(self) -> str:
        return f"<{len(self._fields)} fields: {', '.join(self._fields)}>"


class Message(Record):
    """A block of a log. Its fields are decoded when the first of them is accessed."""

    #: number of the block
    number: int
    #: revision of the block
    revision: int
    #: where it begins in its file
    offset: int
    #: name of that file
    file: str
    #: its bytes, header included
    bytes: bytes

    def __init__(self, found: tuple[Any, ...], schema: _tqx.Schema) -> None:
        file, number, revision, offset, millis, content, week, tow = found
        self.number = number
        self.revision = revision
        self.offset = offset
        self.file = file
        self.bytes = content
        self._millis: int | None = millis
        self._before = (week, tow)
        self._schema = schema

    @property
    def name(self) -> str:
        """Name of the type; empty for an unknown number."""
        return self._schema.number_name(self.number)

    @property
    def time(self) -> dt.datetime | None:
        """GPS time of the block, None where its header has none."""
        return None if self._millis is None else to_datetime(self._millis)

    def _describe(self, is_raw: bool) -> str:
        return _tqx.describe(self.bytes, *self._before, is_raw, self._schema)

    @cached_property
    def _line(self) -> dict[str, Any]:
        line: dict[str, Any] = json.loads(self._describe(False))
        return line

    @cached_property
    def _fields(self) -> Mapping[str, Any]:  # type: ignore[override]
        fields: Mapping[str, Any] = self._line.get("fields", {})
        return fields

    @property
    def error(self) -> str:
        """Why the block does not decode, by the name of the codec's result; empty when it does."""
        return str(self._line.get("error", {}).get("name", ""))

    @property
    def raw(self) -> dict[str, Any]:
        """The message with its stored values, in the form that ``encode`` takes."""
        line: dict[str, Any] = json.loads(self._describe(True))
        return line

    def __repr__(self) -> str:
        name = self.name or f"block {self.number}"
        time = "no time" if self.time is None else self.time.isoformat(timespec="milliseconds")
        return f"<{name} at {time}, {self.file}@{self.offset}>"
