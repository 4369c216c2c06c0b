"""Other threads continue while a replay runs. Tests that could hang run in a process of their own, with a limit."""

import os
import subprocess
import sys

import pytest

import recordings
import skeigiot

LINES = """
import json, os, signal, sys, threading
import skeigiot

def lines(count):
    for step in range(count):
        observation = {"smile": {"value": 0.5, "confidence": 0.9}}
        yield json.dumps({"time": 1577836800 * 10**9 + step * 10**8, "person": 1, "observation": observation}) + "\\n"

fifo = sys.argv[1]
"""


def run(program, *arguments):
    """Returns the output of the program; fails if it does not end."""
    result = subprocess.run(
        [sys.executable, "-c", program, *map(str, arguments)], capture_output=True, text=True, timeout=60
    )
    assert result.returncode == 0, result.stderr
    return result.stdout


@pytest.fixture
def fifo(tmp_path):
    path = tmp_path / "recording"
    os.mkfifo(path)
    return path


def test_other_threads_run_while_a_recording_is_read(fifo):
    program = LINES + """
def write():
    with open(fifo, "w") as file:
        file.writelines(lines(500))

writer = threading.Thread(target=write)
writer.start()
result = skeigiot.replay(fifo, format="jsonl")  # waits for lines that the other thread writes
writer.join()
print(result.updates.rows)
"""
    assert run(program, fifo) == "500\n"


def test_an_interrupt_ends_a_replay_and_leaves_the_module_usable(fifo):
    program = LINES + """
def write():
    try:
        with open(fifo, "w") as file:
            file.writelines(lines(100))
            file.flush()
            signal.pthread_kill(threading.main_thread().ident, signal.SIGINT)
            for line in lines(10**9):  # for as long as somebody reads
                file.write(line)
    except BrokenPipeError:
        pass

writer = threading.Thread(target=write)
writer.start()
try:
    skeigiot.replay(fifo, format="jsonl", skip_bad=True)
except KeyboardInterrupt:
    print("interrupted")
writer.join()
print(skeigiot.replay({"time": [0.0], "smile": [0.5]}).updates.rows)
"""
    assert run(program, fifo) == "interrupted\n1\n"


def test_an_interrupt_ends_the_replay_of_several(fifo):
    program = LINES + """
others = sys.argv[2:]

def write():
    try:
        with open(fifo, "w") as file:
            signal.pthread_kill(threading.main_thread().ident, signal.SIGINT)
            for line in lines(10**9):
                file.write(line)
    except BrokenPipeError:
        pass

writer = threading.Thread(target=write)
writer.start()
try:
    skeigiot.replay_all([fifo, *others], format="jsonl", jobs=2, skip_bad=True)
except KeyboardInterrupt:
    print("interrupted")
writer.join()
"""
    assert run(program, fifo, recordings.greeting()) == "interrupted\n"


def test_an_interrupt_ends_one_endless_line():
    program = """
import glob, os, signal, threading
import skeigiot

def isRead(path):
    for link in glob.glob("/proc/self/fd/*"):
        try:
            if os.readlink(link) == path:
                return True
        except OSError:
            pass
    return False

def interrupt():
    while not isRead("/dev/zero"):
        pass
    signal.pthread_kill(threading.main_thread().ident, signal.SIGINT)

thread = threading.Thread(target=interrupt)
thread.start()
try:
    skeigiot.replay("/dev/zero", format="jsonl")
except KeyboardInterrupt:
    print("interrupted")
thread.join()
"""
    assert run(program) == "interrupted\n"


def test_the_clock_of_the_caller_stays_its_own():
    clock = skeigiot.ko.ManualClock(1234)
    with clock:
        skeigiot.replay({"time": [0.0, 1.0], "smile": [0.5, 0.5]})
        assert skeigiot.ko.SystemClock.now() == 1234


def test_replays_without_pandas(tmp_path):
    program = """
import sys
sys.modules["pandas"] = None  # as if it were not installed
import skeigiot
result = skeigiot.replay(sys.argv[1], explain=True)
print(result.updates.rows, result.forces.rows > 0, skeigiot.replay({"time": [0.0], "smile": [0.5]}).updates.rows)
try:
    result.to_pandas()
except ImportError as error:
    print("ImportError")
"""
    assert run(program, recordings.greeting()) == "980 True 1\nImportError\n"
