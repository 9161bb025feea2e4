"""Plots of logs with matplotlib. Each draws into given or new axes, and returns them."""

from __future__ import annotations

import math
from collections.abc import Sequence
from typing import TYPE_CHECKING, Any

from ._needs import need
from ._time import Time

if TYPE_CHECKING:
    from matplotlib.axes import Axes

    from ._log import Log

__all__ = ["Plots"]

_EARTH_RADIUS = 6_378_137.0
_FLATTENING = 1 / 298.257223563


def _axes(axes: Axes | None, **options: Any) -> Axes:
    if axes is not None:
        return axes
    pyplot = need("matplotlib.pyplot", "plot")
    made: Axes = pyplot.figure().add_subplot(**options)
    return made


def _metres_per_degree(latitude: float) -> tuple[float, float]:
    """Metres to the north and to the east on WGS84."""
    sine = math.sin(math.radians(latitude))
    square = _FLATTENING * (2 - _FLATTENING)
    curvature = 1 - square * sine * sine
    north = _EARTH_RADIUS * (1 - square) / curvature**1.5
    east = _EARTH_RADIUS / math.sqrt(curvature) * math.cos(math.radians(latitude))
    return math.radians(1) * north, math.radians(1) * east


class Plots:
    """The plots of a log: ``log.plot.position()``, ``log.plot.sky()``, ``log.plot.cn0()``."""

    def __init__(self, log: Log) -> None:
        self._log = log

    def position(
        self,
        axes: Axes | None = None,
        *,
        source: str = "",
        reference: tuple[float, float] | None = None,
    ) -> Axes:
        """Positions in metres to the east and north of their mean or of a reference (degrees)."""
        columns = self._log.positions(source).to_numpy()
        latitude, longitude = columns["latitude"], columns["longitude"]
        axes = _axes(axes)
        axes.set_xlabel("east [m]")
        axes.set_ylabel("north [m]")
        axes.set_aspect("equal", adjustable="datalim")
        if len(latitude) == 0:
            return axes
        centre = reference or (float(latitude.mean()), float(longitude.mean()))
        north, east = _metres_per_degree(centre[0])
        # Positions on both sides of 180 degrees are near each other.
        aside = (longitude - centre[1] + 180) % 360 - 180
        axes.plot(aside * east, (latitude - centre[0]) * north, ".", markersize=2)
        axes.set_title(f"{centre[0]:.7f}°, {centre[1]:.7f}°")
        return axes

    def sky(
        self,
        axes: Axes | None = None,
        *,
        start: Time | None = None,
        end: Time | None = None,
    ) -> Axes:
        """Where the satellites were in the sky: azimuth clockwise from the north, zenith inside."""
        table = self._log["SatVisibility1"].between(start, end).explode("SatInfo")
        frame = table.select("SatInfo.SVID", "SatInfo.Azimuth", "SatInfo.Elevation").to_pandas()
        axes = _axes(axes, projection="polar")
        polar: Any = axes
        polar.set_theta_zero_location("N")
        polar.set_theta_direction(-1)
        polar.set_rlim(90, 0)
        for satellite, rows in frame.groupby("SVID", observed=True):
            known = rows[rows["Elevation"] >= 0]
            if known.empty:
                continue
            angles = known["Azimuth"].to_numpy() * math.pi / 180
            heights = known["Elevation"].to_numpy()
            axes.plot(angles, heights, ".", markersize=1)
            axes.annotate(str(satellite), (angles[-1], heights[-1]), fontsize="small")
        return axes

    def cn0(
        self,
        axes: Axes | None = None,
        *,
        satellites: str | Sequence[str] | None = None,
        signals: str | Sequence[str] | None = None,
        start: Time | None = None,
        end: Time | None = None,
    ) -> Axes:
        """C/N0 of each signal over time; choices are those of ``Log.observations``."""
        table = self._log.observations(satellites=satellites, signals=signals, start=start, end=end)
        frame = table.to_pandas()
        axes = _axes(axes)
        for (satellite, signal), rows in frame.groupby(["satellite", "signal"], observed=True):
            axes.plot(
                rows["time"].to_numpy(),
                rows["cn0"].to_numpy(),
                linewidth=0.8,
                label=f"{satellite} {signal}",
            )
        axes.set_xlabel("GPS time")
        axes.set_ylabel("C/N0 [dB-Hz]")
        if 0 < len(axes.lines) <= 12:
            axes.legend(fontsize="small")
        return axes
