"""Points of GNSS time."""

from __future__ import annotations

import datetime as dt
from typing import Union

from . import _tqx

__all__ = ["Time", "gnss_millis", "to_datetime"]

#: A point of GNSS time: text such as "2400:216000" (week and seconds), "2026-01-06T12:00:00 GPS" or
#: "2026-01-06T11:59:42Z"; a datetime, which is GPS time without and UTC with a time zone; anything
#: with a method ``to_pydatetime``, such as a timestamp of pandas.
Time = Union[str, dt.datetime]

_EPOCH = dt.datetime(1980, 1, 6)
_MILLI = dt.timedelta(milliseconds=1)


def gnss_millis(time: Time) -> int:
    """Milliseconds of GNSS time since 1980-01-06, without leap seconds.

    >>> gnss_millis("2400:216000.5")
    1451736000500
    >>> gnss_millis(dt.datetime(2026, 1, 6, 12, 0, 0, 500000))
    1451736000500
    >>> gnss_millis(dt.datetime(2026, 1, 6, 11, 59, 42, 500000, dt.timezone.utc))
    1451736000500
    """
    if isinstance(time, str):
        return _tqx.parse_time(time)
    convert = getattr(time, "to_pydatetime", None)
    value: dt.datetime = convert() if convert else time
    if value.tzinfo is not None:
        utc = value.astimezone(dt.timezone.utc).replace(tzinfo=None)
        return _tqx.parse_time(utc.isoformat(timespec="milliseconds") + "Z")
    if value < _EPOCH:
        raise ValueError(f"{value} is before the beginning of GNSS time")
    return (value - _EPOCH) // _MILLI


def to_datetime(millis: int) -> dt.datetime:
    """The date of GPS time, without a zone.

    >>> to_datetime(1451736000500)
    datetime.datetime(2026, 1, 6, 12, 0, 0, 500000)
    """
    return _EPOCH + millis * _MILLI
