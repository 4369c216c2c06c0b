"""The summary of a replay, read from the text that `skeigiot replay --summary` writes."""

from __future__ import annotations

import csv
import io
from typing import Any, Dict, List

_TEXTS = frozenset(["file", "name", "scope", "end", "verdict", "error"])
_WHOLE = frozenset(["recording", "person", "updates"])


def columns_of(summary: str) -> Dict[str, List[Any]]:
    """Returns the columns: texts, whole numbers, and else floats, as exact as they are written; NaN for no number."""
    names, *rows = csv.reader(io.StringIO(summary, newline=""))
    return {name: [_value(name, row[column]) for row in rows] for column, name in enumerate(names)}


def _value(name: str, text: str) -> Any:
    if name in _TEXTS:
        return text
    if not text:
        return float("nan")
    return int(text) if name in _WHOLE else float(text)
