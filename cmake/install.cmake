# Installs headers, library and the package files for find_package(MOKTexLib).
include(CMakePackageConfigHelpers)

install(TARGETS MOKTexLib EXPORT MOKTexLibTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/MOKTexLib FILES_MATCHING PATTERN "*.h")
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/MOKTexLib)
install(EXPORT MOKTexLibTargets NAMESPACE MOKTexLib:: DESTINATION ${package_dir})
configure_package_config_file(cmake/MOKTexLibConfig.cmake.in ${PROJECT_BINARY_DIR}/MOKTexLibConfig.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/MOKTexLibConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/MOKTexLibConfig.cmake ${PROJECT_BINARY_DIR}/MOKTexLibConfigVersion.cmake
    DESTINATION ${package_dir})
