"""The state of a person, its boundaries, the room, and ramps."""

import copy
from typing import Any

import pytest
import skeigiot as kv
from skeigiot import ko

BOUNDARIES = ["Positive", "Negative", "LookingAtRobot", "StrictlyLookingAtRobot", "Confidence"]


def test_a_new_state_knows_nothing() -> None:
    state = kv.PersonState()

    assert state.valence == kv.ValueConfidence(0.0, 0.0)
    assert state.attention == kv.ValueConfidence(0.0, 0.0)
    assert state.pleasureState is kv.PleasureState.PleasureUnknown
    assert state.attentionState is kv.AttentionState.Unknown
    assert state.lastSmile == kv.Smile()
    assert state.lastHeadHeight == 0.0


@pytest.mark.parametrize(
    "query, named",
    [
        ("personValence", "valence"),
        ("personValenceBinary", "valenceBinary"),
        ("personUnsmoothedValenceBinary", "unsmoothedValenceBinary"),
        ("personAttention", "attention"),
        ("personAttentionZone", "attentionZone"),
        ("personAttentionState", "attentionState"),
        ("personPleasureState", "pleasureState"),
        ("emotionLogMessage", "logMessage"),
        ("smile", "lastSmile"),
        ("expressions", "lastExpressions"),
        ("gaze", "lastGaze"),
        ("headAngles", "lastHeadAngles"),
        ("headHeight", "lastHeadHeight"),
    ],
)
def test_each_query_is_a_property_as_well(query: str, named: str) -> None:
    person = kv.Person()
    for _ in range(3):
        person.update(
            kv.PersonObservation(
                touchEmotion=1,
                smile=kv.Smile(0.5, 0.6),
                expressions=kv.Expressions(joy=(0.9, 0.8)),
                gaze=kv.Gaze(25.0, 15.0),
                headPosture=kv.HeadPosture(1.0, 2.0, 3.0),
                headHeight=1.5,
            )
        )
    answer: Any = getattr(person.personState, query)()

    assert getattr(person.personState, named) == answer
    assert answer != getattr(kv.PersonState(), query)()
    assert type(getattr(person.personState, named)) is type(answer)


def test_facial_points_and_body_language_are_no_evidence_of_valence() -> None:
    person = kv.Person()
    points = kv.FacialPoints([((1.0, 2.0), 1.0)] * 12)
    person.update(kv.PersonObservation(facialPoints=points, headPosture=kv.HeadPosture(0.0, 10.0, 0.0)))
    assert person.personState.valence.confidence > 0.0
    assert not person.personState.hadValenceEvidence()

    person.update(kv.PersonObservation(touchEmotion=1))
    assert person.personState.hadValenceEvidence()


def test_the_parts_of_the_valence_are_properties() -> None:
    state = kv.PersonState(-0.5, 0.25, 0.0, 0.0)

    assert state.positive == kv.ValueConfidence(0.0, 0.25) == state.personEmotion(kv.PersonDescription.Positive)
    assert state.negative == kv.ValueConfidence(0.5, 0.25) == state.personEmotion(kv.PersonDescription.Negative)


def test_the_ease_is_that_of_the_body_language() -> None:
    person = kv.Person()
    person.update(kv.PersonObservation(headPosture=kv.HeadPosture(pitch=-10.0)))

    assert person.personState.ease == kv.BodyLanguageEase(0.5, 0.5)
    assert person.personState.bodyLanguageState().bodyLanguageState() == kv.BodyLanguageEase(0.5, 0.5)
    assert "BodyLanguageEase(level=0.5, confidence=0.5)" in repr(person.personState.bodyLanguageState())


def test_body_language_that_was_taken_out_is_a_live_view() -> None:
    person = kv.Person()
    ease = person.personState.bodyLanguageState()
    person.update(kv.PersonObservation(headPosture=kv.HeadPosture(pitch=-10.0)))

    assert ease.bodyLanguageState().level == 0.5


def test_a_state_shows_its_estimate() -> None:
    state = kv.PersonState(0.5, 0.25, 0.75, 1.0)

    assert repr(state) == (
        "<PersonState valence=0.5 (confidence 0.25), attention=0.75 (confidence 1.0), zone=Unknown>"
    )
    assert str(state).count("\n") == 9


def test_zones_have_names() -> None:
    assert kv.attentionZonesStringMapping[kv.AttentionState.LookingUpLeft] == "LookingUpLeft"
    assert set(kv.attentionZonesStringMapping) == set(kv.AttentionState) - {kv.AttentionState.Unknown}


def test_enumerations_are_those_of_python() -> None:
    assert kv.PleasureState["PleasurePositive"] is kv.PleasureState.PleasurePositive
    assert kv.AttentionState(2) is kv.AttentionState.LookingUp
    assert [int(description) for description in kv.PersonDescription] == [0, 1, 2]
    assert kv.AttentionState.__module__ == "skeigiot"
    assert kv.PersonState().personEmotion(2) == kv.PersonState().personEmotion(kv.PersonDescription.Attention)


@pytest.mark.parametrize("description", [2**31, True, 1.0, "Positive", None])
def test_what_is_no_number_of_an_enumeration_is_refused(description: Any) -> None:
    with pytest.raises(TypeError):
        kv.PersonState().personEmotion(description)


@pytest.mark.parametrize("name", BOUNDARIES)
def test_boundaries_are_set_for_the_process_and_restored(name: str) -> None:
    get, put = (getattr(kv.PersonState, prefix + "BinaryBoundary" + name) for prefix in ("get", "set"))
    before = get()
    with pytest.raises(KeyError):
        with kv.restoredBoundaries():
            put(0.5)
            assert get() == 0.5
            raise KeyError

    assert get() == before


def test_restoring_concerns_the_room_as_well() -> None:
    with kv.restoredBoundaries():
        kv.AmbianceState.setBinaryBoundaryExcited(0.75)
    assert kv.AmbianceState.getBinaryBoundaryExcited() == pytest.approx(0.4)


def test_an_unseen_person_fades() -> None:
    state = kv.PersonState(1.0, 1.0, 1.0, 1.0)
    state.decreaseSinceNotSeen()

    assert state.valence.value == pytest.approx(0.74)
    assert state.valence.confidence == pytest.approx(0.3)


def test_a_state_is_updated_from_a_memory_without_a_person() -> None:
    state, memory = kv.PersonState(), kv.PersonMemory()
    observation = kv.PersonObservation(touchEmotion=1)
    memory.add(observation)
    state._update(observation, memory)

    assert state.valence.value > 0.6


def test_a_room_copies_its_values() -> None:
    room = kv.AmbianceState()
    room.updateAmbiance(0.25)
    same = copy.copy(room)
    room.updateAmbiance(1.0)

    assert same.agitationLevel == 0.5
    assert copy.deepcopy(same).calmLevel == 0.5
    assert repr(same) == "<AmbianceState(agitationLevel=0.5, calmLevel=0.5, movementCount=0.0)>"
    assert same.excitationState() is kv.ExcitationState.AmbianceExcited


def test_a_ramp_has_one_of_two_slopes() -> None:
    ramp = kv.Ramp(kv.RampSlope.RampUp, center=1.0, width=2.0, amplitude=3.0)
    ramp.amplitude = 4.0

    assert ramp(1.0) == 2.0
    assert ramp == kv.Ramp(1, 1.0, 2.0, 4.0)
    assert repr(ramp) == "Ramp(slope=<RampSlope.RampUp: 1>, center=1.0, width=2.0, amplitude=4.0)"
    with pytest.raises(ValueError, match="there is no ramp of slope 2"):
        kv.Ramp(2)


def test_a_person_shares_state_and_memories_with_its_copies() -> None:
    person = kv.Person(7)
    same = copy.copy(person)
    same.update(kv.PersonObservation(touchEmotion=1))
    same.setUserSessionID(8)

    assert person.personState.valence.value > 0.6
    assert (person.personID, same.personID) == (7, 8)
    assert str(person) == "Person (US#7) "
    assert repr(person).startswith("<Person 7: <PersonState valence=")


def test_a_person_has_pleasure_and_zone() -> None:
    person = kv.Person()
    with ko.ManualClock(0):
        person.update(kv.PersonObservation(gaze=kv.Gaze(25.0, 15.0)))
    person.setFrequencyFace(30.0)
    person.setFrequencyGaze(30.0)

    assert person.personDescriptor() == (kv.PleasureState.PleasureUnknown, kv.AttentionState.LookingUpLeft)


def test_a_person_is_given_another_state_and_other_memories() -> None:
    person, other = kv.Person(1), kv.Person(2)
    person.personState = other.personState
    person.personMemory = other.personMemory
    other.updateMemory(kv.PersonObservation(touchEmotion=1))
    person._updateOnlineModels(kv.PersonObservation())

    assert other.personState.valence.value > 0.6
