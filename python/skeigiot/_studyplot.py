"""Figures of a study, with the numbers of the page that `skeigiot study report` writes."""

from __future__ import annotations

import json
import os
import warnings
from importlib import import_module
from typing import Any, Dict, List

from . import _skeigiot

_WORDS = {"positive": "#00795c", "neutral": "#b6bcc6", "negative": "#c2500a", "unknown": "#4b5361"}
_COLUMNS = 6
_DOTS_WIDE = 0.32  # greatest distance of a dot from the middle of its group


def _bytes(paths: List[str]) -> List[bytes]:
    return [os.fsencode(path) for path in paths]


def groups_of(paths: List[str], quantity: str, scope: str, by: str) -> Any:
    """Returns the groups as a pandas.DataFrame, see StudyResults.compare()."""
    groups = _skeigiot._compareStudy(_bytes(paths), quantity, scope, by)
    rows = [(value, role, len(persons), mean, low, high) for value, role, mean, low, high, persons in groups]
    columns = ["group", "role", "persons", "mean", "low", "high"]
    numbers = {"persons": "int64", "mean": "float64", "low": "float64", "high": "float64"}
    return import_module("pandas").DataFrame(rows, columns=columns).astype(numbers)


def persons_of(paths: List[str], quantity: str, scope: str, by: str) -> Any:
    """Returns the persons of the groups as a pandas.DataFrame, see StudyResults.compare_persons()."""
    rows = [
        (value, role, *person)
        for value, role, _, _, _, persons in _skeigiot._compareStudy(_bytes(paths), quantity, scope, by)
        for person in persons
    ]
    return import_module("pandas").DataFrame(rows, columns=["group", "role", "participant", "value", "summaries"])


def data_of(paths: List[str]) -> Dict[str, Any]:
    """Returns the data of the page."""
    text = _skeigiot._studyData(_bytes(paths), _bytes([os.path.basename(path) for path in paths]))
    found: Dict[str, Any] = json.loads(text)
    return found


def _names_of(groups: List[Any], by: str) -> List[str]:
    """Returns the names of groups: an empty value or role is "without ..." beside others, and "all" alone."""
    kinds = (by, "role")
    has_others = [any(group[i] for group in groups) for i in range(2)]
    parts = [[group[i] or (f"without {kinds[i]}" if has_others[i] else "") for i in range(2)] for group in groups]
    return [", ".join(part for part in both if part) or "all" for both in parts]


def _beside(values: List[float]) -> List[float]:
    """Returns a place for each dot, so that dots of nearly the same value are beside each other."""
    width = max(values) - min(values)
    rows: Dict[int, int] = {}
    places = []
    for value in values:
        row = round(30 * (value - min(values)) / width) if width > 0 else 0
        before = rows.get(row, 0)
        rows[row] = before + 1
        shift = 0.06 * ((before + 1) // 2) * (-1 if before % 2 else 1)
        places.append(max(-_DOTS_WIDE, min(_DOTS_WIDE, shift)))
    return places


def plot(paths: List[str], quantity: str, scope: str, by: str) -> Any:
    groups = _skeigiot._compareStudy(_bytes(paths), quantity, scope, by)
    figure = import_module("matplotlib.figure").Figure(figsize=(1.5 + 1.2 * len(groups), 4), layout="constrained")
    axes = figure.add_subplot()
    names = []
    for place, (group, (_, _, mean, low, high, persons)) in enumerate(zip(_names_of(groups, by), groups)):
        values = [person[1] for person in persons]
        axes.scatter([place + shift for shift in _beside(values)], values, s=16, alpha=0.6, color="C0")
        if low is not None:
            axes.vlines(place + 0.4, low, high, color="C1", linewidth=3)
        axes.hlines(mean, place + 0.33, place + 0.47, color="C1", linewidth=3)
        names.append(f"{group}\n{len(persons)} {'person' if len(persons) == 1 else 'persons'}")
    axes.set_xticks(range(len(groups)), names)
    axes.set_ylabel(quantity if by == "scope" else f"{quantity}, {scope}")
    return figure


def _warn_of(limits: List[str]) -> None:
    """Warns the caller of the method of StudyResults."""
    for limit in limits:
        warnings.warn(limit, stacklevel=4)


def _limits_of_sessions(data: Dict[str, Any]) -> List[str]:
    pictures, limits = data["pictures"], data["limits"]
    scopes = sum(person.get("moreScopes", 0) for session in pictures["sessions"] for person in session["persons"])
    lines = []
    if pictures["withoutPicture"]:
        lines.append(
            f"{pictures['withoutPicture']:,} persons of sessions are not in the figure: it has {limits['pictures']:,} at most, "
            f"and {limits['personsOfSession']} of one session"
        )
    if scopes:
        lines.append(f"{scopes:,} scopes are not drawn: a picture has {limits['scopesOfPicture']} at most")
    return lines


def plot_sessions(paths: List[str]) -> Any:
    all_data = data_of(paths)
    data = all_data["pictures"]
    pictures = [(session, person) for session in data["sessions"] for person in session["persons"]]
    if not pictures:
        raise ValueError("no session has a person")
    _warn_of(_limits_of_sessions(all_data))
    rows = -(-len(pictures) // _COLUMNS)
    figure = import_module("matplotlib.figure").Figure(figsize=(12, 0.4 + 1.1 * rows), layout="constrained")
    grid = figure.subplots(rows, _COLUMNS, squeeze=False, sharey=True)
    for axes in grid.flat:
        axes.axis("off")
    for axes, (session, person) in zip(grid.flat, pictures):
        length = session["length"] or 1.0
        axes.axhline(0, color="0.8", linewidth=0.8)
        for place, (quantity, color) in enumerate((("valence", "C0"), ("attention", "C1"))):
            curve = person.get(f"{quantity}Curve")
            if curve is not None:
                times = [(i + 0.5) * length / len(curve) for i in range(len(curve))]
                axes.plot(times, [float("nan") if mean is None else mean / 1000 for mean in curve], color=color, linewidth=1)
            for part in person.get("scopes", ()):
                if part[3 + place] is not None:
                    axes.hlines(part[3 + place] / 1000, part[1], part[2], color=color, linewidth=1)
        name = f"{session['name']} {person['name'] or person['role']}" if session["personCount"] > 1 else session["name"]
        axes.set_title(name if session["status"] == "complete" else f"{name} ({session['status']})", fontsize=7)
        axes.set_xlim(0, length)
        axes.set_ylim(-1.05, 1.05)
    return figure


def plot_verdicts(paths: List[str]) -> Any:
    data = data_of(paths)
    rows = data["labels"]["verdicts"]
    if not rows:
        raise ValueError("no session has a scope")
    scopes = data["counts"]["scopes"]
    if len(rows) < scopes:
        _warn_of([f"the figure has {len(rows)} of {scopes:,} scopes: those that most sessions have"])
    figure = import_module("matplotlib.figure").Figure(figsize=(7, 1 + 0.35 * len(rows)), layout="constrained")
    axes = figure.add_subplot()
    for place, row in enumerate(rows):
        total = sum(row["counts"].get(word, 0) for word in _WORDS)
        left = 0.0
        for word, color in _WORDS.items():
            share = row["counts"].get(word, 0) / total if total else 0.0
            axes.barh(place, share, left=left, color=color, label=word if place == 0 else None)
            left += share
    axes.set_yticks(range(len(rows)), [row["scope"] for row in rows])
    axes.invert_yaxis()
    axes.set_xlabel("share of verdicts in complete sessions")
    axes.legend(loc="lower left", bbox_to_anchor=(0, 1), ncol=len(_WORDS), fontsize=8, frameon=False)
    return figure
