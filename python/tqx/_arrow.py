"""Tables for any Arrow reader, and their conversions."""

from __future__ import annotations

import os
from collections.abc import Iterator
from html import escape
from pathlib import Path
from typing import TYPE_CHECKING, Any

from ._errors import SourceError
from ._needs import need
from ._progress import Progress, shown

if TYPE_CHECKING:
    import pandas
    import polars
    import pyarrow

__all__ = ["ArrowTable"]


class ArrowTable:
    """A table that is made while it is read, batch by batch, and anew each time.

    Every Arrow reader accepts it, through ``__arrow_c_stream__``: ``pyarrow.table(t)``,
    ``polars.DataFrame(t)``, ``duckdb.from_arrow(t)``. The conversions here are those, with progress.
    """

    _title = "table"
    _progress: Progress = None

    def _open(self) -> Any:
        """A stream of the table, for one reader."""
        raise NotImplementedError

    def _open_for_frame(self) -> Any:
        """The same for pandas, for which numbers that are NaN are missing ones anyway."""
        return self._open()

    def _row_estimate(self) -> int:
        """An estimate of the number of rows; 0 when unknown."""
        return 0

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        """The table as a stream of the Arrow C stream interface."""
        return self._open().__arrow_c_stream__(requested_schema)

    def __arrow_c_schema__(self) -> object:
        """The columns as a schema of the Arrow C data interface."""
        return self._open().__arrow_c_schema__()

    @property
    def schema(self) -> pyarrow.Schema:
        """The columns as a schema of pyarrow; units are in their metadata."""
        return need("pyarrow", "arrow").schema(self)

    @property
    def units(self) -> dict[str, str]:
        """The units of the columns that have one."""
        found = {}
        for column in self.schema:
            unit = (column.metadata or {}).get(b"unit")
            if unit:
                found[column.name] = unit.decode()
        return found

    def batches(self) -> Iterator[pyarrow.RecordBatch]:
        """The rows batch by batch, in constant memory."""
        return self._batches(self._open())

    def _batches(self, stream: Any) -> Iterator[pyarrow.RecordBatch]:
        pyarrow = need("pyarrow", "arrow")
        reader = pyarrow.RecordBatchReader.from_stream(stream)
        total = self._row_estimate()
        with shown(self._progress, self._title, total, "rows") as report:
            done = 0
            while True:
                try:
                    batch = reader.read_next_batch()
                except StopIteration:
                    break
                except (OSError, pyarrow.ArrowException) as error:
                    raise SourceError(str(error).strip()) from None
                done += batch.num_rows
                report(done, max(total, done))
                yield batch
        self._ended(stream)

    def _ended(self, stream: Any) -> None:
        """Called with a stream that was read to its end."""

    def to_arrow(self) -> pyarrow.Table:
        """All rows as a table of pyarrow."""
        pyarrow = need("pyarrow", "arrow")
        schema = self.schema
        return pyarrow.Table.from_batches(list(self.batches()), schema)

    def to_pandas(self, **options: Any) -> pandas.DataFrame:
        """All rows as a data frame of pandas.

        Named values are categories, integers with missing values become floating-point numbers.
        ``options`` are those of ``pyarrow.Table.to_pandas``. The units are in ``attrs["units"]``.
        """
        need("pandas", "pandas")
        pyarrow = need("pyarrow", "arrow")
        options.setdefault("strings_to_categorical", True)
        options.setdefault("split_blocks", True)
        batches = list(self._batches(self._open_for_frame()))
        table = pyarrow.Table.from_batches(batches, self.schema)
        frame: pandas.DataFrame = table.to_pandas(**options)
        # Columns of a single batch may be its memory, which cannot be written to.
        for name in frame.columns:
            values = getattr(frame[name], "values", None)
            flags = getattr(values, "flags", None)
            if flags is not None and not flags.writeable:
                frame[name] = frame[name].copy()
        frame.attrs["units"] = self.units
        return frame

    def to_polars(self) -> polars.DataFrame:
        """All rows as a data frame of polars."""
        frame: polars.DataFrame = need("polars", "polars").DataFrame(self)
        return frame

    def to_numpy(self) -> dict[str, Any]:
        """All columns as arrays of NumPy, by name.

        Missing numbers are NaN, missing times NaT, missing texts None.
        """
        table = self.to_arrow()
        return {name: table[name].to_numpy() for name in table.column_names}

    def to_parquet(self, path: str | os.PathLike[str], **options: Any) -> int:
        """Writes a Parquet file with one row group per batch, and returns the number of rows.

        ``options`` are those of ``pyarrow.parquet.ParquetWriter``. The file gets its name when it is
        complete.
        """
        parquet = need("pyarrow.parquet", "arrow")
        target = Path(path)
        part = target.with_name(target.name + ".part")
        options.setdefault("compression", "zstd")
        rows = 0
        try:
            with parquet.ParquetWriter(part, self.schema, **options) as writer:
                for batch in self.batches():
                    writer.write_batch(batch)
                    rows += batch.num_rows
            os.replace(part, target)
        finally:
            part.unlink(missing_ok=True)
        return rows

    def _repr_html_(self) -> str:
        rows = []
        for column in self.schema:
            metadata = column.metadata or {}
            unit, text = (metadata.get(key, b"").decode() for key in (b"unit", b"description"))
            rows.append(
                f"<tr><td>{escape(column.name)}</td><td>{escape(str(column.type))[:60]}</td>"
                f"<td>{escape(unit)}</td><td style='text-align:left'>{escape(text)}</td></tr>"
            )
        return (
            f"<p>{escape(repr(self))}</p><table><thead><tr><th>column</th><th>type</th>"
            f"<th>unit</th><th>meaning</th></tr></thead><tbody>{''.join(rows)}</tbody></table>"
        )
