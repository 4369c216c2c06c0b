"""The records: what they store, and how Python shows, compares and copies them."""

import copy
import math
import pickle
import struct
from typing import Any

import pytest
import skeigiot as kv

RECORDS = [
    (kv.Gaze(1.5, -2.0), "Gaze(yaw=1.5, pitch=-2.0)"),
    (kv.HeadPosture(1.0, 2.0, 3.0), "HeadPosture(yaw=1.0, pitch=2.0, roll=3.0)"),
    (kv.RobotHeadPosture(0.1, 1e-10), "RobotHeadPosture(yaw=0.1, pitch=1e-10)"),
    (kv.Smile(0.8, 0.9), "Smile(value=0.8, confidence=0.9)"),
    (kv.ContextEmotion(-1, 2.5), "ContextEmotion(valence=-1, lifetime=2.5)"),
    (kv.ValueConfidence(True, 0.1), "ValueConfidence(value=True, confidence=0.1)"),
    (kv.ValueConfidence(31, 0.1), "ValueConfidence(value=31, confidence=0.1)"),
    (kv.ValueConfidence(0.3, 0.1), "ValueConfidence(value=0.3, confidence=0.1)"),
    (kv.Timestamped(5, kv.Gaze()), "Timestamped(time=5, value=Gaze(yaw=0.0, pitch=0.0))"),
    (kv.BodyLanguageEase(-0.5, 0.5), "BodyLanguageEase(level=-0.5, confidence=0.5)"),
    (
        kv.VoiceEmotion(joy=(0.5, 1.0)),
        "VoiceEmotion(calm=ValueConfidence(value=0.0, confidence=0.0), "
        "anger=ValueConfidence(value=0.0, confidence=0.0), joy=ValueConfidence(value=0.5, confidence=1.0), "
        "sorrow=ValueConfidence(value=0.0, confidence=0.0), laughter=ValueConfidence(value=0.0, confidence=0.0), "
        "excitement=ValueConfidence(value=0.0, confidence=0.0))",
    ),
]


def named(cases: list[tuple[Any, str]]) -> list[Any]:
    return [pytest.param(*case, id=case[1].split(", confidence")[0][:40]) for case in cases]


@pytest.mark.parametrize("record, shown", named(RECORDS))
def test_a_record_shows_what_it_is_made_from(record: Any, shown: str) -> None:
    assert repr(record) == shown
    assert eval(shown, vars(kv).copy()) == record


@pytest.mark.parametrize("record, shown", named(RECORDS))
def test_a_record_equals_its_copies_and_pickles(record: Any, shown: str) -> None:
    for same in (copy.copy(record), copy.deepcopy(record), pickle.loads(pickle.dumps(record))):
        assert same is not record
        assert same == record
        assert type(same) is type(record)


def test_records_differ_by_any_field_and_by_their_class() -> None:
    assert kv.Gaze(1.0, 2.0) != kv.Gaze(1.0, 3.0)
    assert kv.Gaze(1.0, 2.0) != kv.RobotHeadPosture(1.0, 2.0)
    assert kv.Gaze(math.nan, 0.0) != kv.Gaze(math.nan, 0.0)
    assert kv.Gaze(1.0, 2.0) != (1.0, 2.0)


def test_records_that_can_change_have_no_hash() -> None:
    with pytest.raises(TypeError):
        hash(kv.Gaze())
    assert hash(kv.ValueConfidence(1.0, 0.5)) == hash(kv.ValueConfidence(1.0, 0.5))
    assert hash(kv.Timestamped(1, "a")) == hash(kv.Timestamped(1, "a"))


def test_fields_are_keywords_with_zero_as_default() -> None:
    assert kv.Gaze(pitch=2.0) == kv.Gaze(0.0, 2.0)
    assert kv.HeadPosture() == kv.HeadPosture(yaw=0.0, pitch=0.0, roll=0.0)
    assert kv.Smile() == kv.Smile(value=0.0, confidence=0.0)
    assert kv.Expressions() == kv.Expressions(calm=(0.0, 0.0), surprise=(0.0, 0.0))
    assert kv.ValueConfidence() == kv.ValueConfidence(0.0, 0.0)
    with pytest.raises(TypeError):
        kv.ContextEmotion()  # type: ignore[call-arg]


def test_numbers_are_stored_in_single_precision() -> None:
    (single,) = struct.unpack("f", struct.pack("f", 0.1))

    assert kv.Gaze(0.1).yaw == single != 0.1
    assert math.isnan(kv.Gaze(math.nan).yaw)
    assert kv.Gaze(1e300).yaw == math.inf


@pytest.mark.parametrize("value", ["1", None, object()])
def test_what_is_no_number_is_refused(value: object) -> None:
    with pytest.raises(TypeError):
        kv.Gaze(yaw=value)  # type: ignore[arg-type]
    with pytest.raises(TypeError):
        kv.ValueConfidence(value, 0.5)


def test_a_record_has_no_other_fields() -> None:
    with pytest.raises(AttributeError):
        kv.Gaze().yaww = 1.0  # type: ignore[attr-defined]
    with pytest.raises(TypeError):
        kv.Gaze(yaww=1.0)  # type: ignore[call-arg]


def test_a_head_posture_is_set_by_field_and_by_operation() -> None:
    posture = kv.HeadPosture()
    posture.yaw = 1.0
    posture.setPitch(2.0)
    posture.setRoll(3.0)
    assert posture == kv.HeadPosture(1.0, 2.0, 3.0)

    posture.setHeadPosture(4.0, 5.0, 6.0)
    posture.setYaw(7.0)
    assert posture == kv.HeadPosture(7.0, 5.0, 6.0)
    assert (kv.HeadPosture.upBoundary, kv.HeadPosture.leftBoundary) == (6.0, -6.0)


def test_a_smile_is_read_and_set_as_one_value() -> None:
    smile = kv.Smile(0.5, 0.25)
    assert smile.smile() == kv.ValueConfidence(0.5, 0.25)

    smile.setSmile((0.75, 1.0))
    assert smile == kv.Smile(0.75, 1.0)


def test_a_score_cannot_be_changed_in_place_but_be_replaced() -> None:
    expressions = kv.Expressions()
    with pytest.raises(AttributeError):
        expressions.joy.value = 0.5  # type: ignore[misc]

    expressions.joy = (0.5, 1.0)
    assert expressions.joy == kv.ValueConfidence(0.5, 1.0)
    expressions.joy = kv.ValueConfidence(0.25, 1.0)
    assert expressions.joy.value == 0.25


def test_a_score_unpacks_as_a_pair() -> None:
    value, confidence = kv.ValueConfidence(0.5, 0.25)

    assert (value, confidence) == (0.5, 0.25)


@pytest.mark.parametrize("pair", [(0.5,), (0.5, 1.0, 2.0), ("a", 1.0), (0.5, "a")])
def test_a_pair_that_is_no_score_is_refused(pair: Any) -> None:
    with pytest.raises((TypeError, RuntimeError)):
        kv.Expressions(joy=pair)


def test_a_voice_emotion_has_the_scores_of_expressions() -> None:
    voice = kv.VoiceEmotion(calm=(0.5, 1.0))

    assert isinstance(voice, kv.Expressions)
    assert voice.calm.value == 0.5
    assert voice.surprise == kv.ValueConfidence(0.0, 0.0)
    assert str(voice) == "Calm : "
    with pytest.raises(TypeError):
        kv.VoiceEmotion(surprise=(0.5, 1.0))  # type: ignore[call-arg]


def test_a_score_takes_a_whole_number_and_no_other_value() -> None:
    expressions = kv.Expressions()
    expressions.joy = kv.ValueConfidence(1, 0.5)
    assert expressions.joy == kv.ValueConfidence(1.0, 0.5)
    for value in (True, (1.0, 2.0)):
        with pytest.raises(TypeError):
            expressions.joy = kv.ValueConfidence(value, 0.5)  # type: ignore[arg-type]
    assert expressions.joy == kv.ValueConfidence(1.0, 0.5)


def test_numbers_that_are_not_finite_are_shown_as_python_shows_them() -> None:
    assert repr(kv.Gaze(math.nan, math.inf)) == "Gaze(yaw=nan, pitch=inf)"
    assert repr(kv.Gaze(-math.inf)) == "Gaze(yaw=-inf, pitch=0.0)"


def test_facial_points_are_made_of_points_in_order() -> None:
    points = kv.FacialPoints([((1.0, 2.0), 0.5), kv.ValueConfidence((3.0, 4.0), 0.25)])

    assert points.facialPoint(kv.PointDescription.FacialPoint1) == kv.ValueConfidence((3.0, 4.0), 0.25)
    assert points.points[0].value == (1.0, 2.0)
    assert len(points.points) == 12
    assert points == copy.deepcopy(points)
    assert points != kv.FacialPoints()
    with pytest.raises(ValueError, match="Error while getting point 12, wrong argument"):
        kv.FacialPoints([((0.0, 0.0), 0.0)] * 13)


def test_a_later_reading_is_greater_whatever_the_values() -> None:
    assert kv.Timestamped(2, "a") > kv.Timestamped(1, "b")
    assert not kv.Timestamped(1, "b") > kv.Timestamped(1, "a")
    assert kv.Timestamped(1, "b") < kv.Timestamped(2, "a")
    newestFirst = sorted([kv.Timestamped(1, 0), kv.Timestamped(3, 0), kv.Timestamped(2, 0)], reverse=True)
    assert [reading.time for reading in newestFirst] == [3, 2, 1]


def test_a_reading_unpacks_as_a_pair_and_has_a_datetime() -> None:
    time, value = kv.Timestamped(1500, "x")

    assert (time, value) == (1500, "x")
    assert kv.Timestamped(1500, "x").datetime.isoformat() == "1970-01-01T00:00:00.000001+00:00"


@pytest.mark.parametrize("value", [math.nan, math.inf, -math.inf, 1.001e30])
def test_readings_that_are_not_finite_can_be_kept_out(value: float) -> None:
    observation = kv.PersonObservation(gaze=kv.Gaze(value, 0.0), smile=kv.Smile(1.0, 1.0))

    assert not kv.isFinite(kv.Gaze(value, 0.0))
    assert not kv.isFinite(kv.HeadPosture(roll=value))
    assert not kv.isFinite(kv.VoiceEmotion(joy=(value, 0.0)))
    assert not kv.isFinite(observation)
    assert kv.leaveOutNonFinite(observation) == 1
    assert observation.gaze is None and observation.smile is not None
    assert kv.isFinite(observation)
    assert kv.isFinite(kv.Gaze(kv.greatestReading, -kv.greatestReading))
