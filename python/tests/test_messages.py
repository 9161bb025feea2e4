"""Messages one at a time, types, and what is encoded, simulated and written."""

from __future__ import annotations

import datetime as dt
import gzip
import json
import os
import re
import subprocess
from pathlib import Path

import pytest

import tqx
from tqx import _tqx
from tqx.parts import PartTable, divide


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


def test_rinex_has_pulses(tmp_path: Path) -> None:
    log = tqx.open(tqx.simulate(duration=30, pulses=7))
    pulses = sum(1 for _ in log.messages("ExtEvent1"))
    path = next(each for each in log.rinex(tmp_path) if "_MO" in each)
    lines = Path(path).read_text().splitlines()
    assert sum(line.startswith(">") and line[31] == "5" for line in lines) == pulses > 3


@pytest.fixture
def weather(tmp_path: Path) -> Path:
    path = tmp_path / "weather.yaml"
    path.write_text("""
- block: WeatherReport
  number: 7001
  timestamp: R
  fields:
    - {name: Temperature, type: i16, unit: celsius, scale: 0.01, precision: 2, none: -32768}
    - {name: N, type: u8}
    - {name: Probes, blocks: WeatherProbe, count: N}
- sub: WeatherProbe
  fields:
    - {name: East, type: f32, unit: meterpersecond}
""")
    return path


def test_added_types(weather: Path, tmp_path: Path) -> None:
    types = tqx.Types(weather)
    assert types["weatherreport"].number == 7001 and len(types) == len(tqx.types) + 2
    assert types["WeatherReport"]["Temperature"].unit == "celsius"
    assert "WeatherReport" not in tqx.types
    lines = [
        {
            "block": "WeatherReport",
            "fields": {
                "TOW": 216000000 + 1000 * i,
                "WNc": 2400,
                "Temperature": -1234 if i else -32768,
                "Probes": [{"East": float(probe)} for probe in range(i)],
            },
        }
        for i in range(4)
    ]
    content = tqx.encode(lines, description=weather) + tqx.simulate(duration=2)
    with pytest.raises(tqx.LineError, match="WeatherReport"):
        tqx.encode(lines)
    log = tqx.open(content, description=weather)
    assert log.types["WeatherReport"] == 4 and "WeatherReport" in log
    assert tqx.open(content).types["7001"] == 4
    rows = log["WeatherReport"].to_arrow()
    assert rows["Temperature"].to_pylist() == [None, -12.34, -12.34, -12.34]
    assert log["WeatherReport"].units["Temperature"] == "celsius"
    few = log["WeatherReport"].select("Temperature").where("Temperature < 0")
    assert few.to_arrow().num_rows == 3
    probes = log["WeatherReport"].explode("Probes").to_arrow()
    assert probes["East"].to_pylist() == [0, 0, 1, 0, 1, 2]
    messages = list(log.messages("WeatherReport", where="Temperature < 0"))
    assert [len(each.Probes) for each in messages] == [1, 2, 3]
    assert tqx.encode(messages[2].raw, description=weather) == messages[2].bytes
    assert log.to_parquet(tmp_path / "tables")["WeatherReport"] == 4
    path = tmp_path / "log.tqx"
    path.write_bytes(content)
    parts = divide(path, part_bytes=1, description=weather)
    tables = [PartTable(each, log["WeatherReport"].choice).to_arrow() for each in parts]
    assert sum(each.num_rows for each in tables) == 4


def test_added_types_move_the_week(weather: Path, tmp_path: Path) -> None:
    def line(block: str, week: int, tow: int) -> dict[str, object]:
        return {"block": block, "fields": {"TOW": tow, "WNc": week}}

    def elapsed(log: tqx.Log) -> int:
        table = log["PVTGeodetic2"].select("TOWc").with_options(scaled=False).to_arrow()
        begin, end = table["TOWc"].to_pylist()
        return int(end - begin)

    # Only the blocks between show that a week has ended.
    lines = [
        line("PVTGeodetic2", 2400, 600_000_000),
        line("WeatherReport", 2400, 604_799_000),
        line("WeatherReport", 2401, 1000),
        line("PVTGeodetic2", 2401, 601_000_000),
    ]
    content = tqx.encode(lines, description=weather)
    path = tmp_path / "log.tqx"
    path.write_bytes(content)
    week = 604_800_000
    assert elapsed(tqx.open(content, description=weather)) == week + 1_000_000
    for _ in range(2):
        log = tqx.open(path, description=weather, save_index=True)
        assert elapsed(log) == week + 1_000_000
    assert elapsed(tqx.open(path)) == 1_000_000


def test_wrong_description(tmp_path: Path) -> None:
    path = tmp_path / "wrong.yaml"
    path.write_text("- block: Wrong\n  number: 7001\n  fields:\n    - {name: A, type: u7x}\n")
    with pytest.raises(tqx.RequestError, match=r"wrong\.yaml:4: "):
        tqx.open(b"", description=path)


def test_report(damaged: tqx.Log, folder: Path, tmp_path: Path) -> None:
    found = tqx.report(folder / "b.tqx")["logs"]
    assert [each["name"] for each in found] == [str(folder / "b.tqx")]
    figures = found[0]["figures"]
    assert figures["crc_errors"] == damaged.counts["checksum_errors"]
    assert figures["epochs_found"] == len(damaged.observations().to_arrow()["time"].unique())
    several = tqx.report([folder / "a.tqx", folder / "b.tqx"])["logs"]
    assert several[1]["figures"] == figures and len(several) == 2
    joined = tqx.report([folder / "a.tqx", folder / "b.tqx"], together=True)["logs"]
    assert len(joined) == 1
    assert joined[0]["figures"]["epochs_found"] == sum(
        each["figures"]["epochs_found"] for each in several
    )
    exact = tqx.report(folder / "a.tqx", reference=(47.07, 15.45, 412.3), mask=0)["logs"][0]
    assert 0 < exact["figures"]["error_horizontal"] < 5
    same = tqx.report(folder / "a.tqx", reference=folder / "a.tqx")["logs"][0]
    assert same["figures"]["error_horizontal"] == 0
    with pytest.raises(tqx.RequestError, match="no positions"):
        tqx.report(folder / "a.tqx", reference=b"")
    page = tmp_path / "report.html"
    if _tqx.can_write_page():
        assert damaged.report(page)["logs"][0]["figures"] == figures
        text = page.read_text(encoding="utf-8")
        assert text.startswith("<!DOCTYPE html>") and '"completeness"' in text
    else:
        with pytest.raises(tqx.RequestError, match="npm"):
            damaged.report(page)


@pytest.mark.skipif("TQX_TOOL" not in os.environ, reason="TQX_TOOL does not name the tool")
def test_report_is_that_of_the_tool(folder: Path) -> None:
    paths = [str(folder / name) for name in ("a.tqx", "b.tqx", "c.tqx.gz")]
    for options, together in (([], False), (["--together"], True)):
        command = [os.environ["TQX_TOOL"], "report", "--json", *options, *paths]
        run = subprocess.run(command, capture_output=True, check=True)
        assert tqx.report(paths, together=together) == json.loads(run.stdout)


@pytest.mark.skipif("TQX_TOOL" not in os.environ, reason="TQX_TOOL does not name the tool")
def test_rinex_is_that_of_the_tool(folder: Path, tmp_path: Path) -> None:
    paths = [str(folder / name) for name in ("a.tqx", "b.tqx")]
    command = [os.environ["TQX_TOOL"], "rinex", "-o", str(tmp_path / "tool"), *paths]
    subprocess.run(command, capture_output=True, check=True)
    tqx.rinex(paths, tmp_path / "module")
    names = [each.name for each in sorted((tmp_path / "tool").iterdir())]
    assert len(names) == 2
    for name in names:
        ours, theirs = ((tmp_path / each / name).read_text() for each in ("module", "tool"))
        dated = re.compile(r".*PGM / RUN BY / DATE.*")
        assert dated.sub("", ours) == dated.sub("", theirs)


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
