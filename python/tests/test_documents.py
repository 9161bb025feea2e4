"""The examples of the documentation run: docstrings, the guide, the notebook."""

from __future__ import annotations

import doctest
import importlib
import inspect
import pkgutil
import re
from pathlib import Path
from typing import Any

import pytest

import tqx

ROOT = Path(__file__).parents[2]
MODULES = sorted(each.name for each in pkgutil.iter_modules(tqx.__path__) if each.name != "_tqx")


@pytest.mark.parametrize("name", MODULES)
def test_docstrings(name: str) -> None:
    if name == "spark":
        pytest.importorskip("pyspark")
    module = importlib.import_module(f"tqx.{name}")
    assert doctest.testmod(module, optionflags=doctest.ELLIPSIS).failed == 0


def test_package_docstring() -> None:
    results = doctest.testmod(tqx)
    assert results.attempted > 0 and results.failed == 0


def test_guide(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.chdir(tmp_path)
    text = (ROOT / "doc" / "python.md").read_text(encoding="utf-8")
    examples = re.findall(r"```pycon\n(.*?)```", text, re.DOTALL)
    assert len(examples) > 5
    parser = doctest.DocTestParser()
    globals_: dict[str, Any] = {}
    runner = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS | doctest.NORMALIZE_WHITESPACE)
    for number, example in enumerate(examples):
        test = parser.get_doctest(example, globals_, f"example {number}", "doc/python.md", 0)
        assert runner.run(test, clear_globs=False).failed == 0
        globals_.update(test.globs)


def test_notebook(tmp_path: Path) -> None:
    nbclient = pytest.importorskip("nbclient")
    nbformat = pytest.importorskip("nbformat")
    notebook = nbformat.read(ROOT / "python" / "examples" / "log.ipynb", as_version=4)
    nbclient.NotebookClient(
        notebook, timeout=120, resources={"metadata": {"path": tmp_path}}
    ).execute()
    outputs = [each for cell in notebook.cells for each in cell.get("outputs", [])]
    assert any("image/png" in each.get("data", {}) for each in outputs)
    assert any("text/html" in each.get("data", {}) for each in outputs)
    assert (tmp_path / "tables" / "PVTGeodetic2.parquet").exists()
    assert len(list((tmp_path / "rinex").iterdir())) == 2
    assert (tmp_path / "drive.png").read_bytes().startswith(b"\x89PNG")


def test_every_public_name_is_documented() -> None:
    missing = []
    for name in tqx.__all__:
        value = getattr(tqx, name)
        if not (inspect.isclass(value) or inspect.isfunction(value)):
            continue
        if not inspect.getdoc(value):
            missing.append(name)
        if not inspect.isclass(value):
            continue
        for member, content in vars(value).items():
            function = content.fget if isinstance(content, property) else content
            if member.startswith("_") or not inspect.isfunction(function):
                continue
            if not inspect.getdoc(getattr(value, member)):
                missing.append(f"{name}.{member}")
    assert missing == []


def test_plots_return_axes(clean: tqx.Log) -> None:
    matplotlib = pytest.importorskip("matplotlib")
    matplotlib.use("Agg")
    assert len(clean.plot.position().lines[0].get_xdata()) == 300
    sky = clean.plot.sky()
    assert sky.name == "polar" and len(sky.lines) > 10
    lines = clean.plot.cn0(satellites="G*", signals="1C").lines
    assert {each.get_label().split()[1] for each in lines} == {"1C"}
