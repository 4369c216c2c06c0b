"""Log records of the library in Python's logging."""

import logging
import logging.handlers
import os
import queue
import subprocess
import sys
import threading

import pytest
import skeigiot as kv
from skeigiot import ko

STATE = "kvmood.emotionalstate"
AMBIANCE = "kvmood.ambiance"


def test_the_categories_of_the_library_are_listed() -> None:
    assert {STATE, AMBIANCE} <= set(ko.categories())


def test_a_record_arrives_under_its_category_with_level_and_place(caplog: pytest.LogCaptureFixture) -> None:
    with ko.ManualClock(1500):
        kv.PersonState.setBinaryBoundaryPositive(3.0)

    (record,) = caplog.records
    assert record.name == STATE
    assert record.levelno == logging.WARNING
    assert record.getMessage() == "setBinaryBoundaryPositive failed: 3.000000 is not between -1.0 and 1.0."
    assert record.pathname == "libemotion/src/personstate"
    assert record.funcName == "setBinaryBoundaryPositive"
    assert record.lineno > 0
    assert record.__dict__["koTime"] == 1500


def test_each_category_is_a_logger_of_its_own(caplog: pytest.LogCaptureFixture) -> None:
    kv.AmbianceState.setBinaryBoundaryExcited(float("nan"))

    assert [record.name for record in caplog.records] == [AMBIANCE]


def test_a_logger_that_is_not_enabled_makes_no_record(caplog: pytest.LogCaptureFixture) -> None:
    with caplog.at_level(logging.ERROR, logger=STATE):
        kv.PersonState.setBinaryBoundaryPositive(3.0)

    assert caplog.records == []


def test_a_handler_may_use_the_library() -> None:
    boundaries = []

    class Reader(logging.Handler):
        def emit(self, record: logging.LogRecord) -> None:
            boundaries.append(kv.PersonState.getBinaryBoundaryPositive())

    handler = Reader()
    logging.getLogger(STATE).addHandler(handler)
    try:
        kv.PersonState.setBinaryBoundaryPositive(3.0)
    finally:
        logging.getLogger(STATE).removeHandler(handler)

    assert boundaries == [pytest.approx(0.2)]


def test_a_record_that_comes_while_the_graph_is_held_does_not_deadlock(caplog: pytest.LogCaptureFixture) -> None:
    graph = kv.SocialGraph()
    rounds, threads = 50, 4

    def refuse(_: kv.Person) -> None:
        kv.PersonState.setBinaryBoundaryPositive(3.0)

    def work() -> None:
        for _ in range(rounds):
            graph.updateOrCreate(1, refuse)

    running = [threading.Thread(target=work, daemon=True) for _ in range(threads)]
    for thread in running:
        thread.start()
    for thread in running:
        thread.join(timeout=60)

    assert not any(thread.is_alive() for thread in running)
    assert len(caplog.records) == rounds * threads


def test_a_failing_filter_does_not_fail_the_call(capfd: pytest.CaptureFixture[str]) -> None:
    def fail(_: logging.LogRecord) -> bool:
        raise OSError("the disk is full")

    logger = logging.getLogger(STATE)
    logger.addFilter(fail)
    try:
        kv.PersonState.setBinaryBoundaryPositive(3.0)
    finally:
        logger.removeFilter(fail)

    assert "A log handler failed: OSError: the disk is full" in capfd.readouterr().err
    assert kv.PersonState.getBinaryBoundaryPositive() == pytest.approx(0.2)


def inAnotherInterpreter(program: str) -> "subprocess.CompletedProcess[str]":
    return subprocess.run(
        [sys.executable, "-c", program], capture_output=True, text=True, timeout=60, env=dict(os.environ), check=False
    )


def test_warnings_go_to_standard_error_without_any_configuration() -> None:
    done = inAnotherInterpreter("import skeigiot; skeigiot.PersonState.setBinaryBoundaryPositive(3.0)")

    assert (done.returncode, done.stdout) == (0, "")
    assert done.stderr == "setBinaryBoundaryPositive failed: 3.000000 is not between -1.0 and 1.0.\n"


def test_an_interpreter_that_ends_while_threads_log_ends_well() -> None:
    done = inAnotherInterpreter(
        "import atexit, logging, skeigiot, threading\n"
        "logging.disable()\n"
        "atexit.register(lambda: skeigiot.PersonState.setBinaryBoundaryPositive(3.0))\n"
        "class Late:\n"
        "    def __del__(self, refuse=skeigiot.PersonState.setBinaryBoundaryPositive):\n"
        "        refuse(4.0)\n"
        "late = Late()\n"
        "ready = threading.Event()\n"
        "def work():\n"
        "    skeigiot.PersonState.setBinaryBoundaryPositive(3.0)\n"
        "    ready.set()\n"
        "thread = threading.Thread(target=work)\n"
        "thread.start()\n"
        "ready.wait()\n"
    )

    assert done.returncode == 0, done.stderr


def test_a_queue_leaves_the_graph_to_the_loop() -> None:
    # A handler that called the graph itself would wait for ever: the update logs under the graph's mutex.
    records: "queue.SimpleQueue[logging.LogRecord]" = queue.SimpleQueue()
    handler = logging.handlers.QueueHandler(records)
    graph = kv.SocialGraph()
    logging.getLogger(STATE).addHandler(handler)
    try:
        with ko.ManualClock(10**18):
            old = kv.PersonObservation(voiceEmotion=(10**18 - 5 * 10**9, kv.VoiceEmotion()))
            graph.updateOrCreate(7, lambda person: person.update(old))
    finally:
        logging.getLogger(STATE).removeHandler(handler)

    assert records.get_nowait().getMessage() == "Processing old observation from 5 s ago of Voice Emotion"
    assert graph.find(7) is not None
    graph.remove(7)
