"""The catalogue of types: blocks, their fields, units and named values."""

from __future__ import annotations

import json
import os
from collections.abc import Iterator, Mapping, Sequence
from dataclasses import dataclass, field
from functools import cache, cached_property
from html import escape
from typing import Any, Union

from . import _tqx

__all__ = ["Descriptions", "Field", "Type", "Types", "description_paths", "schema_of", "types"]


@dataclass(frozen=True)
class Field:
    """A field of a type, as described by the format."""

    name: str
    #: "u", "i", "f32", "f64", "ch", or "sub" for sub-blocks
    type: str
    #: bits on the wire; 0 when it depends on the block
    width: int = 0
    #: such as "meter"; empty for none
    unit: str = ""
    #: factor of stored integers
    scale: float | None = None
    description: str = ""
    #: stored value that means "not available"
    do_not_use: str | None = None
    #: names of values
    symbols: Mapping[int, str] = field(default_factory=dict)
    is_optional: bool = False
    is_repeated: bool = False
    #: whether it distinguishes sub-blocks
    is_identifying: bool = False
    #: bit fields that this one consists of
    sub_fields: tuple[str, ...] = ()
    #: name of the type of the sub-blocks
    sub_type: str = ""


@dataclass(frozen=True)
class Type:
    """A block or a sub-block, as described by the format."""

    name: str
    #: "main" or "sub"
    kind: str
    #: block number; None for sub-blocks
    number: int | None
    description: str
    fields: tuple[Field, ...]

    def __getitem__(self, name: str) -> Field:
        """The field of that name.

        >>> types["PVTGeodetic2"]["Height"].unit
        'meter'
        """
        for each in self.fields:
            if each.name == name:
                return each
        raise KeyError(name)

    def __repr__(self) -> str:
        number = "" if self.number is None else f" ({self.number})"
        return f"<type {self.name}{number}: {len(self.fields)} fields>"

    def _repr_html_(self) -> str:
        rows = "".join(
            f"<tr><td>{escape(each.name)}</td><td>{escape(each.type)}{each.width or ''}</td>"
            f"<td>{escape(each.unit)}</td><td>{'' if each.scale is None else each.scale}</td>"
            f"<td style='text-align:left'>{escape(_meaning(each))}</td></tr>"
            for each in self.fields
        )
        number = "" if self.number is None else f" ({self.number})"
        return (
            f"<p><b>{escape(self.name)}</b>{number} {escape(self.description)}</p>"
            "<table><thead><tr><th>field</th><th>type</th><th>unit</th><th>scale</th>"
            f"<th>meaning</th></tr></thead><tbody>{rows}</tbody></table>"
        )


def _meaning(each: Field) -> str:
    names = ", ".join(f"{value} {name}" for value, name in list(each.symbols.items())[:8])
    return " ".join(part for part in (each.description, names) if part)


def _type(entry: dict[str, Any]) -> Type:
    return Type(
        name=entry["name"],
        kind=entry["kind"],
        number=entry.get("number"),
        description=entry.get("description", ""),
        fields=tuple(_field(each) for each in entry["fields"]),
    )


def _field(entry: dict[str, Any]) -> Field:
    none = entry.get("doNotUse")
    return Field(
        name=entry["name"],
        type=entry["type"],
        width=entry.get("width", 0),
        unit=entry.get("unit", ""),
        scale=entry.get("scale"),
        description=entry.get("description", ""),
        do_not_use=None if none is None else str(none),
        symbols={
            int(value): text
            for value, text in entry.get("symbols", {}).items()
            if text != "DoNotUse"
        },
        is_optional=entry.get("optional", False),
        is_repeated=entry.get("repeated", False),
        is_identifying=entry.get("identifying", False),
        sub_fields=tuple(entry.get("subFields", ())),
        sub_type=entry.get("subMessage", ""),
    )


#: Files or folders of YAML that describe further types.
Descriptions = Union[str, "os.PathLike[str]", Sequence["str | os.PathLike[str]"]]


def description_paths(description: Descriptions | None) -> tuple[str, ...]:
    """The paths of descriptions as a tuple, absolute, so that they are the same everywhere."""
    if description is None:
        return ()
    if isinstance(description, (str, os.PathLike)):
        description = [description]
    return tuple(os.path.abspath(each) for each in description)


@cache
def schema_of(paths: tuple[str, ...]) -> _tqx.Schema:
    """The built types and those of descriptions, for the C++ library."""
    return _tqx.Schema.read(list(paths)) if paths else _tqx.Schema()


class Types(Mapping[str, Type]):
    """All types by name; names are found whatever their case.

    ``Types(description)`` has the types of a description beside the built ones: a YAML file, a folder
    with such files, or several. Raises RequestError when it is wrong, with file and line of each
    error.

    >>> types["pvtgeodetic2"].number
    4007
    >>> types["MeasEpoch2"]["Type1"].sub_type
    'MeasEpochChannelType1'
    """

    def __init__(self, description: Descriptions | None = None) -> None:
        self._paths = description_paths(description)
        self._schema = schema_of(self._paths)
        self._made: dict[str, Type] = {}

    @cached_property
    def _entries(self) -> dict[str, dict[str, Any]]:
        return {entry["name"]: entry for entry in json.loads(self._schema.all_types())}

    def __getitem__(self, name: str) -> Type:
        if name not in self._entries:
            try:
                name = self._schema.type_name(name)
            except ValueError as error:
                raise KeyError(str(error)) from None
        if name not in self._made:
            self._made[name] = _type(self._entries[name])
        return self._made[name]

    def __iter__(self) -> Iterator[str]:
        return iter(self._entries)

    def __len__(self) -> int:
        return len(self._entries)

    def __contains__(self, name: object) -> bool:
        return isinstance(name, str) and name in self._entries

    def __repr__(self) -> str:
        return f"<{len(self)} types>"


#: The built types.
types = Types()
