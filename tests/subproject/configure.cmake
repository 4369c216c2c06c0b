# Makes a project that adds SKEIGIOT as a subproject, without and, with TOOLS, with the libraries of the command, and compiles
# its programs. The libraries are not compiled once more, which takes minutes: the commands that would link each program are
# only shown.
#
# usage: cmake -D SKEIGIOT=... -D WORK=... -D EXAMPLE=... -D CONSUMER=... -D TOOLS=... -D CXX=... -P configure.cmake

include(${CMAKE_CURRENT_LIST_DIR}/../support/run.cmake)

# Compiles the program alone: a build of it would first compile the libraries, which takes minutes.
function(compile build program)
  file(READ ${build}/compile_commands.json commands)
  string(JSON count LENGTH "${commands}")
  math(EXPR last "${count} - 1")
  foreach(i RANGE ${last})
    string(JSON file GET "${commands}" ${i} file)
    if(file MATCHES "/${program}\\.cpp$")
      string(JSON command GET "${commands}" ${i} command)
      file(MAKE_DIRECTORY ${build}/CMakeFiles/${program}.dir)
      run(sh -c "cd '${build}' && ${command}")
      return()
    endif()
  endforeach()
  message(FATAL_ERROR "${program} would not be compiled")
endfunction()

# Configures the subproject with the options, and checks the programs.
function(check folder options programs)
  set(build ${WORK}/${folder})
  run(${CMAKE_COMMAND} -G Ninja -S ${CMAKE_CURRENT_LIST_DIR} -B ${build} -D SKEIGIOT=${SKEIGIOT} -D EXAMPLE=${EXAMPLE}
      -D CONSUMER=${CONSUMER} -D CMAKE_CXX_COMPILER=${CXX} -D CMAKE_EXPORT_COMPILE_COMMANDS=ON ${options})
  foreach(program IN LISTS programs)
    compile(${build} ${program})
    run(${CMAKE_COMMAND} --build ${build} --target ${program} -- -t commands ${program})
    if(NOT output MATCHES "-o ${program} ")
      message(FATAL_ERROR "${program} would not be linked:\n${output}")
    endif()
  endforeach()
endfunction()

file(REMOVE_RECURSE ${WORK})
check(plain "" "robot;robot-static")
if(TOOLS)
  check(tools "-DSKEIGIOT_BUILD_TOOLS=ON;-DSKEIGIOT_REPORT=OFF" "player")
endif()
