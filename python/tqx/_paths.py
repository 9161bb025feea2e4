"""Paths of logs as given by users."""

from __future__ import annotations

import glob
import os
from pathlib import Path

__all__ = ["expand"]

_ENDINGS = (".tqx", ".tqx.gz", ".tqx.zst")


def expand(path: str | os.PathLike[str]) -> list[str]:
    """The files that a path means, sorted: a file, a folder with logs (``*.tqx``, also
    compressed) or a pattern.
    """
    text = os.fspath(path)
    if os.path.isdir(text):
        found = sorted(str(each) for each in Path(text).iterdir() if each.name.endswith(_ENDINGS))
    elif os.path.exists(text) or not glob.has_magic(text):
        return [text]
    else:
        found = sorted(glob.glob(text))
    if not found:
        raise FileNotFoundError(f"{text}: no logs there")
    return found
