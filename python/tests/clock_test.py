"""Times, and the clocks that replace the wall clock."""

import threading
from datetime import datetime, timedelta, timezone
from typing import Any, NoReturn

import pytest
import skeigiot as kv
from skeigiot import ko

NEW_YEAR = datetime(2020, 1, 1, tzinfo=timezone.utc)
NEW_YEAR_NS = 1577836800000000000


@pytest.mark.parametrize(
    "time, nanoseconds",
    [
        (0, 0),
        (-1, -1),
        (2**63 - 1, 2**63 - 1),
        (-(2**63), -(2**63)),
        (NEW_YEAR, NEW_YEAR_NS),
        (datetime(2020, 1, 1, 2, tzinfo=timezone(timedelta(hours=2))), NEW_YEAR_NS),
        (datetime(1969, 12, 31, 23, 59, 59, 999999, tzinfo=timezone.utc), -1000),
        (datetime(2020, 1, 1, 0, 0, 0, 1, tzinfo=timezone.utc), NEW_YEAR_NS + 1000),
    ],
)
def test_a_time_becomes_nanoseconds_since_the_epoch(time: "datetime | int", nanoseconds: int) -> None:
    assert ko.toNanoseconds(time) == nanoseconds


def test_a_time_of_pandas_keeps_its_nanoseconds() -> None:
    pandas = pytest.importorskip("pandas")

    assert ko.toNanoseconds(pandas.Timestamp(NEW_YEAR_NS + 123456789, tz="Europe/Paris")) == NEW_YEAR_NS + 123456789


def test_an_integer_of_numpy_is_a_time() -> None:
    numpy = pytest.importorskip("numpy")

    assert ko.toNanoseconds(numpy.int64(NEW_YEAR_NS)) == NEW_YEAR_NS


def test_a_time_without_a_zone_is_refused() -> None:
    with pytest.raises(ValueError, match="2020-01-01T00:00:00 has no time zone.*timezone.utc"):
        ko.toNanoseconds(datetime(2020, 1, 1))


@pytest.mark.parametrize("time", [2**63, -(2**63) - 1, datetime(2263, 1, 1, tzinfo=timezone.utc)])
def test_a_time_beyond_sixty_four_bits_is_refused(time: "datetime | int") -> None:
    with pytest.raises(ValueError, match="does not fit into 64-bit nanoseconds"):
        ko.toNanoseconds(time)


@pytest.mark.parametrize("time", [1.5, True, "2020-01-01", None])
def test_what_is_no_time_is_refused(time: object) -> None:
    with pytest.raises(TypeError):
        ko.toNanoseconds(time)  # type: ignore[arg-type]


@pytest.mark.parametrize("nanoseconds, microsecond", [(0, 0), (999, 0), (1000, 1), (-1, 999999), (-1001, 999998)])
def test_a_datetime_is_the_microsecond_that_a_time_lies_in(nanoseconds: int, microsecond: int) -> None:
    made = ko.toDatetime(nanoseconds)

    assert made.microsecond == microsecond
    assert made.tzinfo is timezone.utc


def test_the_wall_clock_is_that_of_python() -> None:
    before = datetime.now(timezone.utc) - timedelta(milliseconds=1)
    now = ko.toDatetime(ko.SystemClock.now())
    after = datetime.now(timezone.utc) + timedelta(milliseconds=1)

    assert before <= now <= after


def test_a_manual_clock_does_not_advance_until_it_is_moved() -> None:
    clock = ko.ManualClock(NEW_YEAR)
    assert clock.now() == NEW_YEAR_NS

    clock.advance(timedelta(seconds=1, microseconds=2))
    assert clock.now() == NEW_YEAR_NS + 1000002000
    clock.advance(-3)
    assert clock.now() == NEW_YEAR_NS + 1000001997
    clock.set(5)
    assert clock.now() == 5
    assert repr(clock) == "ManualClock(5)"


@pytest.mark.parametrize("step", [1.5, True, None, NEW_YEAR])
def test_what_is_no_duration_is_refused(step: object) -> None:
    with pytest.raises(TypeError):
        ko.ManualClock(0).advance(step)  # type: ignore[arg-type]


def test_a_scope_makes_a_source_the_clock_of_its_thread_alone() -> None:
    elsewhere = []
    with ko.ScopedClockSource(ko.ManualClock(7)):
        assert ko.SystemClock.now() == 7
        thread = threading.Thread(target=lambda: elsewhere.append(ko.SystemClock.now()))
        thread.start()
        thread.join()

    assert elsewhere[0] > NEW_YEAR_NS
    assert ko.SystemClock.now() > NEW_YEAR_NS


def test_scopes_nest_and_a_manual_clock_is_one_itself() -> None:
    with ko.ManualClock(1) as outer, ko.ScopedClockSource(ko.ManualClock(2)):
        assert ko.SystemClock.now() == 2
        with outer:
            assert ko.SystemClock.now() == 1
        assert ko.SystemClock.now() == 2


def test_a_scope_ends_with_an_exception_too() -> None:
    with pytest.raises(KeyError):
        with ko.ManualClock(1):
            raise KeyError

    assert ko.SystemClock.now() > NEW_YEAR_NS


def test_a_scope_cannot_end_before_those_inside_it_or_on_another_thread() -> None:
    outer, inner = ko.ManualClock(1), ko.ManualClock(2)
    errors = []

    def leaveElsewhere() -> None:
        try:
            inner.__exit__(None, None, None)
        except RuntimeError as error:
            errors.append(str(error))

    with outer, inner:
        with pytest.raises(RuntimeError, match="a scope ends on the thread that began it, before those around it"):
            outer.__exit__(None, None, None)
        thread = threading.Thread(target=leaveElsewhere)
        thread.start()
        thread.join()
        assert ko.SystemClock.now() == 2

    assert errors == ["a scope ends on the thread that began it, before those around it"]
    assert ko.SystemClock.now() > NEW_YEAR_NS


def test_an_open_scope_keeps_its_clock() -> None:
    scope = ko.ManualClock(3).__enter__()
    manager = ko.ScopedClockSource(ko.ManualClock(4))
    manager.__enter__()
    assert ko.SystemClock.now() == 4
    manager.__exit__(None, None, None)
    assert ko.SystemClock.now() == 3
    scope.__exit__(None, None, None)


class Stepping(ko.ClockSource):
    """Advances by a millisecond whenever it is read."""

    def __init__(self) -> None:
        super().__init__()
        self.looks = 0

    def now(self) -> datetime:
        self.looks += 1
        return NEW_YEAR + timedelta(milliseconds=self.looks)


def test_a_clock_may_be_written_in_python() -> None:
    source = Stepping()
    with ko.ScopedClockSource(source):
        assert ko.SystemClock.now() == NEW_YEAR_NS + 1000000
        person = kv.Person()
        person.update(kv.PersonObservation(touchEmotion=(NEW_YEAR, 1)))

    assert source.looks > 1
    assert person.personState.valence.value > 0.6


class Broken(ko.ClockSource):
    def now(self) -> NoReturn:
        raise OSError("no clock")


def test_an_exception_of_a_clock_reaches_the_caller() -> None:
    person = kv.Person()
    with ko.ScopedClockSource(Broken()):
        with pytest.raises(OSError, match="no clock"):
            ko.SystemClock.now()
        with pytest.raises(OSError, match="no clock"):
            person.update(kv.PersonObservation(touchEmotion=(NEW_YEAR, 1)))

    person.update(kv.PersonObservation(touchEmotion=1))
    assert person.personState.valence.value > 0.6


@pytest.mark.parametrize(
    "answer, error, message",
    [
        ("noon", TypeError, "now.. of a ClockSource: a time is an aware datetime or an int of nanoseconds .*, not 'noon'"),
        (1.5, TypeError, "now.. of a ClockSource: .* not 1.5"),
        (datetime(2020, 1, 1), ValueError, "now.. of a ClockSource: the datetime 2020-01-01T00:00:00 has no time zone"),
        (2**70, ValueError, "now.. of a ClockSource: the time does not fit into 64-bit nanoseconds"),
    ],
)
def test_a_clock_without_a_time_is_refused(answer: Any, error: type[Exception], message: str) -> None:
    class Odd(ko.ClockSource):
        def now(self) -> Any:
            return answer

    with ko.ScopedClockSource(Odd()):
        with pytest.raises(error, match=message):
            ko.SystemClock.now()
        with pytest.raises(error, match=message):
            kv.Person().update(kv.PersonObservation(touchEmotion=(NEW_YEAR, 1)))


def test_a_clock_source_without_now_is_refused() -> None:
    class Nothing(ko.ClockSource):
        pass

    with ko.ScopedClockSource(Nothing()):
        with pytest.raises(NotImplementedError, match=r"a class that derives from ClockSource must define now\(\)"):
            ko.SystemClock.now()


def test_what_is_no_clock_is_refused() -> None:
    with pytest.raises((TypeError, RuntimeError)):
        ko.ScopedClockSource(object())  # type: ignore[arg-type]
