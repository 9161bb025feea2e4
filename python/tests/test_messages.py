"""Messages one at a time, types, and what is encoded, simulated and written."""

from __future__ import annotations

import datetime as dt
import gzip
import json
import os
import subprocess
from pathlib import Path

import pytest

import tqx


def test_message(clean: tqx.Log) -> None:
    messages = list(clean.messages("PVT*", start="2404:604010", end="2404:604011"))
    fix = next(each for each in messages if each.name == "PVTGeodetic2")
    assert all(each.name.startswith("PVT") for each in messages)
    assert fix.time == dt.datetime(2026, 2, 7, 23, 46, 50)
    assert fix.number == 4007 and fix.error == ""
    assert fix.Height == fix["Height"] and "Height" in fix
    with pytest.raises(AttributeError, match="Heigth"):
        _ = fix.Heigth
    epoch = next(clean.messages("MeasEpoch2"))
    assert epoch.Type1[0].SVID == epoch["Type1"][0]["SVID"]
    content = Path(fix.file).read_bytes()
    assert content[fix.offset : fix.offset + len(fix.bytes)] == fix.bytes


def test_all_messages_in_order(damaged: tqx.Log) -> None:
    offsets = [each.offset for each in damaged]
    assert offsets == sorted(offsets)
    assert len(offsets) == damaged.counts["blocks"]
    strong = list(damaged.messages(where='any(Type1: SVID like "G*" and CN0_dBHz > 47)'))
    assert {each.name for each in strong} >= {"MeasEpoch2"}
    for message in strong[:3]:
        assert any(each.SVID.startswith("G") and each.CN0_dBHz > 47 for each in message.Type1)


def test_encode_gives_the_same_bytes(clean: tqx.Log) -> None:
    content = Path(clean.names[0]).read_bytes()
    assert tqx.encode(each.raw for each in clean) == content
    some = [each for each, _ in zip(clean, range(5), strict=False)]
    assert tqx.encode("\n".join(json.dumps(each.raw) for each in some)) == tqx.encode(some)


def test_simulate(tmp_path: Path) -> None:
    assert tqx.simulate(duration=5, seed=4) == tqx.simulate(duration=5, seed=4)
    assert tqx.simulate(duration=5, seed=4) != tqx.simulate(duration=5, seed=5)
    assert tqx.simulate(tmp_path / "log.tqx", duration=5, seed=4) is None
    assert (tmp_path / "log.tqx").read_bytes() == tqx.simulate(duration=5, seed=4)
    log = tqx.open(tqx.simulate(duration=2, rate=5, start=dt.datetime(2026, 2, 8), motion="circle"))
    assert log.start == dt.datetime(2026, 2, 8) and log.types["PVTGeodetic2"] == 10
    with pytest.raises(ValueError, match="not whole"):
        tqx.simulate(rate=7)


def test_rinex_and_track(clean: tqx.Log, tmp_path: Path) -> None:
    paths = [Path(each) for each in clean.rinex(tmp_path, interval=30, marker="ABCD", gzip=True)]
    assert [each.name[:4] for each in paths] == ["ABCD", "ABCD"]
    text = gzip.decompress(paths[0].read_bytes()).decode()
    assert text.count("\n> ") == 10 and "OBSERVATION DATA" in text
    assert clean.track(tmp_path / "log.gpx") == 300
    assert (tmp_path / "log.gpx").read_text().count("<trkpt") == 300
    with pytest.raises(tqx.RequestError, match="no format of tracks"):
        clean.track(tmp_path / "log.txt")


def test_types() -> None:
    field = tqx.types["MEASEPOCH2"]["Type1"]
    assert field.sub_type in tqx.types
    assert tqx.types["PVTGeodetic2"].number == 4007
    with pytest.raises(KeyError, match="PVTGeodetic"):
        tqx.types["PVTGeodetik2"]
    assert len(tqx.types) > 300


# The tool is built apart from the package; the scripts say where.
@pytest.mark.skipif("TQX_TOOL" not in os.environ, reason="TQX_TOOL does not name the tool")
def test_values_are_those_of_the_tool(damaged: tqx.Log, tmp_path: Path) -> None:
    parquet = pytest.importorskip("pyarrow.parquet")
    damaged.to_parquet(tmp_path, ["PVTGeodetic2", "ReceiverStatus2"])
    for name in ("PVTGeodetic2", "ReceiverStatus2"):
        command = [os.environ["TQX_TOOL"], "dump", damaged.names[0], "--type", name]
        run = subprocess.run([*command, "--format", "jsonl"], capture_output=True, check=True)
        lines = [json.loads(line)["fields"] for line in run.stdout.splitlines()]
        rows = parquet.read_table(tmp_path / f"{name}.parquet").to_pylist()
        assert len(rows) == len(lines) > 500
        compared = 0
        for row, line in zip(rows, lines, strict=True):
            for column in row.keys() & line.keys():
                if isinstance(row[column], float):
                    assert row[column] == pytest.approx(line[column], rel=1e-6)
                    compared += 1
                elif isinstance(row[column], int | str):
                    assert row[column] == line[column]
                    compared += 1
                elif row[column] is None:
                    assert line[column] is None
        assert compared > 10 * len(rows)
