# Installation: the library, its headers, a CMake package, a pkg-config file and manual pages. What programs need to
# run is the component runtime; what is needed to build them, which is all else here, development.
include(CMakePackageConfigHelpers)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)

install(TARGETS orlune_ptk EXPORT orlune_ptk_targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

# A manual page for each function, made from the headers where there is a Python to do it.
find_package(Python3 3.10 COMPONENTS Interpreter QUIET)
if(Python3_Interpreter_FOUND)
  set(manual_folder ${PROJECT_BINARY_DIR}/man3)
  file(GLOB public_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/*.h
       ${PROJECT_SOURCE_DIR}/include/orlune_ptk/*.h)
  add_custom_command(
    OUTPUT ${manual_folder}/orlune_ptk.3
    COMMAND ${Python3_EXECUTABLE} -B ${PROJECT_SOURCE_DIR}/tools/manual_pages.py ${manual_folder} ${PROJECT_VERSION}
    DEPENDS ${public_headers} ${PROJECT_SOURCE_DIR}/tools/manual_pages.py ${PROJECT_SOURCE_DIR}/python/headers.py
    COMMENT "Writing manual pages")
  add_custom_target(manual_pages ALL DEPENDS ${manual_folder}/orlune_ptk.3)
  install(DIRECTORY ${manual_folder} DESTINATION ${CMAKE_INSTALL_MANDIR} FILES_MATCHING PATTERN "*.3")
else()
  message(STATUS "There is no Python 3.10 or later: no manual pages of the functions")
endif()

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/orlune_ptk)
install(EXPORT orlune_ptk_targets NAMESPACE orlune_ptk:: DESTINATION ${package_folder})
file(WRITE ${PROJECT_BINARY_DIR}/orlune_ptk-config.cmake
     "include(\${CMAKE_CURRENT_LIST_DIR}/orlune_ptk_targets.cmake)\n")
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orlune_ptk-config-version.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orlune_ptk-config.cmake
              ${PROJECT_BINARY_DIR}/orlune_ptk-config-version.cmake DESTINATION ${package_folder})

file(RELATIVE_PATH prefix_from_pc ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" prefix_from_pc ${prefix_from_pc})
configure_file(cmake/orlune_ptk.pc.in ${PROJECT_BINARY_DIR}/orlune_ptk.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orlune_ptk.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
