"""The tables of edge cases for all languages: each file is run by an operation of its name, here and in C++."""

import json
import os
import struct
from collections.abc import Callable
from pathlib import Path
from typing import Any, Union

import pytest
import skeigiot as kv
from skeigiot import classification, ko

TABLES = Path(os.environ["SKEIGIOT_TABLES"])
START = 1577836800000000000  # 2020-01-01T00:00:00Z

Arguments = dict[str, Any]


def singlePrecision(number: float) -> Union[float, str]:
    """Rounds as the library does; JSON has no NaN and no infinities, and the tables have words for them."""
    try:
        single: float = struct.unpack("f", struct.pack("f", number))[0]
    except OverflowError:
        single = number * float("inf")
    words = {"nan": "NaN", "inf": "Infinity", "-inf": "-Infinity"}
    return words.get(repr(single), single)


def rounded(value: Any) -> Any:
    if isinstance(value, float):
        return singlePrecision(value)
    if isinstance(value, (list, tuple, kv.ValueConfidence)):
        return [rounded(element) for element in value]
    if isinstance(value, dict):
        return {name: rounded(element) for name, element in value.items()}
    return value


def numbers(values: list[Any]) -> list[float]:
    return [float(value) for value in values]


# Readings


def headposture(arguments: Arguments) -> Arguments:
    posture = kv.HeadPosture(*numbers([arguments["yaw"], arguments["pitch"], arguments["roll"]]))
    return {
        "isUp": posture.isUp(),
        "isDown": posture.isDown(),
        "isLeft": posture.isLeft(),
        "isRight": posture.isRight(),
        "text": str(posture),
    }


def facialpoint(arguments: Arguments) -> Arguments:
    points = kv.FacialPoints()
    points.setFacialPoint(arguments["point"], ((1.5, -2.5), float(arguments["confidence"])))
    point = points.facialPoint(arguments["point"])
    return {
        "x": point.value[0],
        "y": point.value[1],
        "confidence": point.confidence,
        "globalConfidence": points.globalConfidence(),
    }


def shorttermmemory(arguments: Arguments) -> Arguments:
    with ko.ManualClock(START):
        reading = (START - arguments["ageInNs"], 0.5)
        memory = kv.ShortTermMemory(float, arguments["horizonInMs"] * 1000000)
        tooOld = memory._isTooOld(reading)
        memory.record(reading)
        return {"isTooOld": tooOld, "remembered": len(memory.records())}


def emptymemory(_: Arguments) -> Arguments:
    return {"youngest": kv.ShortTermMemory(float, 7000000000).youngest().value}


# Formulas


def ramp(arguments: Arguments) -> Arguments:
    center, width, amplitude, x = numbers([arguments[name] for name in ("center", "width", "amplitude", "x")])
    return {
        "falling": kv.Ramp(kv.RampSlope.RampDown, center, width, amplitude)(x),
        "rising": kv.Ramp(kv.RampSlope.RampUp, center, width, amplitude)(x),
    }


def regression(
    score: Union[type[classification.LinregMoodScore], type[classification.LogregMoodScore]], arguments: Arguments
) -> Arguments:
    given = arguments["coefficient"]
    if isinstance(given, str):
        sets = {
            "positive": score.COEFFICIENT_POS,
            "neutral": score.COEFFICIENT_NEU,
            "negative": score.COEFFICIENT_NEG,
        }
        coefficient = sets[given]()
    else:
        coefficient = classification.Coefficient(numbers(given["weights"]), float(given["intercept"]))
    return {"score": score(coefficient).calculateScore(None, numbers(arguments["features"]))}


def linearregression(arguments: Arguments) -> Arguments:
    return regression(classification.LinregMoodScore, arguments)


def logisticregression(arguments: Arguments) -> Arguments:
    return regression(classification.LogregMoodScore, arguments)


def argmax(arguments: Arguments) -> Arguments:
    score = classification.LinregMoodScore(0, 0.0)
    classes: list[classification.MoodClass] = []
    for given in numbers(arguments["scores"]):
        classes.append(classification.MoodClass("", len(classes), score))
        classes[-1].score = given
    rule = classification.ArgmaxClassifierType(float(arguments["threshold"]))
    winner = classification.MoodClassifier(rule).classify(classes)
    return {"winner": winner.value, "sorted": [moodClass.score for moodClass in classes]}


# Body language and the room


def bodylanguageease(arguments: Arguments) -> Arguments:
    return {"text": str(kv.BodyLanguageEase(float(arguments["level"]), float(arguments["confidence"])))}


def bodylanguage(arguments: Arguments) -> Arguments:
    memory = kv.PersonMemory()
    with ko.ManualClock(START):
        for age, posture in enumerate(arguments["postures"]):
            head = kv.HeadPosture(float(posture["yaw"]), float(posture["pitch"]))
            memory.add(kv.PersonObservation(headPosture=(START - age * 1000000, head)))
        state = kv.BodyLanguageState()
        state.update(memory)
    ease = state.bodyLanguageState(kv.BodyLanguageDescription.BodyLanguageEaseDescription)
    return {"level": ease.level, "confidence": ease.confidence}


def ambiance(arguments: Arguments) -> Arguments:
    state = kv.AmbianceState()
    for step in arguments["steps"]:
        if step == "movement":
            state.incrementMovementDetected()
        elif "activity" in step:
            state.updateAmbiance(float(step["activity"]))
        else:
            state._setAmbientActivityLevel(float(step["level"]))
    return {
        "agitation": state.ambientActivityLevel(kv.AmbianceDescription.AmbianceActivity),
        "calm": state.ambientActivityLevel(kv.AmbianceDescription.AmbianceCalm),
        "movements": state.movementCount,
        "excitation": int(state.excitationState()),
        "text": str(state),
    }


# The state of a person


def personstate(arguments: Arguments) -> Arguments:
    state = kv.PersonState(**{name: float(value) for name, value in arguments.items()})
    return {
        "valence": state.personValence(),
        "attention": state.personAttention(),
        "positive": state.personEmotion(kv.PersonDescription.Positive),
        "negative": state.personEmotion(kv.PersonDescription.Negative),
        "binary": state.personValenceBinary().value,
        "unsmoothedBinary": state.personUnsmoothedValenceBinary().value,
        "pleasure": int(state.personPleasureState()),
        "zone": state.personAttentionZone(),
        "message": state.emotionLogMessage(),
        "text": str(state),
    }


def description(arguments: Arguments) -> Arguments:
    asked = arguments["description"]
    if arguments["query"] == "personEmotion":
        return {"value": kv.PersonState().personEmotion(asked)}
    if arguments["query"] == "ambientActivityLevel":
        return {"value": kv.AmbianceState().ambientActivityLevel(asked)}
    ease = kv.BodyLanguageState().bodyLanguageState(asked)
    return {"value": [ease.level, ease.confidence]}


def boundary(arguments: Arguments) -> Arguments:
    owner = kv.AmbianceState if arguments["boundary"] == "Excited" else kv.PersonState
    get = getattr(owner, "getBinaryBoundary" + arguments["boundary"])
    with kv.restoredBoundaries():
        before = get()
        getattr(owner, "setBinaryBoundary" + arguments["boundary"])(float(arguments["value"]))
        return {"before": before, "after": get()}


def verdict(arguments: Arguments) -> Arguments:
    summed = kv.Verdict()
    for valence, confidence in arguments["states"]:
        summed.add(kv.PersonState(float(valence), float(confidence), 0.0, 0.0))
    return {"word": summed.word()}


def attentionzone(arguments: Arguments) -> Arguments:
    person = kv.Person()
    with ko.ManualClock(START):
        observation = kv.PersonObservation()
        if "head" in arguments:
            observation.headPosture = kv.HeadPosture(**{name: float(n) for name, n in arguments["head"].items()})
        if "gaze" in arguments:
            observation.gaze = kv.Gaze(**{name: float(n) for name, n in arguments["gaze"].items()})
        person.update(observation)
    state = person.personState
    return {
        "zone": int(person.personDescriptor()[1]),
        "name": state.personAttentionZone(),
        "attention": state.personAttention(),
    }


OPERATIONS: dict[str, Callable[[Arguments], Arguments]] = {
    operation.__name__: operation
    for operation in (
        ambiance,
        argmax,
        attentionzone,
        bodylanguage,
        bodylanguageease,
        boundary,
        description,
        emptymemory,
        facialpoint,
        headposture,
        linearregression,
        logisticregression,
        personstate,
        ramp,
        shorttermmemory,
        verdict,
    )
}


def answer(table: str, arguments: Arguments) -> Any:
    try:
        return rounded(OPERATIONS[table](arguments))
    except (ValueError, LookupError, RuntimeError) as error:
        return {"error": error.args[0]}


def rows() -> list[Any]:
    found = []
    for path in sorted(TABLES.glob("*.json")):
        for row in json.loads(path.read_text(encoding="utf-8"))["rows"]:
            found.append(pytest.param(path.stem, row["arguments"], row["results"], id=f"{path.stem}-{row['name']}"))
    return found


@pytest.mark.parametrize("table, arguments, results", rows())
def test_a_table_has_the_answers_of_the_library(table: str, arguments: Arguments, results: Arguments) -> None:
    # As texts, in which NaN equals itself and -0 differs from 0.
    assert json.dumps(answer(table, arguments), sort_keys=True) == json.dumps(rounded(results), sort_keys=True)


def test_there_is_a_table_for_every_operation() -> None:
    assert sorted(path.stem for path in TABLES.glob("*.json")) == sorted(OPERATIONS)
