# The Debian packages, one for each component of an install; script/package makes them, with all settings that they need.

set(SKEIGIOT_MAINTAINER "The skeigiot developers <developers@skeigiot.invalid>"
    CACHE STRING "Who maintains the packages: name and address, as in the field Maintainer")
set(SKEIGIOT_PACKAGE_REVISION 1 CACHE STRING "Revision of the packages, behind the version of the project")

set(packaging ${PROJECT_SOURCE_DIR}/packaging)
set(library_package libskeigiot${PROJECT_VERSION_MAJOR})
set(library_dependency "${library_package} (>= ${PROJECT_VERSION})")
set(same_version "(= ${PROJECT_VERSION}-${SKEIGIOT_PACKAGE_REVISION})")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                                                WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${packaging}/completestage.cmake)
set(CPACK_SKEIGIOT_CONTROL_FOLDER ${PROJECT_BINARY_DIR}/packaging)  # what the script writes for the control archive
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${SKEIGIOT_PACKAGE_REVISION})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${SKEIGIOT_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Dependencies on our own packages are listed below; the others are detected in the programs and libraries.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/libko ${PROJECT_BINARY_DIR}/libemotion
                                                ${PROJECT_BINARY_DIR}/librecordings ${PROJECT_BINARY_DIR}/libsession)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CPACK_SKEIGIOT_CONTROL_FOLDER}/runtime/symbols
                                               ${CPACK_SKEIGIOT_CONTROL_FOLDER}/runtime/shlibs ${packaging}/triggers)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
    "estimate of how persons in front of a robot feel and attend
For each person in front of a robot, skeigiot estimates how they feel and
whether they attend to it: a valence, an attention, each with a confidence,
and discrete states made of them. It fuses what the robot perceives of a
person (face, smile, head, gaze, voice, words, touch, context) in a fixed
order, so that every number can be explained and repeated to the last bit.

This package holds the shared libraries, libskeigiot and its middleware libko.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libskeigiot-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library_package} ${same_version}, libboost-dev (>= 1.74)")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "estimate of how persons in front of a robot feel and attend (development)
For each person in front of a robot, skeigiot estimates how they feel and
whether they attend to it, from all readings that the robot has of them.

This package holds what programs are built with: the headers of all
libraries, static libraries of the estimate, and the files for CMake and
pkg-config.")

if(SKEIGIOT_BUILD_TOOLS)
  # The interfaces of these two may change with each version, so programs that use them need exactly the version of their build.
  get_target_property(soversion skeigiot-recordings SOVERSION)
  set(recordings_package libskeigiot-recordings${soversion})
  get_target_property(soversion skeigiot-session SOVERSION)
  set(session_package libskeigiot-session${soversion})
  string(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ", ${recordings_package} ${same_version}, ${session_package} ${same_version}")

  list(APPEND CPACK_COMPONENTS_ALL recordings session)
  foreach(component IN ITEMS RECORDINGS SESSION)
    string(TOLOWER ${component} name)
    set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${${name}_package})
    set(CPACK_DEBIAN_${component}_PACKAGE_SECTION libs)
    set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA ${CPACK_SKEIGIOT_CONTROL_FOLDER}/${name}/shlibs ${packaging}/triggers)
  endforeach()
  set(CPACK_DEBIAN_RECORDINGS_PACKAGE_DEPENDS "${library_dependency}")
  set(CPACK_DEBIAN_RECORDINGS_DESCRIPTION
      "recordings of how persons look and behave, read for skeigiot
For each person in front of a robot, skeigiot estimates how they feel and
whether they attend to it, from all readings that the robot has of them.

This package holds the shared library that reads recordings of OpenFace,
py-feat, MediaPipe, Live Link Face and ROS 2, step by step.")
  set(CPACK_DEBIAN_SESSION_PACKAGE_DEPENDS "${library_dependency}, ${recordings_package} ${same_version}")
  set(CPACK_DEBIAN_SESSION_DESCRIPTION
      "sessions of skeigiot: recordings played, explained and exported
For each person in front of a robot, skeigiot estimates how they feel and
whether they attend to it, from all readings that the robot has of them.

This package holds the shared library that plays recordings and live
observations through the estimate, and explains, exports and reports it.")

  list(APPEND CPACK_COMPONENTS_ALL tools)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME skeigiot-tools)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION science)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS
      "${library_dependency}, ${recordings_package} ${same_version}, ${session_package} ${same_version}")
  set(CPACK_DEBIAN_TOOLS_DESCRIPTION
      "command that estimates how persons in recordings feel and attend
For each person in front of a robot, skeigiot estimates how they feel and
whether they attend to it, from all readings that the robot has of them.

This package holds the command skeigiot. It replays recordings of OpenFace,
py-feat, MediaPipe, Live Link Face and ROS 2, shows the forces that moved an
estimate, writes an HTML report, and answers live observations line by line.")
endif()

if(TARGET skeigiot-ros2)
  list(APPEND CPACK_COMPONENTS_ALL ros)
  set(CPACK_DEBIAN_ROS_PACKAGE_NAME skeigiot-ros)
  set(CPACK_DEBIAN_ROS_PACKAGE_SECTION science)
  set(CPACK_DEBIAN_ROS_PACKAGE_DEPENDS "skeigiot-tools ${same_version}")
  set(CPACK_DEBIAN_ROS_DESCRIPTION
      "estimate of how persons in front of a robot feel and attend (ROS 2)
For each person in front of a robot, skeigiot estimates how they feel and
whether they attend to it, from all readings that the robot has of them.

This package holds what makes the command 'skeigiot ros' a node of ROS 2,
which reads the topics of ROS4HRI and publishes the engagement and the
valence of each person. It speaks DDS, and needs no installation of ROS. A
unit of systemd is there to be enabled.")
endif()

if(TARGET skeigiot-python)
  find_package(Python3 COMPONENTS Interpreter REQUIRED)
  math(EXPR next_minor "${Python3_VERSION_MINOR} + 1")
  list(APPEND CPACK_COMPONENTS_ALL python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-skeigiot)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  string(CONCAT CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
         "${library_dependency}, ${recordings_package} ${same_version}, ${session_package} ${same_version}, python3 (>= 3.${Python3_VERSION_MINOR}~), python3 (<< 3.${next_minor}), python3-numpy")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-pandas, python3-matplotlib")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${packaging}/python/postinst ${packaging}/python/prerm)
  set(CPACK_DEBIAN_PYTHON_DESCRIPTION
      "estimate of how persons in front of a robot feel and attend (Python)
For each person in front of a robot, skeigiot estimates how they feel and
whether they attend to it, from all readings that the robot has of them.

This package holds the module for Python 3. It has the library's classes, and
replays whole recordings into arrays or data frames.")
endif()

include(CPack)
