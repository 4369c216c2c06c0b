"""The graph of persons, its Python callbacks, and the threads that use it at once."""

import threading
import traceback
from collections.abc import Callable
from typing import NoReturn

import pytest
import skeigiot as kv


def touched() -> kv.PersonObservation:
    return kv.PersonObservation(touchEmotion=1)


def test_an_empty_graph_knows_nobody() -> None:
    graph = kv.SocialGraph()

    assert graph.persons() == []
    assert graph.find(1) is None


def test_persons_come_in_ascending_order_of_their_identifiers() -> None:
    graph = kv.SocialGraph()
    for identifier in (7, -3, 5):
        graph.add(identifier)

    assert [person.personID for person in graph.persons()] == [-3, 5, 7]


def test_adding_a_person_twice_keeps_the_first() -> None:
    graph = kv.SocialGraph()
    graph.updateOrCreate(1, lambda person: person.personState._setValence(0.5))
    graph.add(1)

    (person,) = graph.persons()
    assert person.personState.valence.value == 0.5


def test_a_removed_person_lives_on_with_the_last_copy() -> None:
    graph = kv.SocialGraph()
    graph.updateOrCreate(1, lambda person: person.update(touched()))
    kept = graph.find(1)
    graph.remove(1)
    graph.remove(1)

    assert graph.find(1) is None
    assert kept is not None and kept.personState.valence.value > 0.6


def test_a_copy_that_was_found_is_a_live_view() -> None:
    graph = kv.SocialGraph()
    graph.add(1)
    found = graph.find(1)
    graph.update(1, lambda person: person.personState._setValence(0.25))

    assert found is not None and found.personState.valence.value == 0.25


def test_update_calls_back_only_for_a_person_who_is_there() -> None:
    graph = kv.SocialGraph()
    seen: list[int] = []
    graph.update(1, lambda person: seen.append(person.personID))
    graph.read(1, lambda person: seen.append(person.personID))
    assert seen == []

    graph.updateOrCreate(1, lambda person: seen.append(person.personID))
    graph.update(1, lambda person: seen.append(person.personID))
    graph.read(1, lambda person: seen.append(person.personID))
    assert seen == [1, 1, 1]


def test_fields_that_a_callback_assigns_reach_the_graph() -> None:
    graph = kv.SocialGraph()

    def change(person: kv.Person) -> None:
        person.setUserSessionID(9)
        person.personState = kv.PersonState(0.5, 1.0, 0.0, 0.0)

    graph.updateOrCreate(1, change)

    found = graph.find(1)
    assert found is not None
    assert (found.personID, found.personState.valence.value) == (9, 0.5)


def test_fields_that_a_reading_callback_assigns_do_not_reach_the_graph() -> None:
    graph = kv.SocialGraph()
    graph.add(1)
    graph.read(1, lambda person: person.setUserSessionID(9))

    (person,) = graph.persons()
    assert person.personID == 1


def test_a_person_that_a_callback_keeps_outlives_the_graph() -> None:
    graph = kv.SocialGraph()
    kept: list[kv.Person] = []
    graph.updateOrCreate(1, kept.append)
    graph.update(1, lambda person: person.personState._setValence(0.75))
    del graph

    assert kept[0].personState.valence.value == 0.75


def raiseOdd(_: kv.Person) -> NoReturn:
    raise KeyError("odd")


@pytest.mark.parametrize("operation", ["updateOrCreate", "update", "read"])
def test_an_exception_of_a_callback_reaches_the_caller_with_its_traceback(operation: str) -> None:
    graph = kv.SocialGraph()
    graph.add(1)

    with pytest.raises(KeyError, match="odd") as raised:
        getattr(graph, operation)(1, raiseOdd)

    names = [frame.name for frame in traceback.extract_tb(raised.value.__traceback__)]
    assert names[-1] == "raiseOdd"


def test_a_graph_stays_usable_after_an_exception_of_a_callback() -> None:
    graph = kv.SocialGraph()
    with pytest.raises(KeyError):
        graph.updateOrCreate(1, raiseOdd)

    graph.update(1, lambda person: person.update(touched()))

    found = graph.find(1)
    assert found is not None and found.personState.valence.value > 0.6


def test_what_a_callback_did_before_it_raised_stays_done() -> None:
    graph = kv.SocialGraph()

    def changeAndRaise(person: kv.Person) -> None:
        person.setUserSessionID(9)
        raise KeyError("odd")

    with pytest.raises(KeyError):
        graph.updateOrCreate(1, changeAndRaise)

    found = graph.find(1)
    assert found is not None and found.personID == 9


@pytest.mark.parametrize("operation", ["updateOrCreate", "update", "read"])
def test_a_callback_that_uses_its_graph_is_refused_instead_of_waiting_for_itself(operation: str) -> None:
    graph = kv.SocialGraph()
    graph.add(1)

    with pytest.raises(RuntimeError, match="it would wait for itself"):
        getattr(graph, operation)(1, lambda _: graph.find(1))

    assert graph.find(1) is not None


def test_a_callback_may_use_another_graph() -> None:
    graph, other = kv.SocialGraph(), kv.SocialGraph()
    graph.updateOrCreate(1, lambda _: other.add(2))

    assert other.find(2) is not None


@pytest.mark.parametrize("operation", ["updateOrCreate", "update", "read"])
def test_what_is_not_callable_is_refused(operation: str) -> None:
    graph = kv.SocialGraph()
    graph.add(1)

    with pytest.raises(TypeError):
        getattr(graph, operation)(1, None)


def test_threads_update_and_read_one_graph_from_callbacks_at_once() -> None:
    """Neither deadlocks nor loses a step: each callback adds to the result of the one before it."""
    graph = kv.SocialGraph()
    graph.updateOrCreate(1, lambda person: person.setUserSessionID(0))
    rounds, writers, readers = 200, 4, 2
    torn: list[str] = []
    finished = []

    def countUp(person: kv.Person) -> None:
        before = person.personID
        person.update(kv.PersonObservation(touchEmotion=1, smile=kv.Smile(0.5, 0.5)))  # others run meanwhile
        person.setUserSessionID(before + 1)

    def look(person: kv.Person) -> None:
        value, confidence = person.personState.personValence()
        if not (-1.0 <= value <= 1.0 and 0.0 <= confidence <= 1.0):
            torn.append(repr(person))

    def write() -> None:
        for _ in range(rounds):
            graph.update(1, countUp)
        finished.append("writer")

    def read() -> None:
        for i in range(rounds):
            graph.read(1, look)
            graph.add(2 + i % 3)
            assert graph.find(1) is not None
            assert graph.persons()
        finished.append("reader")

    threads = [threading.Thread(target=write, daemon=True) for _ in range(writers)]
    threads += [threading.Thread(target=read, daemon=True) for _ in range(readers)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join(timeout=60)

    assert sorted(finished) == ["reader"] * readers + ["writer"] * writers
    assert torn == []
    person = graph.find(1)
    assert person is not None
    assert person.personID == rounds * writers
    assert person.personState.valence.value > 0.6


OPERATIONS: dict[str, Callable[[kv.SocialGraph], object]] = {
    "add": lambda graph: graph.add(2),
    "remove": lambda graph: graph.remove(2),
    "persons": lambda graph: graph.persons(),
    "find": lambda graph: graph.find(1),
    "updateOrCreate": lambda graph: graph.updateOrCreate(2, lambda _: None),
    "update": lambda graph: graph.update(1, lambda _: None),
    "read": lambda graph: graph.read(1, lambda _: None),
}


@pytest.mark.parametrize("operation", OPERATIONS)
def test_other_threads_run_while_one_waits_for_the_graph(operation: str) -> None:
    """The callback waits for this thread, which would never run if the operation that waits kept the interpreter."""
    graph = kv.SocialGraph()
    inCallback, goOn, begun = threading.Event(), threading.Event(), threading.Event()
    order = []

    def hold(_: kv.Person) -> None:
        inCallback.set()
        assert goOn.wait(timeout=60)
        order.append("callback")

    def wait() -> None:
        begun.set()
        OPERATIONS[operation](graph)
        order.append("operation")

    holder = threading.Thread(target=graph.updateOrCreate, args=(1, hold), daemon=True)
    holder.start()
    assert inCallback.wait(timeout=60)
    waiter = threading.Thread(target=wait, daemon=True)
    waiter.start()
    assert begun.wait(timeout=60)
    goOn.set()
    holder.join(timeout=60)
    waiter.join(timeout=60)

    assert order == ["callback", "operation"]
