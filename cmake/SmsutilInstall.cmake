include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS smsutilapi smsutilapi_static
    EXPORT smsutilapiTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/smsutil DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT smsutilapiTargets
    NAMESPACE smsutil::
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/smsutilapi)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/smsutilapiConfig.cmake.in
    ${PROJECT_BINARY_DIR}/smsutilapiConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/smsutilapi)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/smsutilapiConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/smsutilapiConfig.cmake ${PROJECT_BINARY_DIR}/smsutilapiConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/smsutilapi)

configure_file(${PROJECT_SOURCE_DIR}/cmake/smsutilapi.pc.in ${PROJECT_BINARY_DIR}/smsutilapi.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/smsutilapi.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
