"""Progress of long work."""

from __future__ import annotations

import sys
from collections.abc import Callable, Iterator
from contextlib import contextmanager
from typing import Union

__all__ = ["Progress", "Report", "shown"]

#: Called with the amount done and the total.
Report = Callable[[int, int], None]

#: Whether progress is shown: True or False, None for a bar on a terminal or in a notebook if tqdm is
#: installed and there is much to do, or a function that is called with both numbers.
Progress = Union[bool, None, Report]

_LEAST = 256 << 20


def _is_interactive() -> bool:
    return sys.stderr is not None and (sys.stderr.isatty() or "ipykernel" in sys.modules)


@contextmanager
def shown(progress: Progress, title: str, total: int, unit: str = "B") -> Iterator[Report]:
    """A function to report progress to, while the context lasts."""
    if callable(progress):
        yield progress
        return
    wanted = progress
    if wanted is None:
        wanted = _is_interactive() and (unit != "B" or total >= _LEAST)
    if not wanted:
        yield lambda done, total: None
        return
    try:
        from tqdm.auto import tqdm
    except ImportError:
        yield lambda done, total: None
        return
    with tqdm(desc=title, total=total, unit=unit, unit_scale=True, leave=False) as bar:

        def report(done: int, total: int) -> None:
            bar.update(done - bar.n)

        yield report
