"""The same random observations give the same estimates in Python and in C++, to the last bit."""

import json
import os
import struct
import subprocess
from typing import Any

import pytest
import skeigiot as kv
from skeigiot import ko

CYCLES = 200


def lives() -> dict[str, list[dict[str, Any]]]:
    """The observations and estimates of a program in C++, by the name of each life."""
    command = os.environ["SKEIGIOT_RANDOM_LIVES"]
    output = subprocess.run([command], capture_output=True, text=True, check=True).stdout
    found: dict[str, list[dict[str, Any]]] = {}
    for line in output.splitlines():
        cycle = json.loads(line)
        found.setdefault(cycle["life"], []).append(cycle)
    return found


def number(bits: int) -> float:
    (value,) = struct.unpack("<f", struct.pack("<I", bits))
    assert isinstance(value, float)
    return value


def bits(value: float) -> int:
    (pattern,) = struct.unpack("<I", struct.pack("<f", value))
    assert isinstance(pattern, int)
    return pattern


def score(written: list[int]) -> kv.ValueConfidence[float]:
    return kv.ValueConfidence(number(written[0]), number(written[1]))


READINGS: dict[str, Any] = {
    "lookingAtRobot": bool,
    "headHeight": number,
    "distance": number,
    "gaze": lambda written: kv.Gaze(*map(number, written)),
    "smile": lambda written: kv.Smile(*map(number, written)),
    "expressions": lambda written: kv.Expressions(*map(score, written)),
    "headPosture": lambda written: kv.HeadPosture(*map(number, written)),
    "gender": lambda written: kv.ValueConfidence(bool(written[0]), number(written[1])),
    "age": lambda written: kv.ValueConfidence(int(written[0]), number(written[1])),
    "faceDetected": bool,
    "facialPoints": lambda written: kv.FacialPoints(
        [((number(x), number(y)), number(confidence)) for (x, y), confidence in written]
    ),
    "voiceEmotion": lambda written: kv.VoiceEmotion(*map(score, written)),
    "asrEmotion": number,
    "touchEmotion": int,
    "contextEmotion": lambda written: kv.ContextEmotion(written[0], number(written[1])),
    "speaking": bool,
    "robotHeadPosture": lambda written: kv.RobotHeadPosture(*map(number, written)),
}


def observationFrom(written: dict[str, Any]) -> kv.PersonObservation:
    return kv.PersonObservation(**{name: (time, READINGS[name](value)) for name, (time, value) in written.items()})


def scored(value: kv.ValueConfidence[float]) -> list[int]:
    return [bits(value.value), bits(value.confidence)]


def stateOf(state: kv.PersonState) -> dict[str, Any]:
    scores = state.lastExpressions
    head = state.lastHeadAngles
    return {
        "valence": scored(state.valence),
        "attention": scored(state.attention),
        "valenceBinary": state.valenceBinary.value,
        "unsmoothedValenceBinary": [
            state.unsmoothedValenceBinary.value,
            bits(state.unsmoothedValenceBinary.confidence),
        ],
        "pleasureState": int(state.pleasureState),
        "attentionState": int(state.attentionState),
        "lastSmile": [bits(state.lastSmile.value), bits(state.lastSmile.confidence)],
        "lastExpressions": [
            scored(score)
            for score in (
                scores.calm,
                scores.anger,
                scores.joy,
                scores.sorrow,
                scores.laughter,
                scores.excitement,
                scores.surprise,
            )
        ],
        "lastGaze": [bits(state.lastGaze.yaw), bits(state.lastGaze.pitch)],
        "lastHeadAngles": [bits(head.yaw), bits(head.pitch), bits(head.roll)],
        "lastHeadHeight": bits(state.lastHeadHeight),
        "ease": [bits(state.ease.level), bits(state.ease.confidence)],
    }


@pytest.mark.parametrize("life, cycles", lives().items())
def test_a_life_is_the_same_in_both_languages(life: str, cycles: list[dict[str, Any]]) -> None:
    person = kv.Person()
    assert len(cycles) == CYCLES
    with ko.ManualClock(0) as clock:
        for number, cycle in enumerate(cycles):
            clock.set(cycle["now"])
            if cycle["isSomebodyElse"]:
                person = kv.Person()
            if "observation" in cycle:
                person.update(observationFrom(cycle["observation"]))
            else:
                person.decreaseSinceNotSeen()

            assert stateOf(person.personState) == cycle["state"], f"cycle {number} of {life}"


def test_the_lives_bring_every_reading_and_both_signs_of_valence() -> None:
    cycles = [cycle for life in lives().values() for cycle in life]
    brought = {name for cycle in cycles for name in cycle.get("observation", {})}
    signs = {cycle["state"]["valenceBinary"] for cycle in cycles}

    assert brought == set(READINGS)
    assert signs == {-1, 0, 1}
