# Runs LIVE, which writes a log and prints its states, and expects REPLAY to print the same states of that log.
#
# usage: cmake -D LIVE=... -D REPLAY=... -D WORK=... -P replaygivesthesame.cmake

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT status EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\nended with ${status}:\n${output}${errors}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

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
