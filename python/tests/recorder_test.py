"""The recorder and its verdicts."""

import copy
from collections.abc import Callable

import pytest
import skeigiot as kv
from skeigiot import ko


def test_a_scope_ends_with_a_verdict_and_its_samples() -> None:
    recorder, state = kv.KVEmotionRecorder(), kv.PersonState(1.0, 1.0, 0.0, 0.0)
    recorder.startRecording("talk")
    assert recorder.hasAnOpenScope_notMutexed()
    with ko.ManualClock(5) as clock:
        recorder.update_notMutexed(state)
        clock.advance(2)
        recorder.update_notMutexed(state)

    word, samples = recorder.stopRecording("talk")

    assert word == "positive"
    assert [time for time, _ in samples] == [5, 7]
    assert samples[0][1].valence.value == 1.0
    assert not recorder.hasAnOpenScope_notMutexed()


def test_a_scope_takes_so_many_samples_and_no_more() -> None:
    recorder = kv.KVEmotionRecorder()
    recorder.startRecording("few", 2)
    for _ in range(5):
        recorder.update_notMutexed(kv.PersonState())

    assert len(recorder.stopRecording("few")[1]) == 2


def test_an_unknown_scope_is_an_error_without_samples() -> None:
    assert kv.KVEmotionRecorder().stopRecording("nothing") == ("error", [])


def test_samples_show_the_state_as_it_is_when_read() -> None:
    recorder, state = kv.KVEmotionRecorder(), kv.PersonState(1.0, 1.0, 0.0, 0.0)
    recorder.startRecording("talk", -1)
    recorder.update_notMutexed(state)
    state._setValence(-1.0)

    assert recorder.stopRecording("talk")[0] == "negative"


def test_a_copy_of_a_recorder_has_scopes_of_its_own() -> None:
    recorder = kv.KVEmotionRecorder()
    recorder.startRecording("talk")
    other = copy.copy(recorder)
    recorder.stopRecording("talk")

    assert other.hasAnOpenScope_notMutexed()


def test_a_verdict_takes_each_state_as_it_is_when_added() -> None:
    verdict, state = kv.Verdict(), kv.PersonState(1.0, 1.0, 0.0, 0.0)
    verdict.add(state)
    state._setValence(-1.0)

    assert verdict.word() == "positive"


def test_a_scope_with_half_a_surrogate_pair_is_refused() -> None:
    recorder = kv.KVEmotionRecorder()
    operations: list[Callable[[str], object]] = [recorder.startRecording, recorder.stopRecording]
    for operation in operations:
        with pytest.raises(ValueError, match=r"scope: '\\ud800' has half a surrogate pair, so it is no text"):
            operation("\ud800")

    recorder.startRecording("\U0001f600 <&>")
    assert recorder.stopRecording("\U0001f600 <&>") == ("neutral", [])
