# Installation: the library, its headers, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS orlune_ptk EXPORT orlune_ptk_targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/orlune_ptk)
install(EXPORT orlune_ptk_targets NAMESPACE orlune_ptk:: DESTINATION ${package_folder})
file(WRITE ${PROJECT_BINARY_DIR}/orlune_ptk-config.cmake
     "include(\${CMAKE_CURRENT_LIST_DIR}/orlune_ptk_targets.cmake)\n")
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orlune_ptk-config-version.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orlune_ptk-config.cmake
              ${PROJECT_BINARY_DIR}/orlune_ptk-config-version.cmake DESTINATION ${package_folder})

configure_file(cmake/orlune_ptk.pc.in ${PROJECT_BINARY_DIR}/orlune_ptk.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orlune_ptk.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
