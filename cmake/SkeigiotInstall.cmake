# The parts of an install besides the libraries and the command: package files, so that a project elsewhere finds the libraries
# with find_package(skeigiot) or pkg-config, and the manual pages and shell completion of the command.

include(CMakePackageConfigHelpers)

# find_package(skeigiot)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/skeigiot)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/skeigiotConfig.cmake.in skeigiotConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(skeigiotConfigVersion.cmake COMPATIBILITY SameMajorVersion)

install(EXPORT skeigiotTargets NAMESPACE skeigiot:: DESTINATION ${package_dir} COMPONENT development)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/skeigiotConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/skeigiotConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT development)

# pkg-config: the prefix is computed from the place of the file, so that an install can be moved.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH SKEIGIOT_PKGCONFIG_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" SKEIGIOT_PKGCONFIG_TO_PREFIX "${SKEIGIOT_PKGCONFIG_TO_PREFIX}")
cmake_path(APPEND SKEIGIOT_PKGCONFIG_LIBDIR "\${prefix}" ${CMAKE_INSTALL_LIBDIR})
cmake_path(APPEND SKEIGIOT_PKGCONFIG_INCLUDEDIR "\${prefix}" ${CMAKE_INSTALL_INCLUDEDIR})
set(libraries ko skeigiot)
if(SKEIGIOT_BUILD_TOOLS)
  list(APPEND libraries skeigiot-recordings skeigiot-session)
endif()
foreach(library IN LISTS libraries)
  get_target_property(SKEIGIOT_LIBRARY_VERSION ${library} VERSION)
  configure_file(packaging/pkgconfig/${library}.pc.in ${library}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${library}.pc DESTINATION ${pkgconfig_dir} COMPONENT development)
endforeach()

if(SKEIGIOT_BUILD_TOOLS)
  file(GLOB manual_pages CONFIGURE_DEPENDS docs/man/*.1)
  install(FILES ${manual_pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES tools/completion/skeigiot.bash
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME skeigiot COMPONENT tools)
  install(FILES tools/completion/skeigiot.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT tools)
endif()
