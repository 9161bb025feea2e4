"""What the site has besides the pages of doc/: the changes, and what the build generates."""

import os
import pathlib

from mkdocs.structure.files import File, InclusionLevel

SITE = pathlib.Path(__file__).resolve().parent
ROOT = SITE.parent.parent


def present(entries, pages):
    """The menu less the pages that this tree does not have."""
    kept = []
    for entry in entries:
        (title, target), = entry.items()
        if isinstance(target, list):
            kept.append({title: present(target, pages)})
        elif not target.endswith(".md") or target in pages:
            kept.append(entry)
    return kept


def on_config(config):
    pages = {path.name for path in pathlib.Path(config.docs_dir).glob("*.md")} | {"changelog.md"}
    config.nav = present(config.nav, pages)
    return config


def generated(config, folder, name):
    """The files of a generated folder, as the site has them below `name`."""
    for path in sorted(folder.rglob("*")):
        if not path.is_file():
            continue
        if name == "reference" and path.suffix == ".html":
            # Alone it has no guide to lead to.
            text = path.read_text().replace("<nav>", '<nav><a href="../index.html">Guide</a> ', 1)
            yield File.generated(config, f"{name}/{path.relative_to(folder).as_posix()}",
                                 content=text, inclusion=InclusionLevel.INCLUDED)
        else:
            yield File.generated(config, f"{name}/{path.relative_to(folder).as_posix()}",
                                 abs_src_path=str(path), inclusion=InclusionLevel.INCLUDED)


def on_files(files, config):
    files.append(File.generated(config, "changelog.md", abs_src_path=str(ROOT / "CHANGELOG.md")))
    for name in ("site.css", "iframe-worker.js"):
        files.append(File.generated(config, name, abs_src_path=str(SITE / name)))
    for name in ("reference", "api"):
        for file in generated(config, pathlib.Path(os.environ[f"TQX_SITE_{name.upper()}"]), name):
            files.append(file)
    return files
