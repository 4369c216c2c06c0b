#!/usr/bin/env python3
"""Drives `skeigiot stream` at the rate of a camera, and prints how long its answers took.

usage: streamlatency.py SKEIGIOT [PERSONS [SECONDS]]
"""

import json
import subprocess
import sys
import time

RATE = 30.0  # [Hz]


def observation(person, cycle):
    """One face, turned a little to and fro, with all readings of a camera."""
    angle = (cycle % 60) - 30
    return {
        "person": person,
        "observation": {
            "distance": {"value": 1.2},
            "faceDetected": {"value": True},
            "headPosture": {"yaw": angle, "pitch": 2, "roll": 0},
            "gaze": {"yaw": -angle, "pitch": -1},
            "smile": {"value": (cycle % 90) / 90, "confidence": 0.9},
            "expressions": {"joy": {"value": 0.5, "confidence": 0.9}, "calm": {"value": 0.5, "confidence": 0.9}},
        },
    }


def main():
    command = sys.argv[1]
    persons = int(sys.argv[2]) if len(sys.argv) > 2 else 1
    cycles = int(RATE * (float(sys.argv[3]) if len(sys.argv) > 3 else 10.0))
    latencies = []
    with subprocess.Popen(
        [command, "stream", "--cycle", "recorded"], stdin=subprocess.PIPE, stdout=subprocess.PIPE
    ) as stream:
        begin = time.monotonic()
        for cycle in range(cycles):
            time.sleep(max(0.0, begin + cycle / RATE - time.monotonic()))
            for person in range(persons):
                asked = time.monotonic()
                stream.stdin.write(json.dumps(observation(person, cycle)).encode() + b"\n")
                stream.stdin.flush()
                answer = json.loads(stream.stdout.readline())
                latencies.append(time.monotonic() - asked)
                if answer.get("person") != person:
                    sys.exit(f"an answer to another question: {answer}")
        stream.stdin.close()
    latencies.sort()
    shown = {"median": 0.5, "99 %": 0.99, "greatest": 1.0}
    text = ", ".join(f"{name} {latencies[int(share * (len(latencies) - 1))] * 1e3:.2f} ms" for name, share in shown.items())
    print(f"{len(latencies)} answers at {RATE:.0f} Hz for {persons} person(s): {text}; a cycle has {1e3 / RATE:.1f} ms")


if __name__ == "__main__":
    main()
