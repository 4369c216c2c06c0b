"""Observations: readings that are there or not, each with a time."""

import copy
import pickle
import re
from datetime import datetime, timezone
from typing import Any

import numpy as np
import pytest
import skeigiot as kv
from skeigiot import ko

EVERY_READING: dict[str, Any] = {
    "lookingAtRobot": True,
    "headHeight": 1.5,
    "distance": 1.25,
    "gaze": kv.Gaze(1.0, 2.0),
    "smile": kv.Smile(0.5, 0.25),
    "expressions": kv.Expressions(joy=(0.5, 0.25)),
    "headPosture": kv.HeadPosture(1.0, 2.0, 3.0),
    "gender": kv.ValueConfidence(True, 0.5),
    "age": kv.ValueConfidence(31, 0.5),
    "faceDetected": False,
    "facialPoints": kv.FacialPoints([((1.0, 2.0), 0.5)]),
    "voiceEmotion": kv.VoiceEmotion(calm=(0.5, 0.25)),
    "asrEmotion": -0.5,
    "touchEmotion": -1,
    "contextEmotion": kv.ContextEmotion(1, 2.0),
    "speaking": True,
    "robotHeadPosture": kv.RobotHeadPosture(1.0, 2.0),
}


def test_these_are_all_readings() -> None:
    names = [name for name, found in vars(kv.PersonObservation).items() if isinstance(found, property)]

    assert names == list(EVERY_READING)


def test_an_observation_without_readings_is_valid() -> None:
    observation = kv.PersonObservation()

    assert all(getattr(observation, name) is None for name in EVERY_READING)
    assert repr(observation) == "PersonObservation()"
    assert observation == kv.PersonObservation()


@pytest.mark.parametrize("name", EVERY_READING)
def test_a_plain_value_is_stamped_with_the_current_time(name: str) -> None:
    with ko.ManualClock(42):
        made = kv.PersonObservation(**{name: EVERY_READING[name]})
        assigned = kv.PersonObservation()
        setattr(assigned, name, EVERY_READING[name])

    assert getattr(made, name) == kv.Timestamped(42, EVERY_READING[name])
    assert assigned == made


@pytest.mark.parametrize("name", EVERY_READING)
def test_a_pair_of_time_and_value_keeps_its_time(name: str) -> None:
    value = EVERY_READING[name]
    readings: list[tuple[int, Any]] = [
        (7, (7, value)),
        (0, (datetime.fromtimestamp(0, timezone.utc), value)),
        (7, kv.Timestamped(7, value)),
    ]
    for time, reading in readings:
        assert getattr(kv.PersonObservation(**{name: reading}), name) == kv.Timestamped(time, value)


@pytest.mark.parametrize("name", EVERY_READING)
def test_a_reading_is_taken_away_with_none(name: str) -> None:
    observation = kv.PersonObservation(**{name: EVERY_READING[name]})
    setattr(observation, name, None)

    assert observation == kv.PersonObservation()
    assert observation == kv.PersonObservation(**{name: None})


@pytest.mark.parametrize("name", EVERY_READING)
def test_a_value_of_another_type_is_refused_by_name_and_says_what_is_expected(name: str) -> None:
    wrong: Any = "nothing"
    with pytest.raises(TypeError, match=name + r" cannot be 'nothing': expected .*; a pair is \(time, value\)$") as raised:
        kv.PersonObservation(**{name: wrong})
    example = re.search(r", such as (.*);", str(raised.value))
    if example:
        made = eval(example.group(1), vars(kv).copy())
        assert kv.PersonObservation(**{name: made}) != kv.PersonObservation()


@pytest.mark.parametrize(
    "wrong, message",
    [
        ({"smile": 0.5}, r"smile cannot be 0.5: expected Smile\(value, confidence\), such as Smile\(0.8, 0.9\); a pair"),
        ({"gaze": (0.5, 1)}, r"gaze cannot be \(0.5, 1\): expected Gaze\(yaw, pitch\) in degrees"),
        ({"age": 34}, r"age cannot be 34: expected ValueConfidence\(value, confidence\) with a whole number"),
        ({"distance": "far"}, "distance cannot be 'far': expected a number"),
        ({"speaking": 1}, "speaking cannot be 1: expected True or False"),
        ({"lookingAtRobot": 0.1}, "lookingAtRobot cannot be 0.1: expected True or False"),
        ({"faceDetected": (7, 0)}, "faceDetected cannot be 0: expected True or False"),
    ],
)
def test_a_bare_number_is_refused_with_the_expected_type(wrong: Any, message: str) -> None:
    with pytest.raises(TypeError, match=message):
        kv.PersonObservation(**wrong)


def test_a_truth_of_numpy_is_one() -> None:
    truths = np.array([0.2, 0.8]) > 0.5
    for wanted, truth in zip((False, True), truths):
        made = kv.PersonObservation(speaking=(7, truth))
        assert made.speaking is not None and made.speaking.value is wanted


def test_values_that_are_given_together_have_one_time() -> None:
    observation = kv.PersonObservation(**EVERY_READING)

    assert len({getattr(observation, name).time for name in EVERY_READING}) == 1


def test_a_name_that_is_no_reading_is_refused() -> None:
    with pytest.raises(TypeError, match=r"unexpected keyword argument 'smiel'; do you mean 'smile'\?$"):
        kv.PersonObservation(smiel=kv.Smile())  # type: ignore[call-arg]
    with pytest.raises(TypeError, match="unexpected keyword argument 'hat'$"):
        kv.PersonObservation(hat=kv.Smile())  # type: ignore[call-arg]


def test_a_time_without_a_zone_is_refused() -> None:
    with pytest.raises(ValueError, match="has no time zone"):
        kv.PersonObservation(smile=(datetime(2020, 1, 1), kv.Smile()))


@pytest.mark.parametrize("reading", [(1, 2, 3), (1,), ("now", 1.0)])
def test_what_is_no_pair_of_time_and_value_is_refused(reading: Any) -> None:
    with pytest.raises(TypeError):
        kv.PersonObservation(distance=reading)


@pytest.mark.parametrize("age", [-1, 2**32])
def test_an_age_out_of_range_is_refused(age: int) -> None:
    with pytest.raises(ValueError, match=f"the value {age} is out of range"):
        kv.PersonObservation(age=kv.ValueConfidence(age, 1.0))


def test_what_is_read_is_a_copy() -> None:
    observation = kv.PersonObservation(gaze=kv.Gaze(1.0, 2.0))
    assert observation.gaze is not None
    observation.gaze.value.yaw = 9.0

    assert observation.gaze.value.yaw == 1.0


def test_an_observation_shows_the_readings_that_are_there() -> None:
    observation = kv.PersonObservation(touchEmotion=(7, 1), distance=(5, 1.5))

    assert repr(observation) == (
        "PersonObservation(distance=Timestamped(time=5, value=1.5), touchEmotion=Timestamped(time=7, value=1))"
    )
    assert eval(repr(observation), vars(kv).copy()) == observation


def test_an_observation_equals_its_copies_and_pickles() -> None:
    observation = kv.PersonObservation(**EVERY_READING)

    for same in (copy.copy(observation), copy.deepcopy(observation), pickle.loads(pickle.dumps(observation))):
        assert same == observation
    changed = copy.copy(observation)
    changed.distance = None
    assert changed != observation
