# Makes a project that adds SKEIGIOT as a subproject, without and, with TOOLS, with the libraries of the command, and compiles
# its programs. The libraries are not compiled once more, which takes minutes: the commands that would link each program are
# only shown. The same is done with the project that docs/getting-started-cpp.md shows.
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

# Configures a project with the options, and checks its programs.
function(check_project source folder options programs)
  set(build ${WORK}/${folder})
  run(${CMAKE_COMMAND} -G Ninja -S ${source} -B ${build} -D CMAKE_CXX_COMPILER=${CXX} -D CMAKE_EXPORT_COMPILE_COMMANDS=ON ${options})
  foreach(program IN LISTS programs)
    compile(${build} ${program})
    run(${CMAKE_COMMAND} --build ${build} --target ${program} -- -t commands ${program})
    if(NOT output MATCHES "-o ${program} ")
      message(FATAL_ERROR "${program} would not be linked:\n${output}")
    endif()
  endforeach()
endfunction()

# Configures the subproject with the options, and checks the programs.
function(check folder options programs)
  check_project(${CMAKE_CURRENT_LIST_DIR} ${folder}
                "-DSKEIGIOT=${SKEIGIOT};-DEXAMPLE=${EXAMPLE};-DCONSUMER=${CONSUMER};${options}" "${programs}")
endfunction()

# Follows the page, in a project with the source tree in a folder of its own.
function(check_page)
  file(READ ${SKEIGIOT}/docs/getting-started-cpp.md page)
  if(NOT page MATCHES "```cmake\n(cmake_minimum_required[^`]*add_subdirectory[^`]*)```")
    message(FATAL_ERROR "the page shows no project with add_subdirectory")
  endif()
  file(WRITE ${WORK}/asdocumented/CMakeLists.txt "${CMAKE_MATCH_1}")
  file(CREATE_LINK ${SKEIGIOT} ${WORK}/asdocumented/skeigiot SYMBOLIC)
  file(COPY_FILE ${EXAMPLE} ${WORK}/asdocumented/robot.cpp)
  check_project(${WORK}/asdocumented asdocumented/build "" robot)
endfunction()

file(REMOVE_RECURSE ${WORK})
check_page()
check(plain "" "robot;robot-static")
if(TOOLS)
  check(tools "-DSKEIGIOT_BUILD_TOOLS=ON;-DSKEIGIOT_REPORT=OFF" "player")
endif()
