# Tests of the person state, its update, persons, the social graph and the recorder.
set(STATE_TESTS
    personstate_test.cpp
    personstateprivate_test.cpp
    personstateupdate_confidence_test.cpp
    personstateupdate_face_test.cpp
    personstateupdate_gaze_test.cpp
    personstateupdate_head_test.cpp
    personstateupdate_intake_test.cpp
    personstateupdate_limits_test.cpp
    personstateupdate_remembered_test.cpp
    personstateupdate_silence_test.cpp
    personstateupdate_test.cpp
    personstateupdate_voice_test.cpp
    personstateupdate_zone_test.cpp
    sensorlimits_test.cpp
    tunable_test.cpp)
