"""How recordings are read and replayed."""

from __future__ import annotations

import errno
import os
from collections.abc import Mapping
from dataclasses import dataclass
from typing import Any, Dict, Optional, Tuple, Union

from . import _skeigiot
from ._numpy import np

Path = Union[str, "os.PathLike[str]"]
Span = Tuple[Optional[float], Optional[float]]
LookAt = Union[str, Tuple[float, float, float]]
Rest = Union[str, Tuple[float, float]]

FORMATS: Tuple[str, ...] = _skeigiot._formats
"""The names of the formats that files may have."""

_GREATEST_SECONDS = 4e9
_OPTION_OF_BOUNDARY = {option[len("boundary-"):].replace("-", "_"): option for option in _skeigiot._boundaries}


@dataclass(frozen=True, eq=False, kw_only=True)
class ReadingSettings:
    """The keyword arguments for reading recordings and estimating; replay() explains them."""

    format: Optional[str] = None
    cycle: Union[float, str] = 10.0
    skip_bad: bool = False
    person_from: Optional[str] = None
    mapping: Optional[Path] = None
    fps: Optional[float] = None
    mirrored: bool = False
    line_of_sight: bool = True
    camera_height: Optional[float] = None
    min_confidence: float = 0.7
    au_full_scale: float = 3.0
    look_at: Optional[LookAt] = None
    rest: Rest = "learned"
    boundaries: Optional[Mapping[str, float]] = None

    def packed(self) -> Dict[str, Any]:
        """Returns them in the form that the compiled part needs.

        Raises ValueError for one that is out of its range.
        """
        self._expect_ranges()
        return {
            "format": self.format or "",
            "explain": False,
            "cycle": self.cycle,
            "scopes": [],
            "skip_bad": bool(self.skip_bad),
            "person_from": self.person_from or "",
            "mapping": b"" if self.mapping is None else existing(self.mapping),
            "fps": self.fps,
            "mirrored": bool(self.mirrored),
            "line_of_sight": bool(self.line_of_sight),
            "camera_height": self.camera_height,
            "min_confidence": self.min_confidence,
            "au_full_scale": self.au_full_scale,
            "look_at": _joined(self.look_at or "", ","),
            "rest": _joined(self.rest, ".."),
            "boundaries": {_boundary(name): value for name, value in (self.boundaries or {}).items()},
        }

    def _expect_ranges(self) -> None:
        fps, height, scale = self.fps, self.camera_height, self.au_full_scale
        expect_text("person_from", self.person_from or "")
        if self.format is not None and self.format not in FORMATS:
            raise ValueError(f"format: there is no format {self.format!r}; expected one of: {', '.join(FORMATS)}")
        if fps is not None:
            _expect("fps", fps, fps > 0 and np.isfinite(fps), "a number above 0")
        if height is not None:
            _expect("camera_height", height, bool(np.isfinite(height)), "a number")
        _expect("min_confidence", self.min_confidence, 0 <= self.min_confidence <= 1, "a number from 0 to 1")
        _expect("au_full_scale", scale, scale > 0 and np.isfinite(scale), "a number above 0")


@dataclass(frozen=True, eq=False, kw_only=True)
class Settings(ReadingSettings):
    """The keyword arguments that replay() and replay_all() share; replay() explains them."""

    explain: bool = False
    scopes: Optional[Mapping[str, Span]] = None

    def packed(self) -> Dict[str, Any]:
        scopes = [_scope(name, span) for name, span in (self.scopes or {}).items()]
        return {**super().packed(), "explain": bool(self.explain), "scopes": scopes}


def existing(path: Any) -> bytes:
    """Returns the path in bytes. Raises FileNotFoundError if nothing is there."""
    encoded = os.fsencode(path)
    if not os.path.exists(encoded):
        raise FileNotFoundError(errno.ENOENT, os.strerror(errno.ENOENT), os.fsdecode(encoded))
    return encoded


def nanoseconds(name: str, seconds: float) -> int:
    """Returns seconds as nanoseconds. Raises ValueError for a number too far from 0, under the argument's name."""
    _expect(name, seconds, abs(seconds) <= _GREATEST_SECONDS, "seconds")
    return round(seconds * 1e9)


def expect_text(name: str, text: str) -> None:
    """Raises ValueError if the text has half a surrogate pair, which no file can hold."""
    try:
        text.encode()
    except UnicodeEncodeError:
        raise ValueError(
            f"{name}: {text!r} has half a surrogate pair, so it is no text that can be written"
        ) from None


def _expect(name: str, value: float, is_so: bool, expected: str) -> None:
    if not is_so:
        raise ValueError(f"{name}: expected {expected}, got {value!r}")


def _joined(value: Union[str, Tuple[float, ...]], separator: str) -> str:
    return value if isinstance(value, str) else separator.join(str(float(number)) for number in value)


def _boundary(name: str) -> str:
    if name not in _OPTION_OF_BOUNDARY:
        expected = ", ".join(_OPTION_OF_BOUNDARY)
        raise ValueError(f"boundaries: there is no boundary {name!r}; expected one of: {expected}")
    return _OPTION_OF_BOUNDARY[name]


def _scope(name: str, span: Span) -> Tuple[str, int, Optional[int]]:
    expect_text("scopes", name)
    start, stop = span
    begin = 0 if start is None else nanoseconds("scopes", start)
    end = None if stop is None else nanoseconds("scopes", stop)
    if begin < 0 or (end is not None and end < begin):
        raise ValueError(f"scopes: {name!r} does not go from 0 s or later to an end behind it: {span!r}")
    return name, begin, end
