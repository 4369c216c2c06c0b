"""The middleware below the library: its clock, its log, and its vocabulary of human perception.

A time is an aware ``datetime`` or an ``int`` of nanoseconds since the Unix epoch where it is passed in. It comes out as
those nanoseconds, which lose nothing; :func:`toDatetime` makes a ``datetime`` of them. A ``datetime`` without a time
zone is refused, since it could be any of many times.

Log records of the library arrive in Python's ``logging``, under loggers with the names of :func:`categories`.
"""

from ._skeigiot import (
    AttentionState,
    ClockSource,
    ManualClock,
    ScopedClockSource,
    SystemClock,
    categories,
    toDatetime,
    toNanoseconds,
)

__all__ = [
    "AttentionState",
    "ClockSource",
    "ManualClock",
    "ScopedClockSource",
    "SystemClock",
    "categories",
    "toDatetime",
    "toNanoseconds",
]
