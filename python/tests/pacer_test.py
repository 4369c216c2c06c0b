"""The pacer: updates once a cycle, however often a person is observed."""

from datetime import datetime, timedelta, timezone
from typing import Union

import pytest

import skeigiot as kv

START = datetime(2020, 1, 1, tzinfo=timezone.utc)


def at(seconds: float) -> datetime:
    return START + timedelta(seconds=seconds)


def facing(time: datetime, yaw: float = 0.0) -> kv.PersonObservation:
    return kv.PersonObservation(
        headPosture=kv.Timestamped(time, kv.HeadPosture(yaw, 0, 0)), gaze=kv.Timestamped(time, kv.Gaze(-yaw, 0))
    )


def smiling(time: datetime) -> kv.PersonObservation:
    observation = facing(time)
    observation.smile = kv.Timestamped(time, kv.Smile(1, 1))
    observation.expressions = kv.Timestamped(time, kv.Expressions(joy=(1.0, 1.0), calm=(0.0, 1.0)))
    return observation


def attention_after_a_turn(rate: float, cycle: Union[float, str]) -> float:
    """Three seconds after a head that turns at 5 degrees a second has passed 40 degrees."""
    pacer = kv.Pacer(cycle)
    person = kv.Person(1)
    clock = kv.ManualClock(START)
    with clock:
        for number in range(int(13 * rate) + 1):
            time = at(number / rate)
            clock.set(time)
            pacer.take(person, facing(time, min(60.0, 5.0 * max(0.0, number / rate - 2.0))))
    return person.personState.personAttention().value


@pytest.mark.parametrize("rate", [5, 10, 12, 15, 24, 25, 30, 60, 120])
def test_a_turning_head_is_noticed_at_every_rate(rate: float) -> None:
    assert attention_after_a_turn(rate, 10) < 0.3


def test_a_turning_head_is_not_noticed_at_the_rate_of_a_camera() -> None:
    assert attention_after_a_turn(30, "recorded") > 0.9


def test_it_updates_at_its_rate_and_says_so() -> None:
    clock = kv.ManualClock(START)
    pacer = kv.Pacer(cycle=8)
    person = kv.Person(1)
    updates = 0
    with clock:
        for number in range(600):
            clock.set(at(number / 60))
            updates += pacer.take(person, facing(at(number / 60)))
    assert abs(updates - 80) <= 1


def test_what_waits_is_taken_in_at_the_end() -> None:
    clock = kv.ManualClock(START)
    pacer = kv.Pacer()
    person = kv.Person(7)
    with clock:
        assert pacer.take(person, facing(START))
        assert not pacer.finish(person)
        clock.set(at(0.05))
        assert not pacer.take(person, smiling(at(0.05)))
        assert pacer.isWaiting(7)
        nanoseconds = round(at(0.2).timestamp() * 1000) * 1_000_000
        assert pacer.firstWaiting() == (7, nanoseconds)
        assert pacer.finish(person)
        assert person.personState.personValence().value > 0
    assert pacer.firstWaiting() is None


def test_a_person_seen_within_the_cycle_is_seen() -> None:
    clock = kv.ManualClock(START)
    pacer = kv.Pacer()
    person = kv.Person(1)
    with clock:
        pacer.take(person, facing(START))
        before = person.personState.personAttention().confidence
        clock.set(at(0.03))
        pacer.take(person, facing(at(0.03)))
        clock.set(at(0.1))
        assert pacer.takeNotSeen(person)
    assert person.personState.personAttention().confidence > before


def test_a_person_who_is_forgotten_or_restarted_is_updated_at_once() -> None:
    clock = kv.ManualClock(START)
    pacer = kv.Pacer()
    person = kv.Person(1)
    with clock:
        assert pacer.take(person, facing(START))
        assert not pacer.take(person, facing(START))
        pacer.restart(1)
        assert pacer.take(person, facing(START))
        pacer.forget(1)
        assert pacer.take(person, facing(START))


@pytest.mark.parametrize("cycle", [0, -1, 1000.5, float("nan"), "10", "often"])
def test_a_rate_that_is_none_is_refused(cycle: Union[float, str]) -> None:
    with pytest.raises(ValueError, match="cycle: expected a number of updates a second above 0, up to 1000"):
        kv.Pacer(cycle)
    with pytest.raises(ValueError, match="cycle: expected"):
        kv.replay({"time": [0.0], "smile": [0.5]}, cycle=cycle)


def test_a_replay_has_the_cycle_that_it_is_given() -> None:
    rows = {"time": [number / 30 for number in range(301)], "smile": [0.5] * 301}
    assert abs(kv.replay(rows).updates.rows - 101) <= 1
    assert abs(kv.replay(rows, cycle=5).updates.rows - 51) <= 1
    assert kv.replay(rows, cycle="recorded").updates.rows == 301


def test_what_is_no_rate_at_all_is_refused() -> None:
    with pytest.raises(TypeError, match="cycle: expected"):
        kv.Pacer(None)  # type: ignore[arg-type]
