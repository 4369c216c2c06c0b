"""The estimate compared with labels that people gave to a recording, as the command `skeigiot agree` does it."""

from __future__ import annotations

import json
import os
from collections.abc import Mapping, Sequence
from dataclasses import dataclass, field
from typing import Any, Dict, Iterator, List, Optional, Tuple, Union

from . import _skeigiot
from ._numpy import np
from ._replay import Frame, _function, _inputs, _sources_of, _warn
from ._result import Columns
from ._settings import Path, ReadingSettings, existing

_Row = Dict[str, Any]


@dataclass(frozen=True)
class Agreement:
    """How the estimate and the coders of a recording agree.

    Each table has a row for the comparison of two sides, of all persons together and of each, with the columns quantity
    ("pleasure", "engagement", "zone", "valence" or "attention"), first ("estimate", or a coder), second (a coder) and
    person ("all", or the number as a text).
    """

    measures: Columns
    """further columns: at ("undelayed" or "best"), delay [s], seconds (how many were compared), measure ("kappa",
    "accuracy", "f1"; "ccc", "pearson", "rmse"), class (of f1), value, low and high (ends of the 95 % interval), unit
    ("persons" or "blocks") and units (how many the interval was drawn from); NaN where something is not defined"""
    confusion: Columns
    """further columns: at, first_class, second_class, seconds"""
    left_out: Columns
    """further columns: reason ("noUpdate", "noLabel", "contradiction", "notSeen", "unknownEstimate"), seconds"""
    warnings: List[str]
    """about the recording, and about labels that were left out"""
    seed: int
    """of the random numbers that the intervals are drawn with"""
    resamples: int
    """how many samples each interval was drawn from"""

    def __repr__(self) -> str:
        return f"<Agreement: {self.measures.rows} measures>"


@dataclass(frozen=True, eq=False)
class _Agree(ReadingSettings):
    """Compares the estimate of a recording with labels that people gave to it.

    recording: as for replay()
    labels: a file of labels, or several, as of several coders: ELAN .eaf, Praat TextGrid, events of BORIS, labels of
        Audacity, or CSV with the columns start, end, value or time, value, and person, coder and tier. Times are
        seconds since the start of the recording.
    meanings: which label means which state, as {"smiling": "positive"}. States are negative, neutral, positive;
        engaged, not-engaged; and the names of zones. The name of a state needs no meaning.
    unlabelled: the state, or states of several quantities, that time without a label counts as; if not given, such time
        is left out
    value: the quantity of values whose column does not name it, and of labels that are numbers: "valence" or
        "attention"
    scale: the values of the coders for the least and the greatest estimate
    persons: numbers of persons by the names that labels, or their tiers, give them; "" for labels without a name
    tiers: only labels of these tiers are used
    labels_offset: [s] added to all times of labels
    max_delay: [s] delays are tried up to this, in both directions

    All else is as for replay(). All times of the estimate are compared: an update holds until the next one, for a
    second at most. docs/agreement.md has the formulas and their sources.

    Raises what replay() raises, RecordingError for labels that cannot be read, and ValueError if no label can be
    compared.
    """

    recording: Union[Path, Frame, Sequence[Union[Path, Frame]]]
    labels: Union[Path, Sequence[Path]]
    meanings: Optional[Mapping[str, str]] = field(default=None, kw_only=True)
    unlabelled: Union[None, str, Sequence[str]] = field(default=None, kw_only=True)
    value: Optional[str] = field(default=None, kw_only=True)
    scale: Optional[Tuple[float, float]] = field(default=None, kw_only=True)
    persons: Optional[Mapping[str, int]] = field(default=None, kw_only=True)
    tiers: Sequence[str] = field(default=(), kw_only=True)
    labels_offset: float = field(default=0.0, kw_only=True)
    max_delay: float = field(default=5.0, kw_only=True)
    offsets: Optional[Mapping[Path, float]] = field(default=None, kw_only=True)

    def run(self) -> Agreement:
        inputs = _inputs(_sources_of(self.recording), self.offsets or {})
        labels = [self.labels] if isinstance(self.labels, (str, os.PathLike)) else self.labels
        paths = [existing(path) for path in labels]
        if not paths:
            raise ValueError("there is no file of labels")
        text, warnings = _skeigiot._agree(inputs, paths, self.packed(), self._comparison())
        result = _agreement(json.loads(text), warnings)
        _warn(result.warnings)
        return result

    def _comparison(self) -> Dict[str, Any]:
        if self.value not in (None, "valence", "attention"):
            raise ValueError(f"value: expected 'valence' or 'attention', got {self.value!r}")
        if not 0 <= self.max_delay <= 60:
            raise ValueError(f"max_delay: expected a number from 0 to 60, got {self.max_delay!r}")
        if not abs(self.labels_offset) <= 4e9:
            raise ValueError(f"labels_offset: expected seconds, got {self.labels_offset!r}")
        scale = None if self.scale is None else (float(self.scale[0]), float(self.scale[1]))
        if scale is not None and not (np.isfinite(scale).all() and scale[0] != scale[1]):
            raise ValueError(f"scale: expected two numbers that differ, got {self.scale!r}")
        unlabelled = [self.unlabelled] if isinstance(self.unlabelled, str) else list(self.unlabelled or ())
        return {
            "meanings": dict(self.meanings or {}),
            "unlabelled": unlabelled,
            "value": self.value or "",
            "scale": scale,
            "persons": dict(self.persons or {}),
            "tiers": [self.tiers] if isinstance(self.tiers, str) else list(self.tiers),
            "offset": float(self.labels_offset),
            "max_delay": float(self.max_delay),
        }


agree = _function(_Agree, "agree")


def _agreement(found: Dict[str, Any], warnings: List[str]) -> Agreement:
    comparisons = found["comparisons"]
    return Agreement(
        measures=_columns(
            _MEASURES, (row for comparison in comparisons for row in _each_at(comparison, _measure_rows))
        ),
        confusion=_columns(
            _CONFUSION, (row for comparison in comparisons for row in _each_at(comparison, _confusion_rows))
        ),
        left_out=_columns(
            _LEFT_OUT,
            (
                {**_sides(comparison), "reason": reason, "seconds": seconds}
                for comparison in comparisons
                for reason, seconds in comparison["leftOut"].items()
            ),
        ),
        warnings=warnings + found["warnings"],
        seed=found["seed"],
        resamples=found["resamples"],
    )


_SIDES = {"quantity": object, "first": object, "second": object, "person": object}
_MEASURES = {
    **_SIDES, "at": object, "delay": float, "seconds": float, "measure": object, "class": object, "value": float,
    "low": float, "high": float, "unit": object, "units": int,
}  # fmt: skip
_CONFUSION = {**_SIDES, "at": object, "first_class": object, "second_class": object, "seconds": float}
_LEFT_OUT = {**_SIDES, "reason": object, "seconds": float}


def _sides(comparison: _Row) -> _Row:
    person = comparison["person"]
    sides = {name: comparison[name] for name in ("quantity", "first", "second")}
    return {**sides, "person": "all" if person is None else str(person)}


def _each_at(comparison: _Row, rows: Any) -> Iterator[_Row]:
    for at in ("undelayed", "best"):
        if comparison[at] is not None:
            for row in rows(comparison, comparison[at]):
                yield {**_sides(comparison), "at": at, **row}


def _measure_rows(comparison: _Row, at: _Row) -> Iterator[_Row]:
    for measure in at["measures"]:
        yield {
            "delay": at["delay"],
            "seconds": at["compared"],
            "measure": measure["name"],
            "class": measure.get("class", ""),
            **{name: np.nan if measure[name] is None else measure[name] for name in ("value", "low", "high")},
            "unit": comparison["unit"],
            "units": at["units"],
        }


def _confusion_rows(comparison: _Row, at: _Row) -> Iterator[_Row]:
    for first, row in zip(comparison.get("classes", ()), at.get("confusion", ())):
        for second, seconds in zip(comparison["classes"], row):
            yield {"first_class": first, "second_class": second, "seconds": seconds}


def _columns(types: Mapping[str, Any], rows: Iterator[_Row]) -> Columns:
    taken = list(rows)
    return Columns((name, np.array([row[name] for row in taken], dtype=kind)) for name, kind in types.items())
