# What `cmake --install` lays down: the library, the public headers, and the files by which hosts find them.

include(CMakePackageConfigHelpers)

set(ZEL_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/3dzel)
set(ZEL_CONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/3dzel)

install(TARGETS 3dzel EXPORT 3dzelTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} INCLUDES DESTINATION ${ZEL_INCLUDE_DIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/ DESTINATION ${ZEL_INCLUDE_DIR} FILES_MATCHING PATTERN "*.h")

install(EXPORT 3dzelTargets NAMESPACE 3dzel:: DESTINATION ${ZEL_CONFIG_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/3dzelConfig.cmake.in ${PROJECT_BINARY_DIR}/3dzelConfig.cmake
    INSTALL_DESTINATION ${ZEL_CONFIG_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/3dzelConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/3dzelConfig.cmake ${PROJECT_BINARY_DIR}/3dzelConfigVersion.cmake DESTINATION ${ZEL_CONFIG_DIR})

# The prefix as seen from the folder of the .pc file, so that the whole tree can be moved.
file(RELATIVE_PATH ZEL_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${PROJECT_SOURCE_DIR}/cmake/3dzel.pc.in ${PROJECT_BINARY_DIR}/3dzel.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/3dzel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
