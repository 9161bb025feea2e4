"""Logs of GNSS receivers in the TQX block format.

>>> import tqx
>>> log = tqx.open(tqx.simulate(duration=60))
>>> table = log["PVTGeodetic2"].select("Latitude", "Height").where("NrSV >= 8")
>>> table.to_arrow().num_rows
60
"""

from ._arrow import ArrowTable
from ._errors import Error, LineError, RequestError, SourceError
from ._log import Log, Product
from ._log import open_log as open
from ._message import Message, Record
from ._products import encode, report, rinex, simulate, track
from ._progress import Progress
from ._table import Choice, Table
from ._time import Time, gnss_millis
from ._types import Field, Type, Types, types

__version__ = "0.3.0"

__all__ = [
    "ArrowTable",
    "Choice",
    "Error",
    "Field",
    "LineError",
    "Log",
    "Message",
    "Product",
    "Progress",
    "Record",
    "RequestError",
    "SourceError",
    "Table",
    "Time",
    "Type",
    "Types",
    "encode",
    "gnss_millis",
    "open",
    "report",
    "rinex",
    "simulate",
    "track",
    "types",
]
