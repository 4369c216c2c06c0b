# Installs the build folder BUILD below WORK, moves the install elsewhere, and builds programs against it, by CMake and by
# pkg-config, with the shared libraries and with the static ones. All must run; the static ones once the shared libraries
# are gone. With TOOLS, the libraries for recordings and sessions are installed too, and programs read and play a recording.
#
# usage: cmake -D BUILD=... -D WORK=... -D EXAMPLE=... -D TOOLS=... -D CXX=... -D CXX_FLAGS=... -P buildagainstinstall.cmake

include(${CMAKE_CURRENT_LIST_DIR}/../support/run.cmake)

function(expect_output expected program)
  run(${program} ${ARGN})
  if(NOT output MATCHES "${expected}")
    message(FATAL_ERROR "${program} printed: ${output}")
  endif()
endfunction()

# The options that pkg-config gives for a library, as a list.
function(ask_pkg_config variable)
  run(${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pkg_config_folder} pkg-config ${ARGN})
  separate_arguments(options UNIX_COMMAND "${output}")
  set(${variable} ${options} PARENT_SCOPE)
endfunction()

function(expect_failure expected program)
  execute_process(COMMAND ${program} ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 1 OR NOT output MATCHES "${expected}")
    message(FATAL_ERROR "${program} ended with ${status} and printed: ${output}")
  endif()
endfunction()

set(sources ${CMAKE_CURRENT_LIST_DIR})
set(estimate "^valence 0\\.6[0-9]*, attention 0\\.6[0-9]*, LookingAtRobot\n$")
set(record "^::KV::Person\n$")
separate_arguments(flags UNIX_COMMAND "${CXX_FLAGS}")

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/first)
file(RENAME ${WORK}/first ${WORK}/install)
file(GLOB_RECURSE pkg_config_file ${WORK}/install/skeigiot.pc)
cmake_path(GET pkg_config_file PARENT_PATH pkg_config_folder)
cmake_path(GET pkg_config_folder PARENT_PATH library_folder)

run(${CMAKE_COMMAND} -G Ninja -S ${sources} -B ${WORK}/build -D EXAMPLE=${EXAMPLE} -D CMAKE_CXX_COMPILER=${CXX}
    -D CMAKE_PREFIX_PATH=${WORK}/install "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
run(${CMAKE_COMMAND} --build ${WORK}/build)

ask_pkg_config(shared --cflags --libs skeigiot)
ask_pkg_config(static --cflags --libs --static skeigiot)
set(static -Wl,-Bstatic ${static} -Wl,-Bdynamic)
run(${CXX} -std=c++17 ${flags} ${EXAMPLE} ${shared} -o ${WORK}/shared)
run(${CXX} -std=c++17 ${flags} ${EXAMPLE} ${static} -o ${WORK}/static)
run(${CXX} -std=c++17 ${flags} ${sources}/byname.cpp ${static} -o ${WORK}/static-byname)

expect_output("${estimate}" ${WORK}/build/shared)
expect_output("${estimate}" ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${library_folder} ${WORK}/shared)

if(TOOLS)
  set(recording ${sources}/recording.jsonl)
  set(read "^3 steps, a person seen in 2\n$")
  set(played "^3 seen, attention 0\\.[0-9]+\n3 seen, attention 0\\.[0-9]+\n3 not seen, attention 0\\.[0-9]+\n$")
  set(unreadable "^cannot be read: nosuchfile\n$")
  ask_pkg_config(recordings --cflags --libs skeigiot-recordings)
  ask_pkg_config(session --cflags --libs skeigiot-session)
  run(${CXX} -std=c++17 ${flags} ${sources}/read.cpp ${recordings} -o ${WORK}/read)
  run(${CXX} -std=c++17 ${flags} ${sources}/play.cpp ${session} -o ${WORK}/play)
  expect_output("${read}" ${WORK}/build/read ${recording})
  expect_output("${played}" ${WORK}/build/play ${recording})
  expect_output("${read}" ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${library_folder} ${WORK}/read ${recording})
  expect_output("${played}" ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${library_folder} ${WORK}/play ${recording})
  expect_failure("${unreadable}" ${WORK}/build/read nosuchfile)
  expect_failure("${unreadable}" ${WORK}/build/play nosuchfile)
endif()

# An install without all libraries reports it to a project that requires a missing one.
foreach(component recordings nosuchcomponent)
  file(COPY ${library_folder}/cmake/skeigiot/skeigiotConfig.cmake DESTINATION ${WORK}/few/${component})
  file(WRITE ${WORK}/few/${component}/skeigiotTargets.cmake
       "foreach(name ko ko-static session)\n  add_library(skeigiot::\${name} INTERFACE IMPORTED)\nendforeach()\n")
  file(WRITE ${WORK}/few/${component}/CMakeLists.txt
       "cmake_minimum_required(VERSION 3.25)\nproject(few LANGUAGES CXX)\n"
       "find_package(skeigiot REQUIRED COMPONENTS session OPTIONAL_COMPONENTS ${component})\n"
       "if(NOT skeigiot_session_FOUND OR skeigiot_${component}_FOUND)\n  message(FATAL_ERROR \"components are confused\")\nendif()\n"
       "find_package(skeigiot REQUIRED COMPONENTS ${component})\n")
  expect_failure("has no component[ \n]+'${component}'" ${CMAKE_COMMAND} -G Ninja -S ${WORK}/few/${component}
                 -B ${WORK}/few/${component}/build -D CMAKE_CXX_COMPILER=${CXX} -D skeigiot_DIR=${WORK}/few/${component})
endforeach()

file(GLOB shared_libraries ${library_folder}/*.so*)
file(REMOVE ${shared_libraries})
expect_output("${estimate}" ${WORK}/build/static)
expect_output("${record}" ${WORK}/build/static-byname)
expect_output("${estimate}" ${WORK}/static)
expect_output("${record}" ${WORK}/static-byname)
