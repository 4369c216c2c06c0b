"""Whole recordings, replayed as the command `skeigiot replay` does it."""

from __future__ import annotations

import errno
import os
import warnings
from collections.abc import Iterable, Mapping, Sequence
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any, Dict, List, Optional, Tuple, Union

import numpy as np
import numpy.typing as npt

from . import _skeigiot
from ._errors import RecordingError, RecordingWarning
from ._frames import PackedFrame, is_frame, pack

if TYPE_CHECKING:
    import pandas  # type: ignore[import]

Path = Union[str, "os.PathLike[str]"]
Frame = Union["pandas.DataFrame", Mapping[str, Any]]
Span = Tuple[Optional[float], Optional[float]]


class Columns(Dict[str, "npt.NDArray[Any]"]):
    """A table: a dict of NumPy arrays of one length, by the names of the columns."""

    @property
    def rows(self) -> int:
        """How many rows there are."""
        return next((len(column) for column in self.values()), 0)

    def where(self, mask: npt.NDArray[Any]) -> Columns:
        """Returns the rows for which the mask is true, or whose numbers it holds."""
        return Columns((name, column[mask]) for name, column in self.items())

    def to_pandas(self) -> pandas.DataFrame:
        """Returns the table as a pandas frame, with the column clock in UTC.

        Raises ImportError if there is no pandas.
        """
        import pandas

        frame = pandas.DataFrame(dict(self))
        if "clock" in self:
            frame["clock"] = frame["clock"].dt.tz_localize("UTC")
        return frame


@dataclass(frozen=True)
class PersonVerdict:
    """How a scope went for one person."""

    word: str
    """"positive", "neutral", "negative" or "unknown\""""
    updates: int
    """how many updates it stands on"""


@dataclass(frozen=True)
class ScopeVerdict:
    """How a scope went, for each person with an update in it."""

    scope: str
    """the name; "whole recording" for all of it"""
    start: float
    """[s] since the start of the recording"""
    stop: float
    """[s] since the start of the recording; of the last update where that is what ended it"""
    end: str
    """"complete", "not stopped", "cut short", "not reached" or "not open" (stopped, though never started)"""
    persons: Dict[int, PersonVerdict]


class Replay:
    """What the library thought of the persons in a recording.

    updates has a row for each update of each person, in their order, with the columns that `skeigiot replay --csv`
    exports:

    - recording: number of the session, from 1
    - person: identifier
    - time: [s] since the start of the recording
    - clock: the time itself, datetime64[ns] in UTC
    - seen: whether the person was observed in this update, or only aged
    - valence, valence_confidence: -1 to 1, 0 to 1, in single precision as all estimates
    - valence_binary: 1, 0 or -1
    - unsmoothed_valence_binary, unsmoothed_valence_confidence: of the valence that follows the observations at once
    - attention, attention_confidence: 0 to 1 each
    - zone: "LookingAtRobot", "LookingUp", ..., "LookingDownRight" or "Unknown"
    - pleasure: "positive", "neutral", "negative" or "unknown"
    - ease, ease_confidence: of the body language, -0.5 to 0.5, 0 to 1

    persons has the rows of each person, by the number of the person.

    With explain=True, forces has a row for each force, in the order in which they acted, with the columns row (of the
    update in updates), person, time, source (such as "Touch emotion"), quantity ("valence", "attention confidence",
    ...), target, weight, before and after: after is before + weight * (target - before), held in the range of the
    quantity. zone_changes has row, person, time, from, to, and evidence, which is what decided. Otherwise they have no
    columns.

    ambiance has a row for each update of the room: time, clock, agitation (0 to 1), excited; no columns if there was
    none. verdicts are those on the whole recording and on all scopes. description says in which way the recording was
    read; warnings are the texts of all warnings; length is in seconds; name names the recording; error is what ended it
    before its end, None if nothing did.
    """

    def __init__(self, outcome: Dict[str, Any]) -> None:
        self.name: str = outcome["name"]
        self.length: float = outcome["length"]
        self.description: List[str] = outcome["description"]
        self.warnings: List[str] = outcome["warnings"]
        self.updates = _timed(_columns(outcome["updates"]))
        self.forces = self._with_persons(_columns(outcome["forces"]))
        self.zone_changes = self._with_persons(_columns(outcome["zone_changes"]))
        self.ambiance = _timed(_columns(outcome["ambiance"]))
        self.persons: Dict[int, Columns] = self._persons()
        self.verdicts = [_verdict(*verdict) for verdict in outcome["verdicts"]]
        self.error: Optional[RecordingError] = None
        if outcome["error"] is not None:
            self.error = RecordingError(*outcome["error"])
            self.error.replay = self

    def to_pandas(self) -> pandas.DataFrame:
        """Returns the updates as a pandas frame. Raises ImportError if there is no pandas."""
        return self.updates.to_pandas()

    def __repr__(self) -> str:
        return f"<Replay of {self.name}: {self.updates.rows} updates of {len(self.persons)} persons, {self.length:g} s>"

    def _persons(self) -> Dict[int, Columns]:
        if not self.updates:
            return {}
        person = self.updates["person"]
        return {int(number): self.updates.where(person == number) for number in np.unique(person)}

    def _with_persons(self, table: Columns) -> Columns:
        if not table:
            return table
        row = table["row"]
        return Columns(
            {"row": row, "person": self.updates["person"][row], "time": self.updates["time"][row]}, **table
        )


def replay(
    recording: Union[Path, Frame, Sequence[Union[Path, Frame]]],
    *,
    format: Optional[str] = None,
    explain: bool = False,
    cycle: Union[float, str] = 10.0,
    scopes: Optional[Mapping[str, Span]] = None,
    offsets: Optional[Mapping[Path, float]] = None,
    skip_bad: bool = False,
    person_from: Optional[str] = None,
    mapping: Optional[Path] = None,
    fps: Optional[float] = None,
    mirrored: bool = False,
    line_of_sight: bool = True,
    camera_height: Optional[float] = None,
    min_confidence: float = 0.7,
    au_full_scale: float = 5.0,
    boundaries: Optional[Mapping[str, float]] = None,
) -> Replay:
    """Replays one recording, and returns what the library thought of the persons in it.

    The recording is a file, a bag of ROS 2, a frame, or a list of those: inputs of one session, merged by time; the
    first sets the cycles.

    A frame is a pandas frame or a dict of columns of one length. It has a column time: seconds from the start or since
    1970 (numbers), nanoseconds since 1970 (integers from 1e12 on), aware datetimes, or NumPy's datetime64, which is
    UTC. Each row is an observation of the person whose number is in the column person; without that column, of person 0.
    The other columns are the readings, named as in tidy CSV: smile and smile.confidence; gaze.yaw and gaze.pitch;
    headPosture.yaw, .pitch and .roll; expressions.joy and expressions.joy.confidence; distance; speaking; ...; and
    seen, which is false where the person was not observed. NaN, None and empty texts are unknown. A row without a
    person can tell of the room (ambiance.activity, ambiance.movements) and scopes (start, start.samples, stop). A frame
    with a column reading is one of tidy CSV itself: a reading in each row.

    format: the format of the files, found out if not given; see FORMATS
    explain: also keep every force that moved an estimate
    cycle: updates of a person in a second, above 0 and up to 1000; what is observed in between is remembered at its own
        time. "recorded": update with each row or step
    scopes: spans to judge besides the whole recording, as {name: (from, to)} in seconds since the start, both ends
        included; None at either is the start or the end
    offsets: seconds to add to all times of an input, by its path
    skip_bad: go on behind lines that cannot be used; they are counted in a warning
    person_from: column of a CSV file that names the person
    mapping: JSON file that says how action units, blendshapes and emotions become readings
    fps: frames per second, instead of the time stamps of the file
    mirrored: the video is a mirror image
    line_of_sight: angles are relative to the line from the face to the camera, rather than to the axis of the camera
    camera_height: [m] above the floor; without it the heights of heads are unknown
    min_confidence: below this, 0 to 1, a face counts as not seen
    au_full_scale: intensity of an action unit that counts as full
    boundaries: {"positive": 0.2, "negative": ..., "confidence": ..., "looking_at_robot": ...,
        "strictly_looking_at_robot": ..., "excited": ...}, set for this replay. They are the process-wide boundaries of
        PersonState and AmbianceState: whatever else estimates in the meantime has them, too.

    The recording is read and played without the interpreter lock; an interrupt (Ctrl-C) ends it. Clocks, and what
    listens to forces, are not touched on other threads.

    Warnings are issued as RecordingWarning, and kept in the result.

    Raises FileNotFoundError for a file that is not there, RecordingError for one that cannot be read, ValueError for
    arguments that are out of their range, TypeError for what is no recording.
    """
    sources = _sources_of(recording)
    inputs = _inputs(sources, offsets or {})
    result = Replay(
        _skeigiot._replay(
            inputs,
            _options(
                format, explain, cycle, scopes, skip_bad, person_from, mapping, fps, mirrored, line_of_sight,
                camera_height, min_confidence, au_full_scale, boundaries,
            ),
        )
    )
    _warn(result.warnings, 3)
    if result.error is not None:
        raise result.error
    return result


def replay_all(
    recordings: Union[Path, Sequence[Path]],
    *,
    jobs: Optional[int] = None,
    format: Optional[str] = None,
    explain: bool = False,
    cycle: Union[float, str] = 10.0,
    scopes: Optional[Mapping[str, Span]] = None,
    skip_bad: bool = False,
    person_from: Optional[str] = None,
    mapping: Optional[Path] = None,
    fps: Optional[float] = None,
    mirrored: bool = False,
    line_of_sight: bool = True,
    camera_height: Optional[float] = None,
    min_confidence: float = 0.7,
    au_full_scale: float = 5.0,
    boundaries: Optional[Mapping[str, float]] = None,
) -> List[Replay]:
    """Replays several recordings, each in a session of its own, and returns the results in their order.

    The recordings are files, or folders, which stand for every recording in them in the order of their names; files of
    no known format are passed over with a warning.

    jobs: how many are replayed at a time, on threads of their own; one for each core if not given

    All else is as for replay(), but a recording that cannot be read does not end the others: its result holds what came
    before, and the error as error.

    Raises FileNotFoundError for a path that is not there, RecordingError for a folder without a recording.
    """
    paths = [recordings] if isinstance(recordings, (str, os.PathLike)) else list(recordings)
    if not paths:
        raise ValueError("there is no recording")
    notes, outcomes = _skeigiot._replayAll(
        [_existing(path) for path in paths],
        _jobs(jobs),
        _options(
            format, explain, cycle, scopes, skip_bad, person_from, mapping, fps, mirrored, line_of_sight,
            camera_height, min_confidence, au_full_scale, boundaries,
        ),
    )
    _warn(notes, 3)
    results = [Replay(outcome) for outcome in outcomes]
    for result in results:
        _warn((f"{result.name}: {text}" for text in result.warnings), 3)
    return results


FORMATS: Tuple[str, ...] = _skeigiot._formats
"""The names of the formats that files may have."""


_GREATEST_SECONDS = 4e9
_OPTION_OF_BOUNDARY = {
    option[len("boundary-"):].replace("-", "_"): option for option in _skeigiot._boundaries
}


def _sources_of(recording: Any) -> List[Any]:
    is_one = isinstance(recording, (str, os.PathLike)) or is_frame(recording)
    if not is_one and not isinstance(recording, Sequence):
        raise TypeError(f"a recording is a path, a frame, or a list of those, not {type(recording).__name__}")
    sources = [recording] if is_one else list(recording)
    if not sources:
        raise ValueError("there is no recording")
    return sources


def _inputs(sources: List[Any], offsets: Mapping[Path, float]) -> List[Tuple[Union[bytes, PackedFrame], int]]:
    offset_of = {os.fsencode(path): _nanoseconds("offsets", seconds) for path, seconds in offsets.items()}
    inputs: List[Tuple[Union[bytes, PackedFrame], int]] = []
    frames = 0
    for source in sources:
        if is_frame(source):
            frames += 1
            inputs.append((pack(source, "frame" if frames == 1 else f"frame {frames}"), 0))
        else:
            path = _existing_file(source)
            inputs.append((path, offset_of.pop(path, 0)))
    paths = [source for source, _ in inputs if isinstance(source, bytes)]
    if len(set(paths)) < len(paths):
        raise ValueError("one input is named twice")
    if offset_of:
        raise ValueError(f"offsets: there is no input {os.fsdecode(next(iter(offset_of)))!r}")
    if offsets and len(inputs) == 1:
        raise ValueError("offsets: there is no other input to be moved against")
    return inputs


def _existing(path: Any) -> bytes:
    encoded = os.fsencode(path)
    if not os.path.exists(encoded):
        raise FileNotFoundError(errno.ENOENT, os.strerror(errno.ENOENT), os.fsdecode(encoded))
    return encoded


def _existing_file(path: Any) -> bytes:
    encoded = _existing(path)
    if os.path.isdir(encoded) and not os.path.exists(os.path.join(encoded, b"metadata.yaml")):
        raise IsADirectoryError(
            errno.EISDIR, "a folder of recordings, which replay_all() replays one by one", os.fsdecode(encoded)
        )
    return encoded


def _jobs(jobs: Optional[int]) -> int:
    if jobs is None:
        return os.cpu_count() or 1
    if not 1 <= jobs <= 1024:
        raise ValueError(f"jobs: expected a whole number from 1 to 1024, got {jobs!r}")
    return jobs


def _options(
    format: Optional[str],
    explain: bool,
    cycle: Union[float, str],
    scopes: Optional[Mapping[str, Span]],
    skip_bad: bool,
    person_from: Optional[str],
    mapping: Optional[Path],
    fps: Optional[float],
    mirrored: bool,
    line_of_sight: bool,
    camera_height: Optional[float],
    min_confidence: float,
    au_full_scale: float,
    boundaries: Optional[Mapping[str, float]],
) -> Dict[str, Any]:
    if format is not None and format not in FORMATS:
        raise ValueError(f"format: there is none named {format!r}; expected one of: {', '.join(FORMATS)}")
    if fps is not None:
        _expect("fps", fps, fps > 0 and np.isfinite(fps), "a number above 0")
    if camera_height is not None:
        _expect("camera_height", camera_height, bool(np.isfinite(camera_height)), "a number")
    _expect("min_confidence", min_confidence, 0 <= min_confidence <= 1, "a number from 0 to 1")
    _expect("au_full_scale", au_full_scale, au_full_scale > 0 and np.isfinite(au_full_scale), "a number above 0")
    return {
        "format": format or "",
        "explain": bool(explain),
        "cycle": cycle,
        "scopes": [_scope(name, span) for name, span in (scopes or {}).items()],
        "skip_bad": bool(skip_bad),
        "person_from": person_from or "",
        "mapping": b"" if mapping is None else _existing(mapping),
        "fps": fps,
        "mirrored": bool(mirrored),
        "line_of_sight": bool(line_of_sight),
        "camera_height": camera_height,
        "min_confidence": min_confidence,
        "au_full_scale": au_full_scale,
        "boundaries": {_boundary(name): value for name, value in (boundaries or {}).items()},
    }


def _expect(name: str, value: float, is_so: bool, expected: str) -> None:
    if not is_so:
        raise ValueError(f"{name}: expected {expected}, got {value!r}")


def _boundary(name: str) -> str:
    if name not in _OPTION_OF_BOUNDARY:
        raise ValueError(f"boundaries: there is none named {name!r}; expected one of: {', '.join(_OPTION_OF_BOUNDARY)}")
    return _OPTION_OF_BOUNDARY[name]


def _scope(name: str, span: Span) -> Tuple[str, int, Optional[int]]:
    start, stop = span
    begin = 0 if start is None else _nanoseconds("scopes", start)
    end = None if stop is None else _nanoseconds("scopes", stop)
    if begin < 0 or (end is not None and end < begin):
        raise ValueError(f"scopes: {name!r} does not go from 0 s or later to an end behind it: {span!r}")
    return name, begin, end


def _nanoseconds(name: str, seconds: float) -> int:
    _expect(name, seconds, abs(seconds) <= _GREATEST_SECONDS, "seconds")
    return round(seconds * 1e9)


def _columns(raw: Dict[str, Any]) -> Columns:
    columns = Columns()
    for name, values in raw.items():
        if isinstance(values, tuple):
            codes, texts = values
            columns[name] = np.array(texts, dtype=object)[codes]
        else:
            columns[name] = values
    return columns


def _timed(table: Columns) -> Columns:
    if table:
        table["time"] = table["time"] / 1e9
        table["clock"] = table["clock"].view("datetime64[ns]")
    return table


def _verdict(
    scope: str, start: float, stop: float, end: str, persons: Mapping[int, Tuple[str, int]]
) -> ScopeVerdict:
    return ScopeVerdict(
        scope, start, stop, end, {person: PersonVerdict(*verdict) for person, verdict in persons.items()}
    )


def _warn(texts: Iterable[str], level: int) -> None:
    for text in texts:
        warnings.warn(text, RecordingWarning, stacklevel=level)
