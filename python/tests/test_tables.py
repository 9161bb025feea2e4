"""Tables: what is in them, and every way out of them."""

from __future__ import annotations

import gzip
import math
from pathlib import Path

import duckdb
import numpy
import polars
import pyarrow
import pyarrow.parquet
import pytest

import tqx


def test_lazy_choice_reads_less(clean: tqx.Log) -> None:
    table = clean["PVTGeodetic2"]
    assert table.count() == 300
    chosen = table.select("Height", "NrSV").between("2404:604100", "2404:604110")
    rows = chosen.to_arrow()
    assert rows.schema.metadata[b"block"] == b"PVTGeodetic2"
    assert rows.column_names == ["time", "offset", "Height", "NrSV"]
    assert rows.num_rows == 10
    # Blocks of other times are not even counted as found.
    assert chosen.last_read["found"] == 10
    few = table.where("Height > 412.4").where("NrSV >= 5")
    count = few.to_arrow().num_rows
    assert few.last_read["found"] == 300
    assert few.last_read["selected"] == count
    heights = table.to_numpy()["Height"]
    assert 0 < count == int(numpy.sum(heights > 412.4)) < 300


def test_values_are_scaled_named_and_null(clean: tqx.Log) -> None:
    message = next(clean.messages("PVTGeodetic2"))
    row = clean["PVTGeodetic2"].to_arrow().slice(0, 1).to_pylist()[0]
    assert row["Height"] == message.Height
    assert row["PVTMode"] == message.PVTMode == "Standalone"
    assert row["COG"] is None and message.COG is None
    raw = clean["PVTGeodetic2"].raw().to_arrow().slice(0, 1).to_pylist()[0]
    assert raw["PVTMode"] == 1
    assert raw["TOW"] == message.raw["fields"]["TOW"] == 604000000
    assert clean["PVTGeodetic2"].units["Latitude"] == "radian"


def test_rows_of_sub_blocks(clean: tqx.Log) -> None:
    nested = clean["MeasEpoch2"].to_arrow()
    signals = clean["MeasEpoch2"].explode("Type1").select("Type1.SVID", "Type1.CN0_dBHz")
    flat = signals.to_arrow()
    assert flat.num_rows == sum(len(each) for each in nested["Type1"].to_pylist()) > 3000
    first = nested["Type1"][0].as_py()[0]
    assert flat["CN0_dBHz"][0].as_py() == first["CN0_dBHz"]
    deep = clean["MeasEpoch2"].explode("Type1.Type2").to_arrow()
    assert "Type1.SVID" in deep.column_names


def test_all_consumers_see_the_same(clean: tqx.Log) -> None:
    fixes = clean["PVTGeodetic2"].select("Height", "PVTMode", "COG")
    heights = fixes.to_arrow()["Height"].to_pylist()
    assert fixes.to_pandas()["Height"].tolist() == heights
    assert fixes.to_polars()["Height"].to_list() == heights
    assert fixes.to_numpy()["Height"].tolist() == heights
    assert polars.DataFrame(fixes)["PVTMode"].to_list()[0] == "Standalone"
    assert pyarrow.table(fixes)["Height"].to_pylist() == heights
    found = duckdb.sql("select count(*), sum(Height), count(COG) from fixes").fetchall()
    assert found == [(300, pytest.approx(math.fsum(heights)), 0)]
    assert fixes.to_pandas().attrs["units"]["Height"] == "meter"


def test_parquet_of_a_damaged_log(damaged: tqx.Log, tmp_path: Path) -> None:
    assert damaged.counts["checksum_errors"] > 0
    written = damaged.to_parquet(tmp_path / "tables")
    assert written == damaged.types
    heights = [each.Height for each in damaged.messages("PVTGeodetic2")]
    path = tmp_path / "tables" / "PVTGeodetic2.parquet"
    assert pyarrow.parquet.read_table(path)["Height"].to_pylist() == heights
    found = duckdb.sql(f"select Height from '{path}'").fetchall()
    assert [each[0] for each in found] == heights
    assert not list(tmp_path.rglob("*.part"))


def test_observations_agree_with_blocks(clean: tqx.Log) -> None:
    table = clean.observations()
    frame = table.to_pandas()
    signals = clean["MeasEpoch2"].to_arrow()["Type1"].to_pylist()
    expected = sum(len(epoch) + sum(len(each["Type2"]) for each in epoch) for epoch in signals)
    assert len(frame) == expected
    first = frame.iloc[0]
    assert first["satellite"] == signals[0][0]["SVID"]
    assert first["cn0"] == pytest.approx(signals[0][0]["CN0_dBHz"])
    assert first["range"] == pytest.approx(signals[0][0]["CodeRange"], abs=1e-3)
    few = clean.observations(interval=30, satellites="G*", signals="1C").to_pandas()
    assert set(few["signal"]) == {"1C"}
    assert few["time"].dt.second.isin([0, 30]).all()
    assert few["satellite"].str.startswith("G").all()


def test_positions_and_ephemerides(clean: tqx.Log) -> None:
    positions = clean.positions().to_arrow()
    assert positions.num_rows == 300
    latitude = clean["PVTGeodetic2"].to_numpy()["Latitude"]
    assert numpy.allclose(positions["latitude"].to_numpy(), numpy.degrees(latitude))
    assert clean.positions("PVTCartesian2").to_arrow()["source"][0].as_py() == "PVTCartesian2"
    ephemerides = clean.ephemerides().to_pandas()
    assert {"LNAV"} <= set(ephemerides["message"])
    assert (ephemerides[ephemerides["message"] == "LNAV"]["SQRT_A"] > 5000).all()


def test_several_files_follow_each_other(folder: Path) -> None:
    log = tqx.open(folder)
    assert [Path(each).name for each in log.names] == ["a.tqx", "b.tqx", "c.tqx.gz"]
    single = [tqx.open(each)["PVTGeodetic2"].to_arrow() for each in sorted(folder.iterdir())]
    assert log["PVTGeodetic2"].to_arrow().equals(pyarrow.concat_tables(single))
    files = log["PVTGeodetic2"].with_options(file=True).to_arrow()["file"].unique()
    assert len(files) == 3
    # Weeks are counted through all of them.
    towc = log["PVTGeodetic2"].select("TOWc").to_numpy()["TOWc"]
    assert (numpy.diff(towc) > 0).all() and towc[-1] > 604800


@pytest.mark.parametrize("places", [(100_000, 400_001), (3,), (-5,)])
def test_files_that_share_a_block(folder: Path, tmp_path: Path, places: tuple[int, ...]) -> None:
    content = (folder / "b.tqx").read_bytes()
    places = tuple(each % len(content) for each in places)
    paths = [tmp_path / f"{number}.tqx" for number in range(len(places) + 1)]
    for path, begin, end in zip(paths, (0, *places), (*places, len(content)), strict=True):
        path.write_bytes(content[begin:end])
    packed = tmp_path / "last.tqx.gz"
    packed.write_bytes(gzip.compress(paths[-1].read_bytes()))
    whole = tqx.open(folder / "b.tqx")
    for files in (paths, [*paths[:-1], packed]):
        log = tqx.open(files)
        assert log.types == whole.types and log.counts == whole.counts
        for name in ("PVTGeodetic2", "MeasEpoch2"):
            rows = log[name].to_arrow().drop_columns(["offset"])
            assert rows.equals(whole[name].to_arrow().drop_columns(["offset"]))
        assert log.observations().to_arrow().equals(whole.observations().to_arrow())
        assert [each.bytes for each in log] == [each.bytes for each in whole]
        assert [gap[2] for gap in log.gaps] == [gap[2] for gap in whole.gaps]
    starts = dict(zip(map(str, paths), (0, *places), strict=True))
    found = tqx.open(paths)["PVTGeodetic2"].with_options(file=True).to_arrow()
    offsets = [starts[str(each["file"])] + each["offset"] for each in found.to_pylist()]
    assert offsets == whole["PVTGeodetic2"].to_arrow()["offset"].to_pylist()


def test_bytes_and_file_objects(folder: Path) -> None:
    path = folder / "c.tqx.gz"
    expected = tqx.open(path)["PVTGeodetic2"].to_arrow()
    assert tqx.open(path.read_bytes())["PVTGeodetic2"].to_arrow().equals(expected)
    with path.open("rb") as stream:
        assert tqx.open(stream)["PVTGeodetic2"].to_arrow().equals(expected)


def test_html(clean: tqx.Log) -> None:
    assert "PVTGeodetic2" in clean._repr_html_()
    assert "radian" in clean["PVTGeodetic2"]._repr_html_()
    assert "Latitude" in tqx.types["PVTGeodetic2"]._repr_html_()
