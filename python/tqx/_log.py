"""Logs."""

from __future__ import annotations

import datetime as dt
import os
from collections.abc import Iterable, Iterator, Sequence
from html import escape
from pathlib import Path
from typing import IO, TYPE_CHECKING, Any, Union

from . import _tqx
from ._arrow import ArrowTable
from ._message import Message
from ._paths import expand
from ._progress import Progress, shown
from ._table import Choice, Table
from ._time import Time, gnss_millis, to_datetime
from ._types import Descriptions, Types, description_paths, schema_of
from ._types import types as catalogue

if TYPE_CHECKING:
    from .plot import Plots

__all__ = ["Log", "Product", "Source", "open_log"]

#: What a log can be opened from.
Source = Union[str, "os.PathLike[str]", bytes, bytearray, memoryview, IO[bytes]]


def _millis(time: Time | None) -> int | None:
    return None if time is None else gnss_millis(time)


def _texts(value: str | Iterable[str] | None) -> list[str]:
    if value is None:
        return []
    return value.split(",") if isinstance(value, str) else list(value)


class Product(ArrowTable):
    """A table made from messages of several types: observations, positions, ephemerides."""

    def __init__(self, log: Log, name: str, arguments: tuple[Any, ...]) -> None:
        self._log = log
        self._title = name
        self._arguments = arguments
        self._progress = log.progress

    @property
    def name(self) -> str:
        """What the table contains."""
        return self._title

    def _open(self) -> Any:
        return getattr(_tqx, self._title)(self._log.files, *self._arguments)

    def _open_for_frame(self) -> Any:
        if self._title == "observations":
            read: Any = _tqx.observations
            return read(self._log.files, *self._arguments, nan_is_missing=True)
        return self._open()

    def __repr__(self) -> str:
        return f"<table of {self._title}>"


class Log:
    """A log, or several consecutive ones. See ``tqx.open``."""

    def __init__(
        self,
        files: list[_tqx.LogFile],
        progress: Progress,
        save_index: bool,
        description: Descriptions | None = None,
    ) -> None:
        self._files = files
        self._names = [each.name for each in files]
        #: for those who read all of it, without an index
        self.unread_files = list(files)
        self._is_loaded = False
        self._save_index = save_index
        self._descriptions = description_paths(description)
        self.progress = progress

    @property
    def names(self) -> list[str]:
        """Names of the files."""
        return list(self._names)

    @property
    def catalogue(self) -> Types:
        """The types that its blocks are read by: the built ones, and those of its description."""
        return Types(self._descriptions) if self._descriptions else catalogue

    @property
    def files(self) -> list[_tqx.LogFile]:
        """The files with their indexes, which are made now unless they are saved beside the logs.

        Files that share a block are one here.
        """
        if not self._is_loaded:
            self._load()
        return self._files

    def _load(self) -> None:
        sizes = [each.packed_size for each in self._files]
        with shown(self.progress, "index", sum(sizes)) as report:
            done = 0
            for each, size in zip(self._files, sizes, strict=True):
                before = done

                def hear(count: int, before: int = before) -> None:
                    report(min(before + count, sum(sizes)), sum(sizes))

                each.load(hear)
                if self._save_index and not each.is_index_saved:
                    each.save()
                done += size
        self._files = _tqx.join_logs(self._files, None)
        self._is_loaded = True

    @property
    def warnings(self) -> list[str]:
        """Problems with the files that do not prevent reading them, such as a truncated compressed
        file.
        """
        return [warning for each in self.files for warning in each.warnings]

    @property
    def types(self) -> dict[str, int]:
        """How many messages there are of each type, most frequent first; unknown block numbers
        appear as text.
        """
        counts: dict[str, int] = {}
        schema = schema_of(self._descriptions)
        for each in self.files:
            for number, _, count in each.types():
                name = schema.number_name(number) or str(number)
                counts[name] = counts.get(name, 0) + count
        return dict(sorted(counts.items(), key=lambda item: -item[1]))

    @property
    def start(self) -> dt.datetime | None:
        """Earliest GPS time of a block."""
        times = [each.first_time for each in self.files if each.first_time is not None]
        return to_datetime(min(times)) if times else None

    @property
    def end(self) -> dt.datetime | None:
        """Latest GPS time of a block."""
        times = [each.last_time for each in self.files if each.last_time is not None]
        return to_datetime(max(times)) if times else None

    @property
    def counts(self) -> dict[str, int]:
        """Bytes, blocks, and what belongs to no block: dropped bytes, among them sentences of other
        formats, and false blocks with bad checksums or lengths.
        """
        total: dict[str, int] = {}
        for each in self.files:
            for name, count in each.counts().items():
                total[name] = total.get(name, 0) + count
        return total

    @property
    def gaps(self) -> list[tuple[str, int, int]]:
        """Runs of bytes that belong to no block: file, offset and length."""
        return [gap[:3] for each in self.files for gap in each.gaps()]

    def __getitem__(self, name: str) -> Table:
        """The messages of a type as a table; the case of the name does not matter."""
        schema = schema_of(self._descriptions)
        return Table(self, Choice(schema.type_name(name), descriptions=self._descriptions))

    def __contains__(self, name: object) -> bool:
        types = self.catalogue
        return isinstance(name, str) and name in types and types[name].name in self.types

    def __iter__(self) -> Iterator[Message]:
        return self.messages()

    def messages(
        self,
        *types: str,
        where: str = "",
        start: Time | None = None,
        end: Time | None = None,
    ) -> Iterator[Message]:
        """Messages one at a time, of some types (names, patterns or numbers) or of all."""
        reader = _tqx.MessageReader(
            self.files, list(types), where, start=_millis(start), end=_millis(end)
        )
        schema = schema_of(self._descriptions)
        while True:
            found: Any = reader.next()
            if found is None:
                return
            yield Message(found, schema)

    def observations(
        self,
        *,
        start: Time | None = None,
        end: Time | None = None,
        interval: float = 0,
        satellites: str | Sequence[str] | None = None,
        signals: str | Sequence[str] | None = None,
    ) -> Product:
        """One row per epoch, satellite, signal and antenna, from the blocks of all generations.

        ``interval`` keeps only epochs at multiples of that many seconds; ``satellites`` and
        ``signals`` are patterns such as "G*,E11" and "1C". Losses of lock are found over all
        epochs.
        """
        millis = max(1, round(interval * 1000))
        arguments = (_millis(start), _millis(end), millis, _texts(satellites), _texts(signals))
        return Product(self, "observations", arguments)

    def positions(
        self, source: str = "", *, start: Time | None = None, end: Time | None = None
    ) -> Product:
        """The positions of one kind of block, the best available or that of ``source``."""
        return Product(self, "positions", (source, _millis(start), _millis(end)))

    def ephemerides(self, *, start: Time | None = None, end: Time | None = None) -> Product:
        """Orbits and clocks as the satellites sent them, each once."""
        return Product(self, "ephemerides", (_millis(start), _millis(end)))

    def to_parquet(
        self,
        folder: str | os.PathLike[str],
        types: Iterable[str] | None = None,
        **options: Any,
    ) -> dict[str, int]:
        """Writes one Parquet file per type into a folder, and returns the number of rows of each.

        ``options`` are those of ``pyarrow.parquet.ParquetWriter``.
        """
        target = Path(folder)
        target.mkdir(parents=True, exist_ok=True)
        known = self.catalogue
        names = [name for name in self.types if name in known] if types is None else list(types)
        return {
            name: self[name].to_parquet(target / f"{self[name].name}.parquet", **options)
            for name in names
        }

    def rinex(self, folder: str | os.PathLike[str] = ".", **options: Any) -> list[str]:
        """Writes RINEX files, see ``tqx.rinex``."""
        from ._products import rinex

        return rinex(self, folder, **options)

    def track(self, path: str | os.PathLike[str], **options: Any) -> int:
        """Writes a track, see ``tqx.track``."""
        from ._products import track

        return track(self, path, **options)

    def report(self, path: str | os.PathLike[str] | None = None, **options: Any) -> dict[str, Any]:
        """Whether the data are good, see ``tqx.report``."""
        from ._products import report

        return report(self, path, **options)

    @property
    def plot(self) -> Plots:
        """Plots with matplotlib: ``position()``, ``sky()``, ``cn0()``."""
        from .plot import Plots

        return Plots(self)

    def __repr__(self) -> str:
        names = self.names[0] if len(self.names) == 1 else f"{len(self.names)} files"
        counts = self.counts
        lines = [f"<log {names}: {counts['blocks']} blocks, {counts['bytes']} bytes"]
        if self.start is not None and self.end is not None:
            lines.append(
                f"  {self.start.isoformat(timespec='milliseconds')} to "
                f"{self.end.isoformat(timespec='milliseconds')} GPS"
            )
        if counts["dropped_bytes"]:
            lines.append(
                f"  {counts['dropped_bytes']} bytes belong to no block, "
                f"{counts['checksum_errors']} bad checksums"
            )
        lines.extend(f"  {count:8} {name}" for name, count in self.types.items())
        return "\n".join(lines) + ">"

    def _repr_html_(self) -> str:
        counts = self.counts
        facts = {
            "files": ", ".join(self.names),
            "start": self.start,
            "end": self.end,
            "blocks": counts["blocks"],
            "bytes": counts["bytes"],
            "bytes that belong to no block": counts["dropped_bytes"],
            "bad checksums": counts["checksum_errors"],
        }
        head = "".join(
            f"<tr><th style='text-align:left'>{escape(name)}</th><td>{escape(str(value))}</td></tr>"
            for name, value in facts.items()
        )
        rows = "".join(
            f"<tr><td style='text-align:left'>{escape(name)}</td><td>{count}</td></tr>"
            for name, count in self.types.items()
        )
        return (
            f"<table>{head}</table><table><thead><tr><th>type</th><th>messages</th></tr></thead>"
            f"<tbody>{rows}</tbody></table>"
        )


def open_log(
    source: Source | Sequence[str | os.PathLike[str]],
    *,
    description: Descriptions | None = None,
    save_index: bool = False,
    progress: Progress = None,
) -> Log:
    """Opens a log: a path, several, a folder or pattern, bytes, or a file object.

    Files may be compressed with gzip or Zstandard. Several files follow each other as one log, in
    which a block may begin in one file and end in the next; offsets are those in each file.
    ``description`` is a YAML file that describes further types, a folder with such files, or several.
    Nothing is read yet; the index is made, or read if it is saved beside the log, when it is first
    needed. ``save_index`` saves it. For ``progress`` see ``tqx.Progress``.

    Raises SourceError when a file cannot be opened, RequestError when a description is wrong.
    """
    schema = schema_of(description_paths(description))
    if isinstance(source, (str, os.PathLike)):
        files = [_tqx.LogFile(path, schema) for path in expand(source)]
    elif isinstance(source, (bytes, bytearray, memoryview)):
        files = [_tqx.LogFile.of_bytes(bytes(source), "memory", schema)]
    elif hasattr(source, "read"):
        content = source.read()
        files = [_tqx.LogFile.of_bytes(content, str(getattr(source, "name", "memory")), schema)]
    else:
        files = [_tqx.LogFile(path, schema) for each in source for path in expand(each)]
    return Log(files, progress, save_index, description)
