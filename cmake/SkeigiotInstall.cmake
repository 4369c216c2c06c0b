# The package files, so that a project elsewhere finds the installed library with find_package(skeigiot).

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/skeigiot)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/skeigiotConfig.cmake.in skeigiotConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(skeigiotConfigVersion.cmake COMPATIBILITY SameMinorVersion)

install(EXPORT skeigiotTargets NAMESPACE skeigiot:: DESTINATION ${package_dir})
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/skeigiotConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/skeigiotConfigVersion.cmake
        DESTINATION ${package_dir})
