"""Data frames, in the form that the compiled part needs."""

from __future__ import annotations

import datetime
import difflib
import re
from collections.abc import Mapping
from typing import TYPE_CHECKING, Any, Iterable, List, Optional, Tuple, Union

from . import _skeigiot
from ._numpy import np
from ._result import RecordingError
from ._settings import expect_text

if TYPE_CHECKING:
    import numpy.typing as npt

PackedColumn = Tuple[str, Union["npt.NDArray[np.float64]", List[str]]]
PackedFrame = Tuple[str, int, Optional["npt.NDArray[np.int64]"], List[PackedColumn]]

_LEAST_NANOSECONDS = 946_684_800 * 10**9
"""The year 2000: whole numbers from here on count nanoseconds since 1970, smaller ones are seconds."""

_ENOUGH_ROWS = 20
"""From here on, whole numbers in large steps are likely to be milliseconds."""


def is_frame(source: Any) -> bool:
    """Returns whether this is a pandas frame or a dict of columns, and not the path of a recording."""
    return isinstance(source, Mapping) or hasattr(source, "columns")


def pack(frame: Any, name: str) -> PackedFrame:
    """Returns the name, the number of rows, the times if they are moments [ns], and the columns: numbers, NaN where one
    is missing, or texts.

    Raises ValueError if this is no table, or its times cannot be read.
    """
    columns = _columns_of(frame)
    for column, _ in columns:
        expect_text(f"{name}: a column", column)
    lengths = {len(values) for _, values in columns}
    if len(lengths) > 1:
        raise ValueError(f"{name}: the columns are not of one length")
    rows = lengths.pop() if lengths else 0
    if rows == 0:
        raise ValueError(f"{name}: there is no row")
    moments = None
    packed: List[PackedColumn] = []
    for column, values in columns:
        if column == "time":
            moments = _moments_of(values, name)
            if moments is not None:
                continue
            values = _seconds_of(values, name)
        packed.append((column, _plain(values, f"{name}: {column}")))
    return name, rows, moments, packed


def notes_on(packed: PackedFrame) -> List[str]:
    """Returns warnings about probable mistakes in a frame that can be read."""
    name, _, _, columns = packed
    times = next((values for column, values in columns if column == "time"), None)
    if not isinstance(times, np.ndarray) or len(times) < _ENOUGH_ROWS:
        return []
    steps = np.diff(np.unique(times))
    if len(steps) < _ENOUGH_ROWS - 1 or np.median(steps) < 10 or not np.all(times == np.floor(times)):
        return []
    hours = (times[-1] - times[0]) / 3600
    return [
        f"{name}: time is read as seconds, so it lasts {hours:.1f} hours; "
        "if these are milliseconds, divide them by 1000"
    ]


def with_nearest(text: str) -> str:
    """Adds the nearest known name to each column that a warning of the library says is not read."""
    head, separator, rest = text.partition(_NOT_READ)
    if not separator:
        return text
    return head + separator + ", ".join(_with_nearest(column) for column in rest.split(", "))


def explained(error: RecordingError, frames: Iterable[PackedFrame]) -> RecordingError:
    """Adds the columns of the frame, each with the nearest known name, to an error that one is missing."""
    for name, _, _, columns in frames:
        if str(error).startswith((f"{name}: there is no column time", f"{name}: no column is a reading")):
            shown = [_with_nearest(column) for column, _ in columns[:_SHOWN_COLUMNS]]
            more = "" if len(columns) <= _SHOWN_COLUMNS else f" and {len(columns) - _SHOWN_COLUMNS} more"
            text = f"{error}; the columns are {', '.join(shown)}{more}" if columns else str(error)
            return RecordingError(text, error.file or "", error.line or 0, error.field or "")
    return error


_SHOWN_COLUMNS = 8
_NOT_READ = "columns that are not read: "
_NAMES_OF_COLUMNS = {re.sub("[^a-z0-9]", "", column.lower()): column for column in _skeigiot._columns}


def _with_nearest(column: str) -> str:
    if column in _skeigiot._columns or column in ("time", "person"):
        return column
    plain = re.sub("[^a-z0-9]", "", column.lower())
    near = difflib.get_close_matches(plain, _NAMES_OF_COLUMNS, n=1, cutoff=0.75)
    return f"{column} (do you mean {_NAMES_OF_COLUMNS[near[0]]}?)" if near else column


def _columns_of(frame: Any) -> List[Tuple[str, Any]]:
    if isinstance(frame, Mapping):
        return [(str(name), _array_of(values)) for name, values in frame.items()]
    if not frame.columns.is_unique:
        raise ValueError("the frame has two columns of one name")
    if frame.index.name == "time" and "time" not in frame.columns:
        frame = frame.reset_index()
    return [(str(name), _array_of(frame[name])) for name in frame.columns]


def _array_of(values: Any) -> npt.NDArray[Any]:
    """Returns a column as an array; times with a zone become those of UTC."""
    dtype = getattr(values, "dtype", None)
    if getattr(dtype, "tz", None) is not None:  # of pandas
        values = getattr(values, "dt", values).tz_convert("UTC")
        values = getattr(values, "dt", values).tz_localize(None)
    elif getattr(dtype, "kind", "") == "M" and not isinstance(values, np.ndarray):
        raise ValueError(
            'the times have no time zone, so they could be any of many times; give them one, as tz_localize("UTC") does'
        )
    array = values.to_numpy() if hasattr(values, "to_numpy") else np.asarray(values)
    if array.ndim != 1:
        raise ValueError("a column is a list of single values")
    return array  # type: ignore[no-any-return]


def _plain(values: npt.NDArray[Any], place: str) -> Union[npt.NDArray[np.float64], List[str]]:
    if values.dtype.kind in "biuf":
        return np.ascontiguousarray(values, dtype=np.float64)
    texts = ["" if value is None else str(value) for value in values.tolist()]
    for text in set(texts):
        expect_text(place, text)
    return texts


def _moments_of(times: npt.NDArray[Any], name: str) -> Optional[npt.NDArray[np.int64]]:
    """Returns nanoseconds since 1970, or None if the times are seconds, or timedeltas since the start."""
    if times.dtype.kind == "M":
        return _nanoseconds(times, name)
    if times.dtype.kind in "iu":
        return np.ascontiguousarray(times, dtype=np.int64) if times.min() >= _LEAST_NANOSECONDS else None
    if times.dtype.kind == "O" and isinstance(times[0], datetime.datetime):
        return np.array(list(_from_datetimes(times, name)), dtype=np.int64)
    return None


def _seconds_of(times: npt.NDArray[Any], name: str) -> npt.NDArray[Any]:
    """Returns timedeltas in seconds; other times are unchanged."""
    if times.dtype.kind == "O" and isinstance(times[0], datetime.timedelta):
        strange = next((row for row, time in enumerate(times) if not isinstance(time, datetime.timedelta)), None)
        if strange is not None:
            raise _bad_time(f"{name}, row {strange}", f"expected a timedelta, found {times[strange]!r}")
        times = times.astype("timedelta64[ns]")
    if times.dtype.kind != "m":
        return times
    missing = np.flatnonzero(np.isnat(times))
    if missing.size > 0:
        raise _bad_time(f"{name}, row {missing[0]}", "is missing")
    return times.astype("timedelta64[ns]").astype(np.int64) / 1e9


def _nanoseconds(times: npt.NDArray[Any], name: str) -> npt.NDArray[np.int64]:
    missing = np.flatnonzero(np.isnat(times))
    if missing.size > 0:
        raise _bad_time(f"{name}, row {missing[0]}", "is missing")
    return np.ascontiguousarray(times.astype("datetime64[ns]").astype(np.int64))


def _from_datetimes(times: npt.NDArray[Any], name: str) -> Iterable[int]:
    for row, time in enumerate(times):
        if not isinstance(time, datetime.datetime):
            raise _bad_time(f"{name}, row {row}", f"expected a datetime, found {time!r}")
        yield _skeigiot.toNanoseconds(time)


def _bad_time(place: str, message: str) -> RecordingError:
    return RecordingError(f"{place}: time: {message}", place, 0, "time")
