"""The end of a program whose daemon threads are still in the library. Tests that could abort run in a process of their own."""

import subprocess
import sys

import pytest

import recordings

PROGRAM = """
import logging, os, sys, threading, time
import skeigiot

kind, recording = sys.argv[1:]
graph = skeigiot.SocialGraph()
observation = skeigiot.PersonObservation(smile=skeigiot.Smile(0.5, 0.5))


class Clock(skeigiot.ClockSource):
    def now(self):
        return 10**18 + time.monotonic_ns()


def in_replay():
    skeigiot.replay(recording)


def in_replay_of_several():
    skeigiot.replay_all([recording] * 3)


def in_graph():
    graph.updateOrCreate(1, lambda person: person.update(observation))


def in_callback():
    graph.updateOrCreate(1, lambda person: time.sleep(1000))


def in_clock():
    with skeigiot.ScopedClockSource(Clock()):
        skeigiot.Person(1).update(observation)


def in_forces():
    with skeigiot.ScopedForceObserver(lambda force: None):
        skeigiot.Person(1).update(observation)


def in_log():
    skeigiot.PersonState.setBinaryBoundaryPositive(7)


def for_ever(call):
    while True:
        call()


logging.getLogger("kvmood.emotionalstate").addHandler(logging.NullHandler())
logging.getLogger("kvmood.emotionalstate").propagate = False
for _ in range(3):
    threading.Thread(target=for_ever, args=(globals()["in_" + kind],), daemon=True).start()
time.sleep(0.2)
sys.stdout.write("done")  # is flushed at the end
sys.exit(3)
"""


@pytest.mark.parametrize("kind", ["replay", "replay_of_several", "graph", "callback", "clock", "forces", "log"])
def test_a_program_ends_in_peace_while_daemon_threads_are_in_the_library(kind):
    for _ in range(3):
        ended = subprocess.run(
            [sys.executable, "-c", PROGRAM, kind, recordings.greeting()], capture_output=True, text=True, timeout=60
        )
        assert (ended.returncode, ended.stdout) == (3, "done"), ended.stderr
        assert kind == "log" or ended.stderr == ""  # without Python, the library itself writes warnings there


def test_other_threads_are_waited_for():
    program = """
import sys, threading, skeigiot
threading.Thread(target=lambda: print(skeigiot.replay(sys.argv[1]).updates.rows)).start()
"""
    ended = subprocess.run(
        [sys.executable, "-c", program, recordings.greeting()], capture_output=True, text=True, timeout=60
    )
    assert (ended.returncode, ended.stdout, ended.stderr) == (0, "980\n", "")
