"""Errors, interruption, progress, and packages that are not installed."""

from __future__ import annotations

import os
import signal
import subprocess
import sys
import threading
import time
from pathlib import Path

import pytest

import tqx
from tqx._needs import need


def test_errors_name_their_place(clean: tqx.Log, folder: Path, tmp_path: Path) -> None:
    with pytest.raises(tqx.SourceError) as missing:
        tqx.open(tmp_path / "none.tqx")
    assert missing.value.file == str(tmp_path / "none.tqx")
    assert isinstance(missing.value, OSError)
    with pytest.raises(tqx.RequestError, match="Heigth"):
        clean["PVTGeodetic2"].where("Heigth > 3")
    with pytest.raises(tqx.RequestError, match="PVTGeodetic2"):
        clean["PVTGeodetik2"]
    with pytest.raises(tqx.LineError, match="Heigth"):
        tqx.encode({"block": "PVTGeodetic2", "fields": {"Heigth": 1}})
    cut = tmp_path / "cut.tqx.gz"
    cut.write_bytes((folder / "c.tqx.gz").read_bytes()[:-500])
    assert "cut.tqx.gz" in tqx.open(cut).warnings[0]


def test_error_with_offset(folder: Path, tmp_path: Path) -> None:
    """A log that becomes shorter while its parts are read."""
    from tqx.parts import PartTable, divide

    path = tmp_path / "log.tqx"
    path.write_bytes((folder / "a.tqx").read_bytes())
    last = divide(path, part_bytes=200_000)[-1]
    os.truncate(path, last.begin)
    with pytest.raises(tqx.SourceError) as shorter:
        PartTable(last, tqx.Choice("PVTGeodetic2")).to_arrow()
    assert shorter.value.file == str(path)
    assert shorter.value.offset == last.begin


def test_empty_log() -> None:
    log = tqx.open(b"")
    assert log.types == {} and log.start is None
    assert log["PVTGeodetic2"].to_arrow().num_rows == 0
    assert log.observations().to_pandas().empty
    assert "0 blocks" in repr(log)


def test_progress(folder: Path) -> None:
    seen: list[tuple[int, int]] = []
    log = tqx.open(folder, progress=lambda done, total: seen.append((done, total)))
    log["PVTGeodetic2"].to_arrow()
    assert seen[-1] == (log["PVTGeodetic2"].count(),) * 2
    assert len(seen) >= 3


def test_saved_index(folder: Path, tmp_path: Path) -> None:
    path = tmp_path / "log.tqx"
    path.write_bytes((folder / "b.tqx").read_bytes())
    first = tqx.open(path, save_index=True)
    assert first.types and Path(f"{path}.tqxi").exists()
    again = tqx.open(path)
    assert again.types == first.types and again.files[0].is_index_saved


_WORK = """
import sys, time, tqx
log = tqx.open(sys.argv[1], progress=False)
print("ready", flush=True)
try:
    while True:
        WORK
except KeyboardInterrupt:
    print("interrupted", flush=True)
"""


@pytest.mark.parametrize(
    "work",
    [
        "log['MeasEpoch2'].where('Type1.CN0_dBHz > 500').to_arrow()",
        "log.observations(satellites='J99').to_arrow()",
        "tqx.simulate(duration=1e6)",
    ],
)
def test_interrupt(folder: Path, work: str) -> None:
    command = [sys.executable, "-c", _WORK.replace("WORK", work), str(folder / "b.tqx")]
    process = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
    assert process.stdout is not None
    assert process.stdout.readline() == "ready\n"
    time.sleep(0.5)
    process.send_signal(signal.SIGINT)
    output, _ = process.communicate(timeout=10)
    assert output == "interrupted\n"
    assert process.returncode == 0


def test_lock_is_released(folder: Path) -> None:
    """Another thread goes on while C++ works."""
    turns = 0
    longest = 0.0
    done = threading.Event()

    def count() -> None:
        nonlocal turns, longest
        last = time.perf_counter()
        while not done.wait(0.001):
            turns += 1
            now = time.perf_counter()
            longest = max(longest, now - last)
            last = now

    thread = threading.Thread(target=count)
    thread.start()
    start = time.perf_counter()
    tqx.simulate(duration=900)
    took = time.perf_counter() - start
    done.set()
    thread.join()
    assert longest < took / 2


def test_missing_package_is_named() -> None:
    with pytest.raises(ImportError, match=r"not_there.*tqx\[arrow\]"):
        need("not_there", "arrow")
