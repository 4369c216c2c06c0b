"""The process-wide boundaries as they were."""

from collections.abc import Iterator
from contextlib import contextmanager

from ._skeigiot import AmbianceState, PersonState

_BOUNDARIES = (
    (PersonState.getBinaryBoundaryPositive, PersonState.setBinaryBoundaryPositive),
    (PersonState.getBinaryBoundaryNegative, PersonState.setBinaryBoundaryNegative),
    (PersonState.getBinaryBoundaryLookingAtRobot, PersonState.setBinaryBoundaryLookingAtRobot),
    (PersonState.getBinaryBoundaryStrictlyLookingAtRobot, PersonState.setBinaryBoundaryStrictlyLookingAtRobot),
    (PersonState.getBinaryBoundaryConfidence, PersonState.setBinaryBoundaryConfidence),
    (AmbianceState.getBinaryBoundaryExcited, AmbianceState.setBinaryBoundaryExcited),
)


@contextmanager
def restoredBoundaries() -> Iterator[None]:
    """Gives all process-wide boundaries back, at the end of a ``with`` statement, the values that they had before it.

    Boundaries concern every thread: what other threads set meanwhile is undone as well.
    """
    before = [get() for get, _ in _BOUNDARIES]
    try:
        yield
    finally:
        for value, (_, restore) in zip(before, _BOUNDARIES):
            restore(value)
