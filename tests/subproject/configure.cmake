# Makes a project that adds SKEIGIOT as a subproject, without and, with TOOLS, with the libraries of the command, and compiles
# its programs. The libraries are not compiled once more, which takes minutes: the build of each program is only shown, which
# fails if anything in it is missing.
#
# usage: cmake -D SKEIGIOT=... -D WORK=... -D EXAMPLE=... -D CONSUMER=... -D TOOLS=... -D CXX=... -P configure.cmake

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\nended with ${status}:\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

# Configures the subproject with the options, and checks the programs.
function(check folder options programs)
  set(build ${WORK}/${folder})
  run(${CMAKE_COMMAND} -G Ninja -S ${CMAKE_CURRENT_LIST_DIR} -B ${build} -D SKEIGIOT=${SKEIGIOT} -D EXAMPLE=${EXAMPLE}
      -D CONSUMER=${CONSUMER} -D CMAKE_CXX_COMPILER=${CXX} ${options})
  foreach(program IN LISTS programs)
    run(${CMAKE_COMMAND} --build ${build} --target CMakeFiles/${program}.dir/${program}.cpp.o)
    run(${CMAKE_COMMAND} --build ${build} --target ${program} -- -n)
    if(NOT output MATCHES "Linking CXX executable ${program}")
      message(FATAL_ERROR "${program} would not be linked:\n${output}")
    endif()
  endforeach()
endfunction()

file(REMOVE_RECURSE ${WORK})
check(plain "" "robot;robot-static")
if(TOOLS)
  check(tools "-DSKEIGIOT_BUILD_TOOLS=ON;-DSKEIGIOT_REPORT=OFF" "player")
endif()
