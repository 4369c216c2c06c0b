"""What a replay showed on the whole, in numbers."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Dict, List, Mapping

import numpy as np
import numpy.typing as npt

from . import _skeigiot

if TYPE_CHECKING:
    from ._shown import ShownReplay, ShownVerdict

_LONGEST_HOLD = 1.0
"""[s] An update says what holds until the next one, for so long at most."""

_HOLD_OF_A_SINGLE = 1e-3
"""[s] Any time does where there is no other to weigh it against."""

_ZONES = tuple(zone.name for zone in _skeigiot.AttentionState)
_PLEASURES = ("positive", "neutral", "negative", "unknown")


def rows_of(replay: ShownReplay, boundaries: Mapping[str, float]) -> List[Dict[str, Any]]:
    """Returns a row for each person and scope: by person, then by start, longer scopes first.

    Means and shares are over time; means leave out what is unknown.
    """
    return [
        _row(replay, number, scope, boundaries)
        for number in replay.persons
        for scope in sorted(replay.verdicts, key=lambda scope: (scope.start, -scope.stop))
        if number in scope.persons
    ]


def _row(replay: ShownReplay, number: int, scope: ShownVerdict, boundaries: Mapping[str, float]) -> Dict[str, Any]:
    updates = replay.persons[number]
    time = updates["time"]
    inside = (time >= scope.start) & (time <= scope.stop)
    held = np.where(inside, _held(time), 0.0)
    seen = np.where(updates["seen"], held, 0.0)
    known = {quantity: np.where(updates[quantity + "_known"], held, 0.0) for quantity in ("valence", "attention")}
    seen_and_known = np.where(updates["seen"], known["attention"], 0.0)
    verdict = scope.persons[number]
    row: Dict[str, Any] = {
        "file": updates["file"][0],
        "person": number,
        "name": replay.names.get(number, ""),
        "scope": scope.scope,
        "start": scope.start,
        "stop": scope.stop,
        "end": scope.end,
        "verdict": verdict.word,
        "updates": verdict.updates,
        "first": time[inside].min() if inside.any() else np.nan,
        "last": time[inside].max() if inside.any() else np.nan,
        "seen": _share(seen, held),
    }
    for quantity, weights in known.items():
        row[quantity] = _mean(updates[quantity], weights)
        row[quantity + "_confidence"] = _mean(updates[quantity + "_confidence"], weights)
        row[quantity + "_known"] = _share(weights, held)
    is_known = known["attention"].sum() > 0
    for name, boundary in (("engaged", "looking_at_robot"), ("strictly_engaged", "strictly_looking_at_robot")):
        attending = np.where(updates["attention"] >= np.float32(boundaries[boundary]), seen_and_known, 0.0)
        row[name] = _share(attending, held) if is_known else np.nan
    for zone in _ZONES:
        row["zone_" + zone] = _share(np.where(updates["zone"] == zone, seen, 0.0), held)
    for pleasure in _PLEASURES:
        row["pleasure_" + pleasure] = _share(np.where(updates["pleasure"] == pleasure, held, 0.0), held)
    return row


def _held(time: npt.NDArray[Any]) -> npt.NDArray[Any]:
    """Returns for how long each update holds: until the next one, and the last one for as long as the one before."""
    steps = np.diff(time)
    if not steps.sum() > 0:
        return np.full(len(time), _HOLD_OF_A_SINGLE)
    return np.minimum(np.append(steps, steps[-1]), _LONGEST_HOLD)


def _share(part: npt.NDArray[Any], whole: npt.NDArray[Any]) -> float:
    return float(part.sum() / whole.sum()) if whole.sum() > 0 else float("nan")


def _mean(values: npt.NDArray[Any], weights: npt.NDArray[Any]) -> float:
    is_counted = weights > 0
    return float(np.average(values[is_counted].astype(float), weights=weights[is_counted])) if is_counted.any() else float("nan")
