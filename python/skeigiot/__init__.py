"""Estimates how the persons in front of a robot feel and attend.

Names are those of the C++ library (namespace ``KV``): ``skeigiot.PersonObservation`` is ``KV::PersonObservation``.
Its nested namespace is :mod:`skeigiot.classification`; the clock and the log of the middleware are in
:mod:`skeigiot.ko`, whose most used names are here as well.

Numbers are of single precision in the library, whatever Python passes in. A call that may wait for a lock of the
library lets other threads of Python run meanwhile; a callback holds the interpreter for its own run only.

Errors: ``ValueError`` for a bad argument, ``LookupError`` for an empty memory, ``RuntimeError`` for no clear winner,
each with the text that the C++ exception has; ``TypeError`` for an argument of the wrong type.
"""

from . import _built  # isort: skip  # first: its error names the right Python version

from . import classification, ko, study
from ._agree import Agreement, agree
from ._boundaries import restoredBoundaries
from ._replay import replay, replay_all
from ._result import Columns, PersonVerdict, RecordingError, RecordingWarning, Replay, ScopeVerdict
from ._settings import FORMATS
from ._skeigiot import (
    AmbianceDescription,
    AmbianceState,
    BodyLanguageDescription,
    BodyLanguageEase,
    BodyLanguageState,
    ContextEmotion,
    ExcitationState,
    Expressions,
    FacialPoints,
    Force,
    Gaze,
    HeadPosture,
    KVEmotionRecorder,
    Pacer,
    Person,
    PersonDescription,
    PersonMemory,
    PersonObservation,
    PersonState,
    PleasureState,
    PointDescription,
    Quantity,
    Ramp,
    RampSlope,
    Remembered,
    RobotHeadPosture,
    ScopedForceObserver,
    ShortTermMemory,
    Smile,
    SocialGraph,
    Timestamped,
    ValueConfidence,
    Verdict,
    VoiceEmotion,
    ZoneChange,
    ZoneEvidence,
    __version__,
    attentionZonesStringMapping,
    greatestReading,
    isFinite,
    leaveOutNonFinite,
)
from ._studyresults import StudyResults, open_results
from .ko import AttentionState, ClockSource, ManualClock, ScopedClockSource, SystemClock

__all__ = [
    "Agreement",
    "AmbianceDescription",
    "AmbianceState",
    "AttentionState",
    "BodyLanguageDescription",
    "BodyLanguageEase",
    "BodyLanguageState",
    "ClockSource",
    "Columns",
    "ContextEmotion",
    "ExcitationState",
    "Expressions",
    "FORMATS",
    "FacialPoints",
    "Force",
    "Gaze",
    "HeadPosture",
    "KVEmotionRecorder",
    "ManualClock",
    "Pacer",
    "Person",
    "PersonDescription",
    "PersonMemory",
    "PersonObservation",
    "PersonState",
    "PersonVerdict",
    "PleasureState",
    "PointDescription",
    "Quantity",
    "Ramp",
    "RampSlope",
    "RecordingError",
    "RecordingWarning",
    "Remembered",
    "Replay",
    "RobotHeadPosture",
    "ScopeVerdict",
    "ScopedClockSource",
    "ScopedForceObserver",
    "ShortTermMemory",
    "Smile",
    "SocialGraph",
    "StudyResults",
    "SystemClock",
    "Timestamped",
    "ValueConfidence",
    "Verdict",
    "VoiceEmotion",
    "ZoneChange",
    "ZoneEvidence",
    "__version__",
    "agree",
    "attentionZonesStringMapping",
    "classification",
    "greatestReading",
    "isFinite",
    "ko",
    "leaveOutNonFinite",
    "open_results",
    "replay",
    "replay_all",
    "restoredBoundaries",
    "study",
]
