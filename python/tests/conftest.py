"""Logs that the tests share."""

from __future__ import annotations

from pathlib import Path

import pytest

import tqx


@pytest.fixture(scope="session")
def folder(tmp_path_factory: pytest.TempPathFactory) -> Path:
    """Three logs that follow each other: clean, damaged over the end of a week, and compressed."""
    path = tmp_path_factory.mktemp("logs")
    tqx.simulate(path / "a.tqx", duration=300, start="2404:604000")
    tqx.simulate(path / "b.tqx", duration=600, start="2404:604300", seed=3, damage=True)
    content = tqx.simulate(duration=120, start="2405:100")
    import gzip

    with gzip.open(path / "c.tqx.gz", "wb") as packed:
        packed.write(content)
    return path


@pytest.fixture(scope="session")
def clean(folder: Path) -> tqx.Log:
    return tqx.open(folder / "a.tqx")


@pytest.fixture(scope="session")
def damaged(folder: Path) -> tqx.Log:
    return tqx.open(folder / "b.tqx")
