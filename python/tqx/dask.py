"""Tables of logs as Dask data frames, with one partition per part of a log."""

from __future__ import annotations

from collections.abc import Iterable
from dataclasses import replace
from typing import TYPE_CHECKING, Any

from ._needs import need
from ._table import Choice
from ._time import Time, gnss_millis
from ._types import Descriptions, description_paths, schema_of
from .parts import PRODUCTS, Part, PartTable, Paths, divide

if TYPE_CHECKING:
    import dask.dataframe
    import pandas

__all__ = ["read"]


class _Reader:
    """Makes the frame of a part; knows what Dask does not need from it."""

    def __init__(self, choice: Choice) -> None:
        self._choice = choice

    def __call__(self, part: Part, columns: Iterable[str] | None = None) -> pandas.DataFrame:
        choice = self._choice
        wanted = None if columns is None else list(columns)
        if wanted is not None and choice.type not in PRODUCTS:
            fields = tuple(name for name in wanted if name not in ("time", "offset", "file", "utc"))
            # A table needs a column of a field.
            choice = replace(choice, columns=fields or choice.columns[:1] or ("TOW",))
        table = PartTable(part, choice)
        frame = _frame(table.to_arrow())
        frame.attrs = {}
        return frame if wanted is None else frame[wanted]


def _frame(table: Any) -> pandas.DataFrame:
    """A frame whose types do not depend on whether a part has missing values."""
    frames = need("pandas", "dask")
    pyarrow = need("pyarrow", "dask")
    whole = {
        getattr(pyarrow, name.lower())(): getattr(frames, f"{name}Dtype")()
        for name in ("Int8", "Int16", "Int32", "Int64", "UInt8", "UInt16", "UInt32", "UInt64")
    }
    frame: pandas.DataFrame = table.to_pandas(types_mapper=whole.get)
    return frame


def read(
    paths: Paths,
    type: str,
    *,
    columns: Iterable[str] = (),
    rows: str = "",
    where: str = "",
    start: Time | None = None,
    end: Time | None = None,
    part_bytes: int = 64 << 20,
    description: Descriptions | None = None,
    save_index: bool = False,
    **options: bool,
) -> dask.dataframe.DataFrame:
    """The messages of a type, or a product ("observations", "positions", "ephemerides"), of logs.

    Paths are those of ``tqx.open``, and must be the same for all workers. ``columns``, ``rows``,
    ``where``, ``start`` and ``end`` are what ``Table.select``, ``explode``, ``where`` and ``between``
    take; columns that a computation does not use are not read. Integers are nullable types of pandas.
    Positions and ephemerides depend on all blocks before them: a file is one partition.
    """
    frames = need("dask.dataframe", "dask")
    descriptions = description_paths(description)
    choice = Choice(
        type if type in PRODUCTS else schema_of(descriptions).type_name(type),
        tuple(columns),
        rows,
        (where,) if where else (),
        None if start is None else gnss_millis(start),
        None if end is None else gnss_millis(end),
        options=dict(options),
        descriptions=descriptions,
    )
    if type not in PRODUCTS:
        choice.checked()
    parts = divide(
        paths,
        part_bytes=part_bytes,
        start=choice.start,
        end=choice.end,
        table=choice.type,
        description=description,
        save_index=save_index,
    )
    reader = _Reader(choice)
    if not parts:
        raise ValueError("no log has anything in that time")
    meta = _frame(PartTable(parts[0], choice).schema.empty_table())
    frame: Any = frames.from_map(reader, parts, meta=meta)
    return frame
