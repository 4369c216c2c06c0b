# Installs the build folder BUILD below WORK, builds the consumer project of this folder against it, and runs it.
#
# usage: cmake -D BUILD=... -D WORK=... -D EXAMPLE=... -D CXX_FLAGS=... -P buildagainstinstall.cmake

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\nended with ${status}:\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/install)
run(${CMAKE_COMMAND} -G Ninja -S ${CMAKE_CURRENT_LIST_DIR} -B ${WORK}/build -D EXAMPLE=${EXAMPLE}
    -D CMAKE_PREFIX_PATH=${WORK}/install "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
run(${CMAKE_COMMAND} --build ${WORK}/build)
run(${WORK}/build/consumer)

if(NOT output MATCHES "^valence 0\\.6[0-9]*, attention 0\\.6[0-9]*, LookingAtRobot\n$")
  message(FATAL_ERROR "The consumer printed: ${output}")
endif()
