# The pages of web/, built with npm and embedded in C++.

set(SKEIGIOT_REPORT AUTO CACHE STRING "Build the pages with npm: ON, OFF, or AUTO (if npm is there)")
set_property(CACHE SKEIGIOT_REPORT PROPERTY STRINGS AUTO ON OFF)
find_program(SKEIGIOT_NPM npm DOC "Builds the pages")

# Builds the page web/NAME and makes the source file OUTPUT, in which FUNCTION returns the page as a std::string_view, as HEADER
# declares it. Without npm the page is empty, and the command says that it is missing.
function(skeigiot_add_page name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "OUTPUT;HEADER;NAMESPACE;FUNCTION" "")
  set(page ${CMAKE_CURRENT_BINARY_DIR}/${name}page.html)
  set(web ${PROJECT_SOURCE_DIR}/web)
  if(SKEIGIOT_REPORT STREQUAL OFF OR (SKEIGIOT_REPORT STREQUAL AUTO AND NOT SKEIGIOT_NPM))
    message(STATUS "npm: not used, so the command is built without the page '${name}'")
    file(WRITE ${page} "")
  else()
    if(NOT SKEIGIOT_NPM)
      message(FATAL_ERROR "SKEIGIOT_REPORT is ON, but there is no npm")
    endif()
    file(GLOB sources CONFIGURE_DEPENDS ${web}/shared/* ${web}/${name}/*)
    set(otherwise "")
    if(SKEIGIOT_REPORT STREQUAL AUTO)
      set(otherwise --or-empty)
    endif()
    add_custom_command(
      OUTPUT ${page}
      COMMAND ${PROJECT_SOURCE_DIR}/script/build-page ${name} ${page} ${otherwise}
      DEPENDS ${PROJECT_SOURCE_DIR}/script/build-page ${web}/build.mjs ${web}/package.json ${web}/package-lock.json
              ${web}/tsconfig.json ${sources}
      COMMENT "Building the page '${name}'"
      VERBATIM)
  endif()
  set(embed ${PROJECT_SOURCE_DIR}/cmake/embedpage.cmake)
  add_custom_command(
    OUTPUT ${arg_OUTPUT}
    COMMAND ${CMAKE_COMMAND} -D PAGE=${page} -D OUTPUT=${arg_OUTPUT} -D HEADER=${arg_HEADER}
            -D NAMESPACE=${arg_NAMESPACE} -D FUNCTION=${arg_FUNCTION} -P ${embed}
    DEPENDS ${page} ${embed}
    VERBATIM)
endfunction()

# Adds the target NAME, which builds what the camera's part of the live page loads into FOLDER, and installs it. Without
# npm there is nothing to install, and the command says what is missing.
function(skeigiot_add_camera name folder)
  if(SKEIGIOT_REPORT STREQUAL OFF OR (SKEIGIOT_REPORT STREQUAL AUTO AND NOT SKEIGIOT_NPM))
    message(STATUS "npm: not used, so the command is built without a camera")
    return()
  endif()
  set(web ${PROJECT_SOURCE_DIR}/web)
  file(GLOB sources CONFIGURE_DEPENDS ${web}/shared/*.ts ${web}/camera/*)
  list(FILTER sources EXCLUDE REGEX "/test$")
  set(otherwise "")
  if(SKEIGIOT_REPORT STREQUAL AUTO)
    set(otherwise --or-empty)
  endif()
  add_custom_command(
    OUTPUT ${folder}.stamp
    COMMAND ${PROJECT_SOURCE_DIR}/script/build-camera ${folder} ${otherwise}
    COMMAND ${CMAKE_COMMAND} -E touch ${folder}.stamp
    DEPENDS ${PROJECT_SOURCE_DIR}/script/build-camera ${web}/tsconfig.json ${sources}
    COMMENT "Building what finds faces"
    VERBATIM)
  add_custom_target(${name} ALL DEPENDS ${folder}.stamp)
  install(DIRECTORY ${folder}/ DESTINATION ${CMAKE_INSTALL_DATADIR}/skeigiot/camera COMPONENT tools OPTIONAL)
endfunction()
