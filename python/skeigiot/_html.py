"""The views of replays, tables and states in notebooks."""

from __future__ import annotations

import math
from collections.abc import Iterable, Mapping, Sequence
from html import escape
from typing import TYPE_CHECKING, Any, List

from . import _skeigiot

if TYPE_CHECKING:
    from ._shown import ShownReplay, ShownTable

_SHOWN_ROWS = 10
_WHOLE_RECORDING = "whole recording"


def of_replay(replay: ShownReplay, summary: Mapping[str, Sequence[Any]]) -> str:
    """Returns the content of a replay: persons, verdicts, how it was read, and warnings.

    summary: the columns of the replay's summary
    """
    persons = [
        [
            replay.title_of(summary["person"][row]),
            str(summary["updates"][row]),
            f"{summary['first'][row]:.1f} to {summary['last'][row]:.1f} s",
            format(summary["seen"][row], ".0%"),
            _number(summary["valence"][row], "+.2f"),
            _number(summary["attention"][row], ".2f"),
        ]
        for row, scope in enumerate(summary["scope"])
        if scope == _WHOLE_RECORDING
    ]
    parts = [
        f"<p><b>{escape(replay.name)}</b>: {_counted(replay.updates.rows, 'update')} of "
        f"{_counted(len(replay.persons), 'person')}, {replay.length:g} s</p>",
        _table(["", "updates", "present", "seen", "mean valence", "mean attention"], persons) if persons else "",
        _verdicts(replay),
        _list(replay.description),
        _list([f"Warning: {text}" for text in replay.warnings]),
        f"<p><b>The recording could be read in part only:</b> {escape(str(replay.error))}</p>" if replay.error else "",
    ]
    return "\n".join(part for part in parts if part)


def of_columns(columns: ShownTable) -> str:
    """Returns the first and the last rows of a table."""
    rows = columns.rows
    size = f"<p>{_counted(rows, 'row')}, {_counted(len(columns), 'column')}</p>"
    if rows == 0:
        return size
    half = _SHOWN_ROWS // 2
    shown: List[Sequence[str]] = []
    for row in range(rows):
        if rows > _SHOWN_ROWS and half <= row < rows - half:
            if row == half:
                shown.append(["…"] * (len(columns) + 1))
            continue
        shown.append([str(row), *(_cell(columns[name][row]) for name in columns)])
    return _table(["", *columns], shown) + "\n" + size


def of_state(state: _skeigiot.PersonState) -> str:
    """Returns the estimates of a state; one with confidence 0 is unknown."""
    return _table(
        ["", "estimate", "confidence"],
        [
            ["valence", *_estimate(state.valence, "+.2f")],
            ["attention", *_estimate(state.attention, ".2f")],
            ["ease", *_estimate(state.ease, "+.2f", "level")],
            ["pleasure", state.pleasureState.name.replace("Pleasure", "").lower(), ""],
            ["zone", state.attentionZone, ""],
        ],
    )


def _estimate(estimate: Any, form: str, value: str = "value") -> List[str]:
    if not estimate.confidence > 0:
        return ["unknown", ""]
    return [format(getattr(estimate, value), form), f"{estimate.confidence:.2f}"]


def _number(number: float, form: str) -> str:
    return "unknown" if math.isnan(number) else format(number, form)


def _verdicts(replay: ShownReplay) -> str:
    rows = [
        [scope.scope, f"{scope.start:.1f} to {scope.stop:.1f} s", scope.end, replay.title_of(number), verdict.word]
        for scope in replay.verdicts
        for number, verdict in scope.persons.items()
    ]
    return _table(["scope", "span", "end", "", "verdict"], rows) if rows else ""


def _counted(count: int, noun: str) -> str:
    return f"{count:,} {noun}{'' if count == 1 else 's'}"


def _cell(value: Any) -> str:
    kind = getattr(getattr(value, "dtype", None), "kind", "")
    return f"{value:.4g}" if kind == "f" else str(value)


def _list(texts: Iterable[str]) -> str:
    items = "".join(f"<li>{escape(text)}</li>" for text in texts)
    return f"<ul>{items}</ul>" if items else ""


def _table(head: Iterable[str], rows: Iterable[Sequence[str]]) -> str:
    names = "".join(f"<th>{escape(name)}</th>" for name in head)
    lines = ["<tr>" + "".join(f"<td>{escape(cell)}</td>" for cell in row) + "</tr>" for row in rows]
    return f"<table>\n<thead><tr>{names}</tr></thead>\n<tbody>\n" + "\n".join(lines) + "\n</tbody>\n</table>"


# A compiled class shows itself as well; type checkers refuse to assign to its method.
setattr(_skeigiot.PersonState, "_repr_html_", lambda self: of_state(self))
