"""Whole recordings, replayed as the command `skeigiot replay` does it."""

from __future__ import annotations

import errno
import inspect
import os
import warnings
from collections.abc import Callable, Iterable, Mapping, Sequence
from dataclasses import dataclass, field
from typing import TYPE_CHECKING, Any, Dict, List, Optional, Tuple, Union

from . import _skeigiot
from ._frames import PackedFrame, explained, is_frame, notes_on, pack, with_nearest
from ._result import RecordingWarning, Replay
from ._settings import Path, Settings, existing, nanoseconds

if TYPE_CHECKING:
    from typing import ParamSpec, Protocol, TypeVar

    import pandas  # type: ignore[import]

    Arguments = ParamSpec("Arguments")
    Result = TypeVar("Result", covariant=True)

    class Run(Protocol[Result]):
        """A class that is called with its arguments, and then run."""

        def run(self) -> Result: ...


Frame = Union["pandas.DataFrame", Mapping[str, Any]]

_CALLER = 4
"""Where warnings are to point: above _warn(), run() and the function that _function() makes."""


@dataclass(frozen=True, eq=False)
class _ReplayOne(Settings):
    """Replays one recording, and returns the estimates of the persons in it.

    The recording is a file, a bag of ROS 2, a frame, or a list of those. A list is one session, merged by time: a
    reading of a later input joins the next step of the first input about the same person.

    A frame is a pandas frame or a dict of columns of one length. A frame of a front end's file, such as
    pandas.read_csv("openface.csv"), is read like the file.

    A frame of readings has a column time: seconds from the start or since 1970 (numbers), nanoseconds since 1970
    (integers, from the year 2000 on), timedeltas from the start, aware datetimes, or NumPy's datetime64, which is UTC.
    Each row is an observation of one person. The column person has the number or the name; without it, all rows are
    person 0. The other columns are the readings, with the names of tidy CSV: smile and smile.confidence; gaze.yaw and
    gaze.pitch; headPosture.yaw, .pitch and .roll; expressions.joy and expressions.joy.confidence; distance; speaking;
    ...; and seen, which is false if the person was not observed. NaN, None and empty texts are unknown; a reading with
    an unknown part is unknown in that row. Numbers far outside their range, such as percent, are an error. A row
    without a person may have readings of the room (ambiance.activity, ambiance.movements) and scopes (start,
    start.samples, stop). A frame with a column reading is tidy CSV: it has one reading in each row.

    format: the format of the files, and of frames that are not of readings; detected if not given, see FORMATS
    explain: also keep every force that moved an estimate
    cycle: updates of a person per second, above 0 and up to 1000; each update uses all observations since the last
        one. "recorded": update with each row or step
    scopes: spans for verdicts besides the whole recording, as {name: (from, to)} in seconds since the start, both ends
        included; None means the start or the end
    offsets: seconds to add to all times of an input, by its path
    skip_bad: skip lines that cannot be used; a warning has their number
    person_from: column of a CSV file with the number or the name of the person
    mapping: JSON file that replaces the built-in tables, which convert action units, blendshapes and emotions
    fps: frames per second, instead of the time stamps of the file
    mirrored: the video is a mirror image
    line_of_sight: older argument; False means look_at="axis"
    camera_height: [m] above the floor; without it, head heights are unknown
    min_confidence: below this, 0 to 1, a face counts as not seen
    au_full_scale: intensity of an action unit that counts as full
    look_at: where a person looks who looks at the robot: at the "camera"; along the "axis" of the camera; "learned",
        the usual direction of the head; or at a point in metres from the camera, as (right, down, forward). The default
        is "camera"; for bags of ROS 2 it is the axis, moved by up to 5 degrees towards the usual direction of the head.
    rest: face at rest, which is subtracted from each face: "learned" during the recording, "none", or the median of a
        span in seconds since the start, as (from, to)
    boundaries: {"positive": 0.2, "negative": ..., "confidence": ..., "looking_at_robot": ...,
        "strictly_looking_at_robot": ..., "excited": ...}, set for this replay. They are the process-wide boundaries of
        PersonState and AmbianceState, so they also apply to other estimates at the same time.

    The recording is read and played without the interpreter lock; an interrupt (Ctrl-C) ends it. Clocks and force
    observers of other threads are not changed.

    Warnings are issued as RecordingWarning, and kept in the result.

    Raises FileNotFoundError for a missing file, RecordingError for a file that cannot be read, ValueError for
    arguments out of their range, TypeError for an object that is not a recording.
    """

    recording: Union[Path, Frame, Sequence[Union[Path, Frame]]]
    offsets: Optional[Mapping[Path, float]] = field(default=None, kw_only=True)

    def run(self) -> Replay:
        inputs = _inputs(_sources_of(self.recording), self.offsets or {})
        result = Replay(_skeigiot._replay(inputs, self.packed()))
        frames = [source for source, _ in inputs if not isinstance(source, bytes)]
        if frames:
            notes = [note for frame in frames for note in notes_on(frame)]
            result.warnings = [*map(with_nearest, result.warnings), *notes]
        _warn(result.warnings)
        if result.error is not None:
            result.error = explained(result.error, frames)
            result.error.replay = result
            raise result.error
        return result


@dataclass(frozen=True, eq=False)
class _ReplayAll(Settings):
    """Replays several recordings, each in a session of its own, and returns the results in their order.

    The recordings are files or folders. For a folder, all its recordings are replayed, in the order of their names;
    files of unknown format are skipped with a warning.

    jobs: number of recordings to replay at the same time, on threads of their own; one for each core if not given

    The other arguments are those of replay(). A recording that cannot be read does not end the others: its result has
    the updates before the error, and the error as error.

    Raises FileNotFoundError for a missing path, RecordingError for a folder without a recording.
    """

    recordings: Union[Path, Sequence[Path]]
    jobs: Optional[int] = field(default=None, kw_only=True)

    def run(self) -> List[Replay]:
        recordings = self.recordings
        paths = [recordings] if isinstance(recordings, (str, os.PathLike)) else list(recordings)
        if not paths:
            raise ValueError("there is no recording")
        notes, outcomes = _skeigiot._replayAll([existing(path) for path in paths], _jobs(self.jobs), self.packed())
        _warn(notes)
        results = [Replay(outcome) for outcome in outcomes]
        _warn(_joined_warnings(results))
        return results


def _function(run: Callable[Arguments, Run[Result]], name: str) -> Callable[Arguments, Result]:
    """Returns a function that makes a `run` of its arguments and runs it: the arguments are written once, as the fields
    of a dataclass, and help() and type checkers see them."""
    signature = inspect.signature(run)

    def function(*args: Arguments.args, **kwargs: Arguments.kwargs) -> Result:
        try:
            signature.bind(*args, **kwargs)
        except TypeError as error:
            raise TypeError(f"{name}() {error}") from None
        return run(*args, **kwargs).run()

    returned = inspect.signature(run.run).return_annotation  # type: ignore[attr-defined]
    function.__name__ = function.__qualname__ = name
    function.__doc__ = run.__doc__
    function.__signature__ = signature.replace(return_annotation=returned)  # type: ignore[attr-defined]
    function.__annotations__ = {each.name: each.annotation for each in signature.parameters.values()}
    function.__annotations__["return"] = returned
    return function


replay = _function(_ReplayOne, "replay")
replay_all = _function(_ReplayAll, "replay_all")


def _sources_of(recording: Any) -> List[Any]:
    is_one = isinstance(recording, (str, os.PathLike)) or is_frame(recording)
    if not is_one and not isinstance(recording, Sequence):
        raise TypeError(f"a recording is a path, a frame, or a list of those, not {type(recording).__name__}")
    sources = [recording] if is_one else list(recording)
    if not sources:
        raise ValueError("there is no recording")
    return sources


def _inputs(sources: List[Any], offsets: Mapping[Path, float]) -> List[Tuple[Union[bytes, PackedFrame], int]]:
    offset_of = {os.fsencode(path): nanoseconds("offsets", seconds) for path, seconds in offsets.items()}
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
        raise ValueError("offsets: an offset needs another input in the same session")
    return inputs


def _existing_file(path: Any) -> bytes:
    encoded = existing(path)
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


def _joined_warnings(results: Iterable[Replay]) -> List[str]:
    """Returns each text once, with the recordings that it is about."""
    about: Dict[str, List[str]] = {}
    for result in results:
        for text in dict.fromkeys(result.warnings):
            about.setdefault(text, []).append(result.name)
    return [_about(names) + text for text, names in about.items()]


def _about(names: Sequence[str]) -> str:
    return f"{names[0]}: " if len(names) == 1 else f"{names[0]} and {len(names) - 1} more recordings: "


def _warn(texts: Iterable[str]) -> None:
    for text in dict.fromkeys(texts):
        warnings.warn(text, RecordingWarning, stacklevel=_CALLER)
