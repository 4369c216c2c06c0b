"""Checks at import that the extension fits this version of Python. If not, the error names the right version."""

import importlib.machinery
import re
import sys
from pathlib import Path

_FOLDER = Path(__file__).parent
_SUFFIXES = importlib.machinery.EXTENSION_SUFFIXES


def _version(file: Path) -> str:
    found = re.search(r"\.cpython-(\d)(\d+)", file.name)
    return f"{found.group(1)}.{found.group(2)}" if found else f"another Python ({file.name})"


def check() -> None:
    """Raises ImportError if there are extensions, and all are of other versions of Python."""
    built = sorted(_FOLDER.glob("_skeigiot.*so"))
    if built and not any((_FOLDER / f"_skeigiot{suffix}").exists() for suffix in _SUFFIXES):
        versions = " and ".join(_version(file) for file in built)
        here = f"{sys.version_info[0]}.{sys.version_info[1]}"
        raise ImportError(
            f"skeigiot in {_FOLDER} was built for Python {versions}, but this is Python {here} ({sys.executable}): "
            f"run that Python, or build for this one with cmake -DPython3_EXECUTABLE={sys.executable}"
        )


check()
