"""Products of logs, and simulated logs."""

from __future__ import annotations

import datetime as dt
import json
import os
from collections.abc import Iterable, Mapping, Sequence
from pathlib import Path
from typing import Any, Union, cast

from . import _tqx
from ._log import Log, Source, open_log
from ._message import Message
from ._time import Time, gnss_millis
from ._types import Descriptions, description_paths, schema_of

__all__ = ["encode", "report", "rinex", "simulate", "track"]

_WEEK = 604_800_000

Logs = Union[Log, Source, Sequence["str | os.PathLike[str]"]]

#: What can be encoded: a message, an object as ``Message.raw`` has it, or that as JSON.
Encodable = Union[Message, Mapping[str, Any], str]


def _log(logs: Logs) -> Log:
    return logs if isinstance(logs, Log) else open_log(logs)


def _texts(value: str | Iterable[str] | None) -> list[str]:
    if value is None:
        return []
    return value.split(",") if isinstance(value, str) else list(value)


def rinex(
    logs: Logs,
    folder: str | os.PathLike[str] = ".",
    *,
    version: str = "3.05",
    start: Time | None = None,
    end: Time | None = None,
    interval: float = 0,
    satellites: str | Iterable[str] | None = None,
    signals: str | Iterable[str] | None = None,
    marker: str = "",
    observer: str = "",
    agency: str = "",
    gzip: bool = False,
) -> list[str]:
    """Writes RINEX files of observations and navigation messages, and returns their paths.

    They have long names and are written into ``folder``; ``version`` is "3.05" or "4.02". Choices are
    those of ``Log.observations``.
    """
    if version not in ("3.05", "4.02"):
        raise ValueError(f"there is no version {version}; they are 3.05 and 4.02")
    request = _tqx.RinexRequest()
    request.set_version(version == "4.02")
    request.set_program("tqx")
    request.set_date(dt.datetime.now(dt.timezone.utc).strftime("%Y%m%d %H%M%S UTC"))
    request.set_marker(marker)
    request.set_observer(observer)
    request.set_agency(agency)
    request.set_selection(
        None if start is None else gnss_millis(start),
        None if end is None else gnss_millis(end),
        max(1, round(interval * 1000)),
        _texts(satellites),
        _texts(signals),
    )
    request.folder = os.fspath(folder)
    request.is_compressed = gzip
    return list(_tqx.write_rinex(_log(logs).files, request))


def report(
    logs: Logs,
    path: str | os.PathLike[str] | None = None,
    *,
    mask: float = 10,
    reference: tuple[float, float, float] | Logs | None = None,
    together: bool = False,
) -> dict[str, Any]:
    """Whether the data of logs are good: figures, verdicts and findings, as ``tqx report --json`` has them.

    Several paths are logs of their own, of which each has an entry in ``["logs"]``, unless
    ``together``. With a ``path``, the report is written there as a page for a browser, too.
    Observations below ``mask`` degrees are left out. ``reference`` is where the antenna was (degrees
    and metres above the ellipsoid), or a log whose positions at the same times are right.

    >>> found = report(simulate(duration=120))["logs"][0]
    >>> found["figures"]["epochs_found"], found["verdicts"][0]["grade"]
    (120, 'good')
    """
    if isinstance(logs, (list, tuple)) and not together:
        groups = [open_log(each).unread_files for each in logs]
    else:
        groups = [_log(logs).unread_files]
    place = None
    track_files: list[_tqx.LogFile] = []
    if isinstance(reference, tuple) and not isinstance(reference[0], (str, os.PathLike)):
        place = (float(reference[0]), float(reference[1]), float(reference[2]))
    elif reference is not None:
        track_files = _log(cast(Logs, reference)).unread_files
    page = "" if path is None else os.fspath(path)
    text = _tqx.report(groups, page, float(mask), place, track_files)
    found: dict[str, Any] = json.loads(text)
    return found


def track(
    logs: Logs,
    path: str | os.PathLike[str],
    *,
    format: str = "",
    source: str = "",
    start: Time | None = None,
    end: Time | None = None,
) -> int:
    """Writes the positions of one kind of block as a track, and returns how many there are.

    The format follows from ``format`` or the suffix of the path: csv, gpx, kml, geojson, nmea,
    gpkg.
    """
    target = Path(path)
    kind = format or target.suffix.lstrip(".")
    return int(
        _tqx.write_track(
            _log(logs).files,
            str(target),
            kind,
            target.stem,
            source,
            start=None if start is None else gnss_millis(start),
            end=None if end is None else gnss_millis(end),
        )
    )


def encode(
    messages: Encodable | Iterable[Encodable], *, description: Descriptions | None = None
) -> bytes:
    """The blocks of messages: Message objects, objects in the form of ``Message.raw``, or JSON text.

    Omitted fields have their initial values; lengths, counts and checksums are computed.
    ``description`` adds types, as for ``tqx.open``.

    Raises LineError for a message that cannot be encoded.

    >>> block = encode({"block": "PVTGeodetic2", "fields": {"TOW": 216000000, "WNc": 2400}})
    >>> open_log(block).types
    {'PVTGeodetic2': 1}
    """
    schema = schema_of(description_paths(description))
    if isinstance(messages, Message):
        return messages.bytes
    if isinstance(messages, Mapping):
        return bytes(_tqx.encode(json.dumps(messages), schema))
    if isinstance(messages, str):
        return b"".join(_tqx.encode(line, schema) for line in messages.splitlines() if line.strip())
    return b"".join(encode(each, description=description) for each in messages)


def simulate(
    path: str | os.PathLike[str] | None = None,
    *,
    duration: float = 60,
    rate: float = 1,
    seed: int = 1,
    start: Time = "2400:216000",
    position: tuple[float, float, float] = (47.07, 15.45, 412.3),
    motion: str = "static",
    speed: float = 15,
    slips: float = 0,
    damage: bool = False,
    mixed: bool = False,
    compact: bool = False,
    two_antennas: bool = False,
    almanacs: bool = False,
    pulses: float = 0,
) -> bytes | None:
    """The log of a simulated receiver, as bytes or written to a file.

    ``duration`` is in seconds, ``rate`` in hertz, ``position`` in degrees and metres, ``motion`` is
    "static", "circle" or "line", ``slips`` are losses of lock per satellite and hour, ``pulses``
    the seconds between pulses on an event input. The same arguments give the same bytes.

    >>> log = open_log(simulate(duration=10))
    >>> log.types["PVTGeodetic2"]
    10
    """
    period = round(1000 / rate)
    if period < 1 or abs(period - 1000 / rate) > 1e-6 * period:
        raise ValueError(f"{rate} Hz is a period of {1000 / rate} ms, which is not whole")
    settings = _tqx.SimulationSettings()
    settings.duration = float(duration)
    settings.period_millis = period
    settings.seed = seed
    settings.week, settings.tow_millis = divmod(gnss_millis(start), _WEEK)
    settings.set_position(*position)
    settings.set_track(motion, speed)
    settings.set_slips(slips)
    settings.damage = damage
    settings.mixed = mixed
    settings.compact = compact
    settings.set_two_antennas(two_antennas)
    settings.almanacs = almanacs
    settings.pulse_period = float(pulses)
    if path is None:
        return bytes(_tqx.simulate_bytes(settings))
    _tqx.simulate_file(settings, os.fspath(path))
    return None
