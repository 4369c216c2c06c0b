# Runs LIVE, which writes a log and prints its states, and expects REPLAY to print the same states of that log.
#
# usage: cmake -D LIVE=... -D REPLAY=... -D WORK=... -P replaygivesthesame.cmake

include(${CMAKE_CURRENT_LIST_DIR}/../support/run.cmake)

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
run(${LIVE} ${WORK}/log.jsonl)
set(live "${output}")
string(REGEX MATCHALL "\n" lines "${live}")
list(LENGTH lines count)
if(count LESS 50)
  message(FATAL_ERROR "expected a state for each of at least 50 frames, found ${count}")
endif()
run(${REPLAY} ${WORK}/log.jsonl)
if(NOT output STREQUAL live)
  message(FATAL_ERROR "live:\n${live}\nreplayed:\n${output}")
endif()
