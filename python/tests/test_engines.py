"""Dask and Spark with several workers: the same rows as one process."""

from __future__ import annotations

import datetime as dt
import json
import os
import sys
from collections.abc import Iterator
from dataclasses import replace
from itertools import pairwise
from pathlib import Path
from typing import Any

import pyarrow
import pyarrow.compute
import pytest

import tqx
from tqx.parts import Part, PartTable, divide

SOURCES = ["a.tqx", "b.tqx", "c.tqx.gz", ""]
COLUMNS = ["TOWc", "Height", "PVTMode", "COG"]


@pytest.mark.parametrize("source", SOURCES)
@pytest.mark.parametrize("name", ["PVTGeodetic2", "MeasEpoch2", "GPSNav"])
def test_parts_are_the_whole(folder: Path, source: str, name: str) -> None:
    whole = tqx.open(folder / source)[name]
    for size in (1, 100_000, 1 << 30):
        parts = divide(folder / source, part_bytes=size)
        tables = [PartTable(each, whole.choice).to_arrow() for each in parts]
        assert pyarrow.concat_tables(tables).equals(whole.to_arrow())
    fields = ("TOWc",)
    weeks = tqx.open(folder / source)[name].select(*fields)
    tables = [
        PartTable(each, weeks.choice).to_arrow() for each in divide(folder / source, part_bytes=1)
    ]
    assert pyarrow.concat_tables(tables).equals(weeks.to_arrow())


def _observations(parts: list[Part]) -> pyarrow.Table:
    choice = tqx.Choice("observations")
    return pyarrow.concat_tables([PartTable(each, choice).to_arrow() for each in parts])


@pytest.mark.parametrize("source", SOURCES)
@pytest.mark.parametrize("size", [1, 300_000])
def test_parts_of_observations_are_the_whole(folder: Path, source: str, size: int) -> None:
    whole = tqx.open(folder / source).observations().to_arrow()
    parts = divide(folder / source, part_bytes=size, table="observations")
    assert len(parts) > 3 or source == "c.tqx.gz" or size > 1
    assert len(parts) > 1 or source == "c.tqx.gz"
    assert _observations(parts).equals(whole)


@pytest.fixture(scope="module")
def slips(tmp_path_factory: pytest.TempPathFactory) -> Path:
    """Compact measurements of half an hour with a slip of some satellite every few seconds."""
    path = tmp_path_factory.mktemp("slips") / "slips.tqx"
    tqx.simulate(path, duration=1800, rate=1, compact=True, slips=60, seed=5)
    return path


def test_a_slip_and_a_reference_at_each_cut(slips: Path) -> None:
    compact = slips.with_name("compact.tqx")
    wanted = ("Meas3*", "PVTGeodetic2")
    compact.write_bytes(b"".join(each.bytes for each in tqx.open(slips).messages(*wanted)))
    whole = tqx.open(compact).observations().to_arrow()
    parts = divide(compact, part_bytes=1, table="observations")
    assert len(parts) > 20
    assert _observations(parts).equals(whole)
    # The parts need what comes before them, and it is not all of the log.
    assert parts[-1].pieces[0].begin > 0
    starts = {each.first_epoch for each in parts[1:]}
    first = whole.filter(
        pyarrow.compute.is_in(
            whole["time"].cast("int64"),
            pyarrow.array([(each + 315_964_800_000) * 1_000_000 for each in starts if each]),
        )
    )
    assert pyarrow.compute.any(first["lost"]).as_py()
    bare = [
        replace(each, pieces=(replace(each.pieces[-1], begin=each.begin),)) for each in parts[:1]
    ] + [
        replace(each, pieces=(replace(each.pieces[-1], begin=before.pieces[-1].end),))
        for before, each in pairwise(parts)
    ]
    assert not _observations(bare).equals(whole)


def test_parts_where_the_time_goes_back(folder: Path, tmp_path: Path) -> None:
    early, late = (folder / "a.tqx").read_bytes(), (folder / "b.tqx").read_bytes()
    path = tmp_path / "back.tqx"
    path.write_bytes(early + late[: len(late) // 2] + early + late[len(late) // 2 :])
    whole = tqx.open(path).observations().to_arrow()
    parts = divide(path, part_bytes=1, table="observations")
    assert len(parts) > 3
    assert _observations(parts).equals(whole)


def test_parts_of_a_time(folder: Path) -> None:
    start, end = (tqx.gnss_millis(each) for each in ("2404:604500", "2404:604560"))
    table = tqx.open(folder)["PVTGeodetic2"].between("2404:604500", "2404:604560")
    parts = divide(folder, part_bytes=100_000, start=start, end=end)
    # A minute of these is only a few of all.
    assert 0 < len(parts) <= 8 < len(divide(folder, part_bytes=100_000)) / 3
    tables = [PartTable(each, table.choice).to_arrow() for each in parts]
    assert pyarrow.concat_tables(tables).equals(table.to_arrow())


@pytest.fixture(scope="module")
def cluster() -> Iterator[Any]:
    distributed = pytest.importorskip("distributed")
    with (
        distributed.LocalCluster(
            n_workers=2, threads_per_worker=1, dashboard_address=None
        ) as running,
        distributed.Client(running) as client,
    ):
        yield client


@pytest.mark.engines
@pytest.mark.parametrize("source", SOURCES)
def test_dask(cluster: Any, folder: Path, source: str) -> None:
    import tqx.dask

    frame = tqx.dask.read(folder / source, "PVTGeodetic2", columns=COLUMNS, part_bytes=300_000)
    assert frame.npartitions > 1 or source == "c.tqx.gz"
    rows = frame.compute().reset_index(drop=True)
    whole = tqx.open(folder / source)["PVTGeodetic2"].select(*COLUMNS).to_pandas()
    assert rows["time"].tolist() == whole["time"].tolist()
    assert rows["Height"].tolist() == whole["Height"].tolist()
    assert rows["TOWc"].tolist() == whole["TOWc"].tolist()
    assert rows["PVTMode"].tolist() == whole["PVTMode"].tolist()
    assert frame["Height"].mean().compute() == pytest.approx(whole["Height"].mean())
    observations = tqx.dask.read(folder / source, "observations", part_bytes=300_000)
    assert observations.npartitions > 1 or source == "c.tqx.gz"
    expected = tqx.open(folder / source).observations().to_pandas()
    found = observations.compute().reset_index(drop=True)
    assert found["range"].tolist() == expected["range"].tolist()
    assert found["lost"].tolist() == expected["lost"].tolist()


@pytest.fixture(scope="module")
def spark() -> Iterator[Any]:
    pytest.importorskip("pyspark")
    from pyspark.sql import SparkSession

    from tqx.spark import TqxDataSource

    os.environ["PYSPARK_PYTHON"] = sys.executable
    session = (
        SparkSession.builder.master("local[2]")
        .config("spark.ui.enabled", "false")
        .config("spark.driver.host", "127.0.0.1")
        .config("spark.driver.bindAddress", "127.0.0.1")
        .config("spark.sql.python.filterPushdown.enabled", "true")
        .config("spark.sql.session.timeZone", "UTC")
        .getOrCreate()
    )
    session.dataSource.register(TqxDataSource)
    yield session
    session.stop()


def _reader(spark: Any, name: str) -> Any:
    return spark.read.format("tqx").option("type", name).option("partBytes", 300_000)


@pytest.mark.engines
@pytest.mark.parametrize("source", SOURCES)
def test_spark(spark: Any, folder: Path, source: str) -> None:
    frame = (
        _reader(spark, "PVTGeodetic2")
        .option("columns", ",".join(COLUMNS))
        .load(str(folder / source))
    )
    rows = frame.collect()
    whole = tqx.open(folder / source)["PVTGeodetic2"].select(*COLUMNS).to_arrow().to_pylist()
    assert [each["Height"] for each in rows] == [each["Height"] for each in whole]
    assert [each["TOWc"] for each in rows] == [each["TOWc"] for each in whole]
    assert [each["time"] for each in rows] == [each["time"].to_pydatetime() for each in whole]
    assert [each["time_ns"] for each in rows] == [each["time"].value for each in whole]
    assert [int(each["offset"]) for each in rows] == [each["offset"] for each in whole]
    assert frame.rdd.getNumPartitions() > 1 or source == "c.tqx.gz"


@pytest.mark.engines
def test_spark_types(spark: Any, folder: Path) -> None:
    frame = _reader(spark, "MeasEpoch2").load(str(folder / "a.tqx"))
    found = dict(frame.dtypes)
    assert found["time"] == "timestamp_ntz" and found["time_ns"] == "bigint"
    assert found["offset"] == "decimal(20,0)" and found["WNc"] == "int"
    assert found["N1"] == "smallint" and found["Type1"].startswith("array<struct<")
    rows = frame.select("Type1").limit(5).collect()
    whole = tqx.open(folder / "a.tqx")["MeasEpoch2"].to_arrow()["Type1"].to_pylist()
    assert [each["Type1"][0]["SVID"] for each in rows] == [each[0]["SVID"] for each in whole[:5]]
    assert [len(each["Type1"]) for each in rows] == [len(each) for each in whole[:5]]
    observations = _reader(spark, "observations").load(str(folder))
    assert observations.rdd.getNumPartitions() > 2
    ranges = [each["range"] for each in observations.select("range").collect()]
    assert ranges == tqx.open(folder).observations().to_arrow()["range"].to_pylist()


@pytest.mark.engines
def test_spark_reads_less(spark: Any, folder: Path, tmp_path: Path) -> None:
    """Filters reach the reader, and so do the columns of a schema."""

    def counts(name: str) -> dict[str, int]:
        notes = [json.loads(each.read_text()) for each in (tmp_path / name).iterdir()]
        assert notes
        return {
            "found": sum(each["found"] for each in notes),
            "columns": max(each["columns"] for each in notes),
        }

    options = _reader(spark, "PVTGeodetic2").option("columns", "Height,Revision,BlockNumber")
    frame = options.option("statistics", str(tmp_path / "all")).load(str(folder))
    every = frame.count()
    assert counts("all")["found"] == every

    noon = dt.datetime(2026, 2, 7, 23, 55)
    frame = options.option("statistics", str(tmp_path / "time")).load(str(folder))
    chosen = frame.filter((frame.time >= noon) & (frame.time < noon + dt.timedelta(seconds=20)))
    expected = tqx.open(folder)["PVTGeodetic2"].between(noon, noon + dt.timedelta(seconds=20))
    assert chosen.count() == expected.to_arrow().num_rows > 0
    assert counts("time")["found"] <= chosen.count() + 1 < every

    frame = options.option("statistics", str(tmp_path / "revision")).load(str(folder))
    assert frame.filter(frame.Revision == 7).count() == 0
    assert counts("revision")["found"] == 0
    frame = options.option("statistics", str(tmp_path / "number")).load(str(folder))
    assert frame.filter(frame.BlockNumber == 1).count() == 0
    assert counts("number")["found"] == 0

    reader = _reader(spark, "PVTGeodetic2").schema("time timestamp_ntz, Height double")
    rows = reader.option("statistics", str(tmp_path / "columns")).load(str(folder)).collect()
    assert len(rows) == every and len(rows[0]) == 2
    assert counts("columns")["columns"] == 3  # time and offset are included


@pytest.mark.engines
def test_spark_errors(spark: Any, folder: Path) -> None:
    with pytest.raises(Exception, match="type"):
        spark.read.format("tqx").load(str(folder)).count()
    with pytest.raises(Exception, match="Heigth"):
        _reader(spark, "PVTGeodetic2").option("columns", "Heigth").load(str(folder)).count()
