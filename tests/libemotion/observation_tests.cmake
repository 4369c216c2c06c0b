# Tests of the observations, the memories, the classification and what a person's body and the room tell.
set(OBSERVATION_TESTS gaze_test.cpp)
