"""A data source for Spark: ``spark.read.format("tqx")``.

>>> spark.dataSource.register(TqxDataSource)  # doctest: +SKIP
>>> spark.read.format("tqx").option("type", "PVTGeodetic2").load("logs/")  # doctest: +SKIP
"""

from __future__ import annotations

import json
import os
import uuid
from collections.abc import Iterable, Iterator, Sequence
from dataclasses import dataclass, replace
from pathlib import Path
from typing import Any

from . import _tqx
from ._log import open_log
from ._needs import need
from ._table import Choice
from ._time import gnss_millis
from ._types import Types, description_paths, schema_of
from .parts import PRODUCTS, Part, PartTable, divide

pyarrow = need("pyarrow", "spark")
need("pyspark.sql.datasource", "spark")

from pyspark.sql.datasource import (  # noqa: E402
    DataSource,
    DataSourceReader,
    EqualTo,
    Filter,
    GreaterThan,
    GreaterThanOrEqual,
    In,
    InputPartition,
    LessThan,
    LessThanOrEqual,
)
from pyspark.sql.pandas.types import from_arrow_schema  # noqa: E402
from pyspark.sql.types import StructType  # noqa: E402

__all__ = ["TqxDataSource"]

_DECIMAL = pyarrow.decimal128(20, 0)
_WIDER = {
    pyarrow.uint8(): pyarrow.int16(),
    pyarrow.uint16(): pyarrow.int32(),
    pyarrow.uint32(): pyarrow.int64(),
    pyarrow.uint64(): _DECIMAL,
}
_GPS_EPOCH_MILLIS = 315_964_800_000


def _spark_type(kind: Any) -> Any:
    """The type of a column of Spark for one of a table."""
    if pyarrow.types.is_dictionary(kind):
        return pyarrow.string()
    if pyarrow.types.is_timestamp(kind):
        return pyarrow.timestamp("us")
    if pyarrow.types.is_struct(kind):
        return pyarrow.struct([each.with_type(_spark_type(each.type)) for each in kind])
    if pyarrow.types.is_list(kind) or pyarrow.types.is_fixed_size_list(kind):
        return pyarrow.list_(_spark_type(kind.value_type))
    return _WIDER.get(kind, kind)


def _convert(values: Any) -> Any:
    """An array with the values of a column in Spark's type for it."""
    kind = values.type
    if pyarrow.types.is_struct(kind):
        children = [_convert(child) for child in values.flatten()]
        fields = list(_spark_type(kind))
        mask = values.is_null() if values.null_count else None
        return pyarrow.StructArray.from_arrays(children, fields=fields, mask=mask)
    if pyarrow.types.is_fixed_size_list(kind):
        values = values.cast(pyarrow.list_(kind.value_type))
        kind = values.type
    if pyarrow.types.is_list(kind):
        inner = _convert(values.values)
        return pyarrow.ListArray.from_arrays(
            values.offsets,
            inner,
            type=_spark_type(kind),
            mask=values.is_null() if values.null_count else None,
        )
    if pyarrow.types.is_timestamp(kind):
        return values.cast(pyarrow.timestamp("us"), safe=False)
    return values.cast(_spark_type(kind))


def _schema(table: PartTable) -> Any:
    fields = []
    for column in table.schema:
        fields.append(pyarrow.field(column.name, _spark_type(column.type)))
        if column.name == "time":
            fields.append(pyarrow.field("time_ns", pyarrow.int64()))
    return pyarrow.schema(fields)


def _batch(batch: Any, names: Sequence[str]) -> Any:
    columns = []
    for name in names:
        if name == "time_ns":
            columns.append(batch.column("time").cast(pyarrow.int64()))
        else:
            columns.append(_convert(batch.column(name)))
    return pyarrow.RecordBatch.from_arrays(columns, names=list(names))


@dataclass
class _Partition(InputPartition):
    """A part of a log, as sent to a worker by Spark."""

    part: Part


@dataclass(frozen=True)
class _Request:
    """The request in the options."""

    path: str
    choice: Choice
    part_bytes: int
    save_index: bool
    statistics: str


_FLAGS: tuple[str, ...] = ("scaled", "named", "utc", "file")


def _request(options: dict[str, str]) -> _Request:
    lowered = {name.lower(): value for name, value in options.items()}
    if "path" not in lowered:
        raise ValueError("the data source tqx needs a path: .load(PATH)")
    if "type" not in lowered:
        raise ValueError('the data source tqx needs .option("type", NAME), one type for a table')
    kind = lowered["type"]
    columns = [each.strip() for each in lowered.get("columns", "").split(",") if each.strip()]
    names = [name for name in _FLAGS if name in lowered]
    descriptions = description_paths(
        [each.strip() for each in lowered.get("description", "").split(",") if each.strip()]
    )
    flags = {name: lowered[name].lower() == "true" for name in names}
    choice = Choice(
        kind if kind in PRODUCTS else schema_of(descriptions).type_name(kind),
        tuple(columns),
        lowered.get("rows", ""),
        (lowered["where"],) if "where" in lowered else (),
        gnss_millis(lowered["start"]) if "start" in lowered else None,
        gnss_millis(lowered["end"]) if "end" in lowered else None,
        options=flags,
        descriptions=descriptions,
    )
    return _Request(
        lowered["path"],
        choice,
        int(lowered.get("partbytes", 64 << 20)),
        lowered.get("saveindex", "false").lower() == "true",
        lowered.get("statistics", ""),
    )


_OWN = ("time", "time_ns", "utc", "offset", "file")


def _only(choice: Choice, names: Iterable[str]) -> Choice:
    """The selection with the columns of a schema, as far as they are fields."""
    if choice.type in PRODUCTS:
        return choice
    names = list(names)
    options = dict(choice.options)
    for own in ("utc", "file"):
        if own in names:
            options[own] = True
    fields = tuple(name for name in names if name not in _OWN)
    return replace(choice, columns=fields or choice.columns[:1] or ("TOW",), options=options)


class _Reader(DataSourceReader):
    def __init__(self, request: _Request, schema: StructType) -> None:
        self._request = request
        self._names = list(schema.fieldNames())
        self._choice = _only(request.choice, self._names)

    def pushFilters(self, filters: list[Filter]) -> Iterable[Filter]:
        """Accepts filters on the time, number and revision.

        Spark still applies all filters itself.
        """
        for each in filters:
            if len(getattr(each, "attribute", ())) == 1:
                self._push(each)
            yield each

    def _push(self, condition: Any) -> None:
        name = condition.attribute[0]
        if name in ("time", "time_ns"):
            self._push_time(condition, name)
        elif name in ("Revision", "BlockNumber") and isinstance(condition, (EqualTo, In)):
            values = [condition.value] if isinstance(condition, EqualTo) else condition.value
            if name == "Revision":
                mask = sum({1 << value for value in values if 0 <= value <= 7})
            else:
                types = Types(self._choice.descriptions)
                mask = 0xFF if types[self._choice.type].number in values else 0
            self._choice = replace(self._choice, revisions=self._choice.revisions & mask)

    def _push_time(self, condition: Any, name: str) -> None:
        start, end = self._choice.start, self._choice.end
        if isinstance(condition, (GreaterThan, GreaterThanOrEqual, EqualTo)):
            start = max(_millis(condition.value, name), start or 0)
        if isinstance(condition, (LessThan, LessThanOrEqual, EqualTo)):
            after = _millis(condition.value, name) + 1
            end = after if end is None else min(end, after)
        self._choice = replace(self._choice, start=start, end=end)

    def partitions(self) -> Sequence[InputPartition]:
        """The parts of the logs with blocks of the wanted time, by their indexes."""
        request = self._request
        parts = divide(
            request.path,
            part_bytes=request.part_bytes,
            start=self._choice.start,
            end=self._choice.end,
            table=self._choice.type,
            description=self._choice.descriptions,
            save_index=request.save_index,
        )
        return [_Partition(part) for part in parts]

    def read(self, partition: Any) -> Iterator[Any]:
        """The rows of a part as batches of Arrow."""
        if partition is None or not hasattr(partition, "part"):
            return
        table = PartTable(partition.part, self._choice)
        rows = 0
        for batch in table.batches():
            rows += batch.num_rows
            yield _batch(batch, self._names)
        if self._request.statistics:
            self._note({**table.last_read, "rows": rows, "columns": len(table.schema.names)})

    def _note(self, counts: dict[str, Any]) -> None:
        folder = Path(self._request.statistics)
        folder.mkdir(parents=True, exist_ok=True)
        path = folder / f"{os.getpid()}-{uuid.uuid4().hex}.json"
        path.write_text(json.dumps(counts), encoding="utf-8")


def _millis(value: Any, name: str) -> int:
    """GNSS milliseconds of a value of a filter, rounded down."""
    if name == "time_ns":
        return max(0, int(value) // 1_000_000 - _GPS_EPOCH_MILLIS)
    return gnss_millis(value)


class TqxDataSource(DataSource):
    """Tables of logs, each of one type, whose partitions are parts of the logs.

    Options: ``type`` (the name of a type, or "observations", "positions", "ephemerides"),
    ``columns`` (fields, separated by commas), ``rows`` (the path of sub-blocks, for one row each),
    ``where``, ``start``, ``end``, ``description`` (paths, separated by commas), ``partBytes``,
    ``saveIndex``, ``scaled``, ``named``, ``utc``, ``file``, and ``statistics``, a folder in which each
    partition records what it read.

    Spark does not prune columns of such a source by itself: name them in ``columns``, or give a
    schema.
    """

    @classmethod
    def name(cls) -> str:
        """The name for ``spark.read.format``."""
        return "tqx"

    def schema(self) -> StructType:
        """The columns of the requested table."""
        choice = _request(dict(self.options)).choice
        table = _Columns(Part("", 0, 0), choice)
        return from_arrow_schema(_schema(table), prefer_timestamp_ntz=True)

    def reader(self, schema: StructType) -> DataSourceReader:
        """A reader of the columns of a schema."""
        return _Reader(_request(dict(self.options)), schema)


class _Columns(PartTable):
    """The columns of a table without a log."""

    def _open(self) -> Any:
        choice = self._choice
        if choice.type in PRODUCTS:
            return getattr(open_log(b""), choice.type)()._open()
        return _tqx.read_logs([], choice.request())
