"""Scores of mood classes, and the rules by which one of them wins."""

from ._skeigiot import (
    ArgmaxClassifierType,
    Coefficient,
    LinregMoodScore,
    LogregMoodScore,
    MoodClass,
    MoodClassifier,
    MoodClassifierType,
    MoodScore,
)

__all__ = [
    "ArgmaxClassifierType",
    "Coefficient",
    "LinregMoodScore",
    "LogregMoodScore",
    "MoodClass",
    "MoodClassifier",
    "MoodClassifierType",
    "MoodScore",
]
