"""Memories of readings."""

import copy
import pickle
import threading
from collections.abc import Callable
from datetime import timedelta
from typing import Any

import pytest
import skeigiot as kv
from skeigiot import ko

from observation_test import EVERY_READING

SECOND = 1000000000

KINDS = [
    (kv.HeadPosture, "headPosture"),
    (float, "distance"),
    (bool, "speaking"),
    (kv.Smile, "smile"),
    (kv.Gaze, "gaze"),
    (kv.Expressions, "expressions"),
    (kv.ValueConfidence[bool], "gender"),
    (kv.ValueConfidence[int], "age"),
    (kv.FacialPoints, "facialPoints"),
    (int, "touchEmotion"),
    (kv.ContextEmotion, "contextEmotion"),
    (kv.RobotHeadPosture, "robotHeadPosture"),
]


@pytest.mark.parametrize("kind, name", KINDS, ids=[name for _, name in KINDS])
def test_there_is_a_memory_of_each_kind_of_reading(kind: Any, name: str) -> None:
    memory = kv.ShortTermMemory(kind, timedelta(seconds=7))
    with ko.ManualClock(0):
        memory.record((5, EVERY_READING[name]))

        assert memory.youngest() == kv.Timestamped(5, EVERY_READING[name])
        assert memory.records() == [kv.Timestamped(5, EVERY_READING[name])]


@pytest.mark.parametrize("kind", [str, kv.Person, kv.ValueConfidence, kv.ValueConfidence[float], None])
def test_there_is_no_memory_of_anything_else(kind: Any) -> None:
    with pytest.raises(TypeError, match="there is no memory of"):
        kv.ShortTermMemory(kind, timedelta(seconds=7))


def test_a_memory_of_one_kind_refuses_another() -> None:
    memory = kv.ShortTermMemory(kv.Smile, timedelta(seconds=7))
    with pytest.raises(TypeError, match="a reading of this memory cannot be"):
        memory.record(kv.Gaze())  # type: ignore[arg-type]

    assert memory.records() == []


def test_an_empty_memory_has_no_youngest_record() -> None:
    memory = kv.ShortTermMemory(float, timedelta(seconds=7))

    with pytest.raises(LookupError) as raised:
        memory.youngest()
    assert str(raised.value) == "The ShortTermMemory is empty."


def test_records_are_kept_newest_first_and_one_for_each_time() -> None:
    memory = kv.ShortTermMemory(float, timedelta(seconds=7))
    with ko.ManualClock(3 * SECOND):
        memory.record((1 * SECOND, 0.25))
        memory.record((3 * SECOND, 0.75))
        memory.record((2 * SECOND, 0.5))
        memory.record((2 * SECOND, 9.0))

        assert [record.value for record in memory.records()] == [0.75, 0.5, 0.25]
        assert memory.youngest().value == 0.75


def test_a_plain_value_is_of_the_current_time() -> None:
    memory = kv.ShortTermMemory(float, timedelta(seconds=7))
    with ko.ManualClock(3 * SECOND):
        memory.record(0.5)

        assert memory.youngest() == kv.Timestamped(3 * SECOND, 0.5)


def test_old_records_are_forgotten_when_the_memory_is_read() -> None:
    memory = kv.ShortTermMemory(float, timedelta(seconds=7))
    with ko.ManualClock(0) as clock:
        memory.record(0.5)
        clock.advance(timedelta(seconds=8))
        assert memory._isTooOld((0, 0.5))
        assert len(memory.records()) == 1
        with pytest.raises(LookupError):
            memory.youngest()
        assert memory.records() == []


def test_a_memory_forgets_when_asked() -> None:
    memory = kv.ShortTermMemory(float, timedelta(seconds=7))
    with ko.ManualClock(0) as clock:
        memory.record(0.5)
        clock.advance(8 * SECOND)
        memory._forgetOld()

    assert memory.records() == []


def test_a_horizon_is_whole_milliseconds() -> None:
    assert kv.ShortTermMemory(float, timedelta(seconds=7)).horizon() == timedelta(seconds=7)
    assert kv.ShortTermMemory(float, 7 * SECOND).horizon() == timedelta(seconds=7)
    with pytest.raises(ValueError, match="whole milliseconds"):
        kv.ShortTermMemory(float, timedelta(microseconds=1))
    with pytest.raises(TypeError):
        kv.ShortTermMemory(float, 7.0)  # type: ignore[arg-type]


def test_a_person_memory_is_read_by_the_estimate() -> None:
    person = kv.Person()
    with ko.ManualClock(SECOND):
        person.personMemory.add(kv.PersonObservation(touchEmotion=1))
        person._updateOnlineModels(kv.PersonObservation())

    assert person.personState.valence.value > 0.6


class Waiting(ko.ClockSource):
    """Waits, the first time that it is read, until the test lets it continue."""

    def __init__(self) -> None:
        super().__init__()
        self.lookedAt, self.goOn = threading.Event(), threading.Event()

    def now(self) -> int:
        self.lookedAt.set()
        assert self.goOn.wait(timeout=60)
        return 0


OPERATIONS: dict[str, Callable[[kv.ShortTermMemory[float]], object]] = {
    "record": lambda memory: memory.record((1, 0.5)),
    "youngest": lambda memory: memory.youngest(),
    "records": lambda memory: memory.records(),
    "_forgetOld": lambda memory: memory._forgetOld(),
}


@pytest.mark.parametrize("operation", OPERATIONS)
def test_other_threads_run_while_one_waits_for_the_memory(operation: str) -> None:
    """A clock in Python is read while the memory is locked, and waits for this thread to run."""
    memory, clock, order = kv.ShortTermMemory(float, timedelta(days=36500)), Waiting(), list[str]()
    memory.record((0, 0.25))
    begun = threading.Event()

    def hold() -> None:
        with ko.ScopedClockSource(clock):
            memory.youngest()

    def wait() -> None:
        begun.set()
        OPERATIONS[operation](memory)
        order.append("operation")

    holder, waiter = (threading.Thread(target=work, daemon=True) for work in (hold, wait))
    holder.start()
    assert clock.lookedAt.wait(timeout=60)
    waiter.start()
    assert begun.wait(timeout=60)
    order.append("clock")
    clock.goOn.set()
    holder.join(timeout=60)
    waiter.join(timeout=60)

    assert order == ["clock", "operation"]


def test_a_person_returns_the_memory_of_a_reading() -> None:
    person = kv.Person()
    with ko.ManualClock(10 * SECOND) as clock:
        person.update(kv.PersonObservation(age=kv.ValueConfidence(33, 0.5)))
        clock.advance(SECOND)
        person.update(kv.PersonObservation(age=kv.ValueConfidence(34, 0.5)))

        remembered = person.personMemory.remembered("age")

        assert remembered == kv.Remembered(2, kv.Timestamped(11 * SECOND, kv.ValueConfidence(34, 0.5)))
        assert repr(remembered).startswith("Remembered(count=2, youngest=Timestamped(")


def test_readings_older_than_the_horizon_are_not_returned() -> None:
    memory = kv.PersonMemory()
    with ko.ManualClock(10 * SECOND) as clock:
        memory.add(kv.PersonObservation(speaking=True))
        clock.advance(7 * SECOND)
        assert memory.remembered("speaking").count == 1
        clock.advance(SECOND)
        assert memory.remembered("speaking") == kv.Remembered(0, None)


@pytest.mark.parametrize("name", EVERY_READING)
def test_each_reading_can_be_asked_for(name: str) -> None:
    memory = kv.PersonMemory()
    with ko.ManualClock(SECOND):
        memory.add(kv.PersonObservation(**{name: EVERY_READING[name]}))
        isRemembered = name not in ("headHeight", "voiceEmotion")
        assert memory.remembered(name).count == int(isRemembered)
        youngest = memory.remembered(name).youngest
        assert (youngest == kv.Timestamped(SECOND, EVERY_READING[name])) == isRemembered


def test_only_readings_can_be_asked_for() -> None:
    with pytest.raises(ValueError, match="there is no reading 'mood'"):
        kv.PersonMemory().remembered("mood")


def test_a_copy_of_a_memory_has_the_same_records_and_keeps_its_own() -> None:
    with ko.ManualClock(10 * SECOND):
        memory = kv.ShortTermMemory(float, timedelta(seconds=7))
        memory.record((8 * SECOND, 0.25))
        memory.record((9 * SECOND, 0.5))
        for same in (copy.copy(memory), copy.deepcopy(memory)):
            assert same.records() == memory.records()
            assert same.horizon() == memory.horizon()
            same.record((10 * SECOND, 0.75))
            assert len(same.records()) == 3 and len(memory.records()) == 2


def test_a_memory_says_why_it_cannot_be_pickled() -> None:
    with pytest.raises(TypeError, match=r"a ShortTermMemory cannot be pickled, .*; pickle its records\(\)"):
        pickle.dumps(kv.ShortTermMemory(float, SECOND))


def test_a_copy_of_the_memories_of_a_person_is_another_handle() -> None:
    memory = kv.PersonMemory()
    assert isinstance(copy.copy(memory), kv.PersonMemory)


@pytest.mark.parametrize("handle", [kv.PersonMemory(), kv.PersonState(), kv.Person(1)])
def test_handles_say_why_there_is_no_deep_copy_and_no_pickle(handle: Any) -> None:
    operations: list[Callable[[Any], object]] = [copy.deepcopy, pickle.dumps]
    for operation in operations:
        with pytest.raises(TypeError, match=f"a {type(handle).__name__} .* handle.*no deep copy and no pickle"):
            operation(handle)


def test_a_copy_of_a_state_is_a_live_view() -> None:
    state = kv.PersonState()
    same = copy.copy(state)
    state._setValence(0.5)

    assert same.valence.value == 0.5
