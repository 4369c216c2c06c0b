# Tests of the observations, the memories, the classification, the body language and the room.
set(OBSERVATION_TESTS
    # observations
    contextemotion_test.cpp
    expressions_test.cpp
    facialpoints_test.cpp
    gaze_test.cpp
    headposture_test.cpp
    isfinite_test.cpp
    leaveoutahead_test.cpp
    personobservation_test.cpp
    readings_test.cpp
    robotheadposture_test.cpp
    smile_test.cpp
    timestamped_test.cpp
    valueconfidence_test.cpp
    voiceemotion_test.cpp
    # memories
    personmemory_test.cpp
    personmemoryreport_test.cpp
    remembered_test.cpp
    shorttermmemory_test.cpp
    # classification
    argmaxclassifiertype_test.cpp
    coefficient_test.cpp
    linregmoodscore_test.cpp
    logregmoodscore_test.cpp
    moodclass_test.cpp
    moodclassifier_test.cpp
    # body language and the room
    ambiancestate_test.cpp
    bodylanguageease_test.cpp
    bodylanguagestate_test.cpp
    ramp_test.cpp
    # shared helpers
    age_test.cpp
    ageweight_test.cpp
    clamp_test.cpp
    diagnostictext_test.cpp)
