"""Data frames, as the compiled part takes them."""

from __future__ import annotations

import datetime
from collections.abc import Mapping
from typing import Any, Iterable, List, Optional, Tuple, Union

import numpy as np
import numpy.typing as npt

from . import _skeigiot
from ._result import RecordingError

PackedColumn = Tuple[str, Union["npt.NDArray[np.float64]", List[str]]]
PackedFrame = Tuple[str, int, Optional["npt.NDArray[np.int64]"], List[PackedColumn]]

_LEAST_NANOSECONDS = 10**12
"""What is less counts seconds: as nanoseconds since 1970 it would be within the first 17 minutes of that year."""


def is_frame(source: Any) -> bool:
    """Tells a pandas frame, or a dict of columns, from what names a recording."""
    return isinstance(source, Mapping) or hasattr(source, "columns")


def pack(frame: Any, name: str) -> PackedFrame:
    """Returns name, number of rows, the times if they are moments [ns], and the columns: numbers, NaN where there is
    none, or texts.

    Raises ValueError if this is no table, or its times are not such.
    """
    columns = _columns_of(frame)
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
        packed.append((column, _plain(values)))
    return name, rows, moments, packed


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


def _plain(values: npt.NDArray[Any]) -> Union[npt.NDArray[np.float64], List[str]]:
    if values.dtype.kind in "biuf":
        return np.ascontiguousarray(values, dtype=np.float64)
    return ["" if value is None else str(value) for value in values.tolist()]


def _moments_of(times: npt.NDArray[Any], name: str) -> Optional[npt.NDArray[np.int64]]:
    """Returns nanoseconds since 1970, or None if the times are in seconds."""
    if times.dtype.kind == "M":
        return _nanoseconds(times, name)
    if times.dtype.kind in "iu":
        return np.ascontiguousarray(times, dtype=np.int64) if times.min() >= _LEAST_NANOSECONDS else None
    if times.dtype.kind == "O" and isinstance(times[0], datetime.datetime):
        return np.array(list(_from_datetimes(times, name)), dtype=np.int64)
    return None


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
