"""Estimates how the persons in front of a robot feel and attend."""

from . import classification, ko
from ._errors import RecordingError, RecordingWarning
from ._replay import FORMATS, Columns, PersonVerdict, Replay, ScopeVerdict, replay, replay_all

__all__ = [
    "Columns",
    "FORMATS",
    "PersonVerdict",
    "RecordingError",
    "RecordingWarning",
    "Replay",
    "ScopeVerdict",
    "classification",
    "ko",
    "replay",
    "replay_all",
]
