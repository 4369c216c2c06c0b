#!/usr/bin/env python3
"""Runs `skeigiot serve` and `skeigiot ros` under load for minutes, and fails if they have grown at the end.

usage: soakcommands.py BUILD MINUTES [PERSONS]

BUILD is the build folder of the preset bench. Each command gets the readings of PERSONS (100) for MINUTES: `serve` as lines, with
one page that reads on and one that comes and goes, `ros` from another implementation of DDS. The first fifth of the time is for
warming up. After it, memory may grow by a twentieth and 4 MiB, and descriptors and threads not at all: the most of the second
fifth is compared with the most of the last one.
"""

import json
import pathlib
import queue
import subprocess
import sys
import threading
import time
import urllib.request

from streamlatency import observation

RATE = 10  # [Hz] of the lines of each person
SAMPLE_PAUSE = 1.0  # [s]
PARTS = 5
MOST_GROWTH = 0.05
MOST_MORE = 4096  # [KiB]


class Sample:
    """Memory, threads and descriptors of a process at a moment."""

    def __init__(self, process):
        folder = pathlib.Path(f"/proc/{process}")
        status = dict(line.split(":", 1) for line in (folder / "status").read_text().splitlines())
        self.memory = int(status["VmRSS"].split()[0])  # [KiB]
        self.threads = int(status["Threads"])
        self.descriptors = sum(1 for _ in (folder / "fd").iterdir())


class Soak:
    """Samples a process until the time is over, and compares."""

    def __init__(self, process, minutes):
        self.process = process
        self.end = time.monotonic() + 60 * minutes
        self.samples = []
        self.thread = threading.Thread(target=self._sample)
        self.thread.start()

    def _sample(self):
        while time.monotonic() < self.end:
            try:
                self.samples.append(Sample(self.process))
            except OSError:
                return
            time.sleep(SAMPLE_PAUSE)

    def judge(self, name):
        """Prints what was taken; returns whether it is level."""
        self.thread.join()
        if time.monotonic() < self.end:
            print(f"{name}: ended before its time")
            return False
        part = len(self.samples) // PARTS
        second, last = self.samples[part : 2 * part], self.samples[-part:]
        most = {
            key: tuple(max(getattr(sample, key) for sample in samples) for samples in (second, last))
            for key in ("memory", "descriptors", "threads")
        }
        before, after = most["memory"]
        is_level = after <= before * (1 + MOST_GROWTH) + MOST_MORE and all(
            after <= before for key, (before, after) in most.items() if key != "memory"
        )
        print(
            f"{name}: memory {before / 1024:.1f} MiB, then {after / 1024:.1f} MiB; "
            + "; ".join(f"{key} {before}, then {after}" for key, (before, after) in most.items() if key != "memory")
            + ("" if is_level else "  GROWS")
        )
        return is_level


def read_events(address, until):
    """Reads the events of the page until a moment; returns their bytes."""
    count = 0
    with urllib.request.urlopen(address.replace("/?", "/events?"), timeout=30) as events:
        while time.monotonic() < until:
            count += len(events.read1(1 << 16))
    return count


def come_and_go(address, until):
    """Opens and leaves the page each second."""
    while time.monotonic() < until:
        urllib.request.urlopen(address, timeout=30).read()
        read_events(address, time.monotonic() + 1)


def soak_serve(command, minutes, persons):
    """Returns whether `serve` stayed level; nothing is kept in a file."""
    failures = queue.Queue()

    def reader(read, *arguments):
        try:
            read(*arguments)
        except Exception as error:  # pylint: disable=broad-except  # shown, and counts
            failures.put(f"{read.__name__}: {error!r}")

    with subprocess.Popen([command, "serve", "--no-open", "-"], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as server:
        address = server.stdout.readline().decode().strip()
        soak = Soak(server.pid, minutes)
        readers = [threading.Thread(target=reader, args=(read, address, soak.end)) for read in (read_events, come_and_go)]
        for thread in readers:
            thread.start()
        begin = time.monotonic()
        cycle = 0
        while time.monotonic() < soak.end:
            server.stdin.write(b"".join(json.dumps(observation(person, cycle)).encode() + b"\n" for person in range(persons)))
            server.stdin.flush()
            cycle += 1
            time.sleep(max(0.0, begin + cycle / RATE - time.monotonic()))
        for thread in readers:
            thread.join()
        is_level = soak.judge(f"serve, {persons} persons, {persons * cycle / 60 / minutes:.0f} lines a second")
        server.terminate()
        server.communicate()
    while not failures.empty():
        print(failures.get())
        is_level = False
    return is_level


def child_of(process):
    """Waits until a process has started another one; returns its number."""
    path = pathlib.Path(f"/proc/{process}/task/{process}/children")
    end = time.monotonic() + 30
    while time.monotonic() < end:
        if children := path.read_text().split():
            return int(children[0])
        time.sleep(0.01)
    sys.exit("the node does not start")


def soak_ros(load, minutes, persons):
    """Returns whether the node stayed level; the load starts and ends it."""
    with subprocess.Popen([load, str(persons), str(int(60 * minutes) + 5)]) as sender:
        is_level = Soak(child_of(sender.pid), minutes).judge(f"ros, {persons} persons")
        return sender.wait() == 0 and is_level


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__.strip())
    build = pathlib.Path(sys.argv[1])
    minutes = float(sys.argv[2])
    persons = int(sys.argv[3]) if len(sys.argv) > 3 else 100
    is_level = [
        soak_serve(build / "tools/skeigiot", minutes, persons),
        soak_ros(build / "benchmarks/skeigiot_ros_latency", minutes, persons),
    ]
    sys.exit(0 if all(is_level) else 1)


if __name__ == "__main__":
    main()
