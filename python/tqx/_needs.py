"""Optional packages."""

from __future__ import annotations

import importlib
from types import ModuleType

__all__ = ["need"]


def need(module: str, extra: str) -> ModuleType:
    """Imports a package; where it is missing, the ImportError says how to install it."""
    try:
        return importlib.import_module(module)
    except ImportError as error:
        package = module.split(".")[0]
        raise ImportError(
            f"this needs {package}, which is not installed: pip install {package}, "
            f"or pip install 'tqx[{extra}]'",
            name=package,
        ) from error
