"""Forces, in the form that Python gets."""

import struct
import threading
import traceback
from typing import Any, NoReturn

import pytest
import skeigiot as kv
from skeigiot import ko

TOUCH = kv.PersonObservation(touchEmotion=(0, 1))


def single(number: float) -> float:
    (rounded,) = struct.unpack("f", struct.pack("f", number))
    assert isinstance(rounded, float)
    return rounded


def test_every_force_of_an_update_is_shown() -> None:
    person, forces = kv.Person(), list[kv.Force]()
    with ko.ManualClock(5), kv.ScopedForceObserver(forces.append):
        person.update(TOUCH)

    touches = [force for force in forces if force.source == "Touch emotion"]
    assert {force.quantity for force in touches} >= {kv.Quantity.ValenceQuantity}
    assert {force.source_name for force in touches} == {"Touch"}, "in plain words"
    assert all(force.time == 5 for force in forces)
    assert forces[0].datetime.year == 1970


def test_the_estimate_can_be_rebuilt_from_the_forces_to_the_last_bit() -> None:
    person, forces = kv.Person(), list[kv.Force]()
    with ko.ManualClock(0), kv.ScopedForceObserver(forces.append):
        person.update(TOUCH)
        person.update(kv.PersonObservation(smile=(0, kv.Smile(0.9, 0.8)), gaze=(0, kv.Gaze(5.0, 3.0))))

    valence = 0.0
    for force in forces:
        if force.quantity is kv.Quantity.ValenceQuantity:
            assert force.before == valence
            pulled = single(valence + single(force.weight * single(force.target - valence)))
            valence = max(-1.0, min(1.0, pulled))
            assert force.after == valence
    assert person.personState.valence.value == valence != 0.0


def test_changes_of_the_zone_are_shown() -> None:
    person, changes = kv.Person(), list[kv.ZoneChange]()
    with ko.ManualClock(5), kv.ScopedForceObserver(None, changes.append):
        person.update(kv.PersonObservation(gaze=(5, kv.Gaze(25.0, 15.0))))

    (change,) = changes
    assert (change.from_, change.to) == (kv.AttentionState.Unknown, kv.AttentionState.LookingUpLeft)
    assert (change.evidence, change.time) == (kv.ZoneEvidence.GazeEvidence, 5)
    assert change == kv.ZoneChange(change.from_, change.to, change.evidence, change.time)
    assert repr(change).startswith("ZoneChange(from_=<AttentionState.Unknown: 0>, to=<AttentionState.LookingUpLeft: 6>")


def test_forces_are_shown_to_the_innermost_observer_of_their_thread_alone() -> None:
    outer, inner, person = list[kv.Force](), list[kv.Force](), kv.Person()
    with kv.ScopedForceObserver(outer.append):
        with kv.ScopedForceObserver(inner.append):
            person.update(TOUCH)
            elsewhere = threading.Thread(target=kv.Person().update, args=(TOUCH,))
            elsewhere.start()
            elsewhere.join()
        shownInside = len(inner)
        assert (len(outer), shownInside > 0) == (0, True)
        person.update(TOUCH)
    person.update(TOUCH)

    assert len(inner) == shownInside
    assert len(outer) > 0


def raiseOdd(_: Any) -> NoReturn:
    raise KeyError("odd")


def test_an_exception_of_an_observer_reaches_who_called_the_update() -> None:
    person = kv.Person()
    with kv.ScopedForceObserver(raiseOdd):
        with pytest.raises(KeyError, match="odd") as raised:
            person.update(kv.PersonObservation(touchEmotion=1))
    assert traceback.extract_tb(raised.value.__traceback__)[-1].name == "raiseOdd"

    person.update(kv.PersonObservation(touchEmotion=1))
    assert person.personState.valence.value != 0.0


def test_an_exception_of_an_observer_passes_through_the_graph() -> None:
    graph = kv.SocialGraph()
    with kv.ScopedForceObserver(raiseOdd):
        with pytest.raises(KeyError, match="odd"):
            graph.updateOrCreate(1, lambda person: person.update(kv.PersonObservation(touchEmotion=1)))

    graph.update(1, lambda person: person.update(kv.PersonObservation(touchEmotion=1)))
    assert graph.persons()[0].personState.valence.value != 0.0


def test_an_observer_may_read_the_state() -> None:
    person, seen = kv.Person(), list[float]()
    with kv.ScopedForceObserver(lambda force: seen.append(person.personState.valence.value)):
        person.update(TOUCH)

    assert seen[-1] == person.personState.valence.value


def test_an_observer_ends_where_it_began() -> None:
    outer, inner = kv.ScopedForceObserver(None), kv.ScopedForceObserver(None)
    with outer, inner:
        with pytest.raises(RuntimeError, match="a scope ends on the thread that began it"):
            outer.__exit__(None, None, None)


def test_what_is_not_callable_is_refused() -> None:
    with pytest.raises(TypeError, match="a callback is a callable or None, not 5"):
        kv.ScopedForceObserver(5)  # type: ignore[arg-type]


def test_a_force_is_a_record() -> None:
    force = kv.Force(kv.Quantity.AttentionQuantity, target=1.0, weight=0.1, source="Gaze", time=7)

    assert force == kv.Force(4, 1.0, 0.1, 0.0, 0.0, "Gaze", 7)
    assert repr(force) == (
        "Force(quantity=<Quantity.AttentionQuantity: 4>, target=1.0, weight=0.1, before=0.0, after=0.0, "
        "source='Gaze', time=7)"
    )
