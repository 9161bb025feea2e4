"""Tracks against the public schemas of their formats, as others have them."""

from __future__ import annotations

from pathlib import Path

import fastkml
import gpx
from lxml import etree

import tqx


def faults(path: Path, content: bytes) -> list[str]:
    """What the schema of the format finds wrong in a track."""
    if path.suffix == ".gpx":
        return [str(issue) for issue in gpx.validation.validate_text(content).issues]
    schemas = Path(fastkml.__file__).parent / "schema"
    schema = etree.XMLSchema(etree.parse(schemas / "ogckml22.xsd"))
    schema.validate(etree.fromstring(content))
    return [entry.message for entry in schema.error_log]


def test_tracks_follow_their_schemas(tmp_path: Path) -> None:
    log = tmp_path / "log.tqx"
    tqx.simulate(log, duration=120, motion="circle")
    for name, place in (("a.gpx", b"<trkpt "), ("a.kml", b"<coordinates>")):
        path = tmp_path / name
        assert tqx.track(log, path) == 120
        content = path.read_bytes()
        assert faults(path, content) == []
        # A fault is found, so that the line above says something.
        assert faults(path, content.replace(place, b"<unknown/>" + place, 1)), name
