# Tests of the person state, its update, persons, the social graph and the recorder.
set(STATE_TESTS
    personstate_test.cpp
    personstateprivate_test.cpp
    personstateupdate_confidence_test.cpp
    personstateupdate_face_test.cpp
    personstateupdate_intake_test.cpp
    sensorlimits_test.cpp
    tunable_test.cpp)
