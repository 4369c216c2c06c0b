"""Mood scores and classifiers, of the library and of Python."""

from collections.abc import Sequence
from typing import Optional

import pytest
from skeigiot.classification import (
    ArgmaxClassifierType,
    Coefficient,
    LinregMoodScore,
    LogregMoodScore,
    MoodClass,
    MoodClassifier,
    MoodClassifierType,
    MoodScore,
)


def classesOf(*scores: float) -> list[MoodClass]:
    classes = [MoodClass(str(i), i, LinregMoodScore(0, 0.0)) for i in range(len(scores))]
    for moodClass, score in zip(classes, scores):
        moodClass.score = score
    return classes


def test_classifying_reorders_the_list_and_returns_one_of_its_objects() -> None:
    classes = classesOf(0.25, 0.75, 0.5)
    before = list(classes)

    winner = MoodClassifier(ArgmaxClassifierType(0.1)).classify(classes)

    assert winner is before[1]
    assert [moodClass.name for moodClass in classes] == ["1", "2", "0"]
    assert all(any(moodClass is known for known in before) for moodClass in classes)


def test_without_a_clear_winner_the_list_stays_sorted() -> None:
    classes = classesOf(0.25, 0.5, 0.5)

    with pytest.raises(RuntimeError) as raised:
        MoodClassifier(ArgmaxClassifierType(0.0)).classify(classes)

    assert str(raised.value) == "unknown state: no clear winner found"
    assert [moodClass.score for moodClass in classes] == [0.5, 0.5, 0.25]


@pytest.mark.parametrize("scores", [(), (0.5,)])
def test_fewer_than_two_classes_are_refused(scores: tuple[float, ...]) -> None:
    with pytest.raises(ValueError, match="a classification needs two classes at least"):
        ArgmaxClassifierType(0.0).classify(MoodClassifier(ArgmaxClassifierType(0.0)), classesOf(*scores))


def test_a_class_keeps_the_latest_score_of_its_features() -> None:
    moodClass = MoodClass("sum", 1, LinregMoodScore(Coefficient([1.0, 2.0], 0.0)))
    moodClass.calculateScore([1.0, 2.0])
    assert moodClass.score == 2.5

    with pytest.raises(ValueError) as raised:
        moodClass.calculateScore([1.0])
    assert str(raised.value) == "Z vector size does not match the feature size"
    assert moodClass.score == 2.5


def test_classes_compare_by_their_scores() -> None:
    low, high = classesOf(0.25, 0.5)

    assert high > low and low < high and not low > high
    assert repr(high) == "<MoodClass(name='1', value=1, score=0.5)>"


def test_a_logistic_score_takes_new_weights() -> None:
    score = LogregMoodScore(3, 9.0)
    score.setWeights([0.0, 0.0], 0.0)

    assert score.calculateScore(None, [1.0, 1.0]) == 0.5


@pytest.mark.parametrize("score", [LinregMoodScore, LogregMoodScore])
def test_a_score_cannot_have_less_than_no_weights(score: "type[LinregMoodScore] | type[LogregMoodScore]") -> None:
    with pytest.raises(ValueError):
        score(-1, 0.0)


def test_a_coefficient_of_the_library_cannot_be_changed_through_its_copy() -> None:
    changed = LogregMoodScore.COEFFICIENT_POS()
    before = changed.weights
    changed.weights = [1.0]
    changed.intercept = 5.0

    assert LogregMoodScore.COEFFICIENT_POS() == Coefficient(before, -0.9510546)
    assert LogregMoodScore.COEFFICIENT_POS() != LinregMoodScore.COEFFICIENT_POS()


class Constant(MoodScore):
    def __init__(self, score: float) -> None:
        super().__init__()
        self.score = score

    def calculateScore(self, moodClass: Optional[MoodClass], features: Sequence[float]) -> float:
        if not features:
            raise LookupError("no features")
        return self.score


class Last(MoodClassifierType):
    def classify(self, classifier: MoodClassifier, classes: list[MoodClass]) -> MoodClass:
        return classes[-1]


def test_scores_and_rules_may_be_written_in_python() -> None:
    classes = [MoodClass("low", 0, Constant(0.25)), MoodClass("high", 1, Constant(0.5))]
    for moodClass in classes:
        moodClass.calculateScore([1.0])

    assert MoodClassifier(Last()).classify(classes).name == "high"
    assert MoodClassifier(ArgmaxClassifierType(0.0)).classify(classes).name == "high"
    assert MoodClassifier(Last()).classify(classes).name == "low"


def test_an_exception_of_a_score_leaves_the_class_as_it_was() -> None:
    moodClass = MoodClass("odd", 0, Constant(0.25))
    moodClass.score = 0.75

    with pytest.raises(LookupError, match="no features"):
        moodClass.calculateScore([])
    assert moodClass.score == 0.75


def test_a_score_and_a_rule_define_what_they_do() -> None:
    with pytest.raises(NotImplementedError, match="calculateScore"):
        MoodScore().calculateScore(None, [])
    with pytest.raises(NotImplementedError, match="classify"):
        MoodClassifier(MoodClassifierType()).classify([])


def test_what_is_no_score_or_rule_is_refused() -> None:
    with pytest.raises((TypeError, RuntimeError)):
        MoodClass("", 0, object())  # type: ignore[arg-type]
    with pytest.raises((TypeError, RuntimeError)):
        MoodClassifier(object())  # type: ignore[arg-type]
