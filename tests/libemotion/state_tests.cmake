# Tests of the person state, its update, persons, the social graph and the recorder.
set(STATE_TESTS)
