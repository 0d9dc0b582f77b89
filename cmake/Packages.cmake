# Debian packages, one for each component: the library, what programs are built with, the front, and the Python
# package, which loads the library of the first. tools/packages.sh makes them.
if(NOT Python3_Interpreter_FOUND)
  message(FATAL_ERROR "Packages need a Python 3.10 or later, which writes manual pages and modules")
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orlune-ptk)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGE_CONTACT "${PTK_PACKAGE_CONTACT}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime development front python)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/PackageFiles.cmake)
set(CPACK_PTK_CHANGES ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE orlune-ptk)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(control_files ${PROJECT_SOURCE_DIR}/cmake/debian)

# ptk_package(COMPONENT NAME SECTION SUMMARY CONTENTS): the lines of contents tell what this one of the packages has.
macro(ptk_package component name section summary contents)
  set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${component}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${component}_DESCRIPTION
      "${summary}
orlune_ptk inspects pictures from cameras and files: thresholds, filters,
morphology, particles with 50 measures, colours, the Fourier transform,
gauges, bar codes, meters and displays.

${contents}")
endmacro()

ptk_package(RUNTIME liborlune-ptk1 libs "machine vision and image processing - shared library"
            "This package has the library. What it recommends draws text in images and
opens windows.")
# Opened when text is drawn and when the first window is; without them all else works.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "fonts-dejavu-core, libfontconfig1, libfreetype6, libxcb1")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)

# What programs that link the library depend on: by the symbols that they ask for, each with the release since which it
# is there, so far the first, or by the library as a whole.
set(soname "liborlune_ptk.so.${PROJECT_VERSION_MAJOR}")
file(STRINGS ${PROJECT_SOURCE_DIR}/include/exports.txt symbols REGEX "^ZEL_")
list(TRANSFORM symbols REPLACE "(.+)" " \\1@ORLUNE_PTK_1 1.0.0\n")
list(SORT symbols)
list(JOIN symbols "" symbol_lines)
file(WRITE ${PROJECT_BINARY_DIR}/symbols "${soname} liborlune-ptk1 #MINVER#
 ORLUNE_PTK_1@ORLUNE_PTK_1 1.0.0\n${symbol_lines}")
file(WRITE ${PROJECT_BINARY_DIR}/shlibs
     "liborlune_ptk ${PROJECT_VERSION_MAJOR} liborlune-ptk1 (>= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/symbols ${PROJECT_BINARY_DIR}/shlibs
                                               ${control_files}/triggers)

ptk_package(DEVELOPMENT liborlune-ptk-dev libdevel "machine vision and image processing - development files"
            "This package has the headers, a manual page for each function, and what
CMake and pkg-config need.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "liborlune-ptk1 (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

ptk_package(FRONT orlune graphics "inspect, measure, filter and read pictures on the command line"
            "This package has the command orlune, its manual pages, and completions for
bash, zsh and fish.")
set(CPACK_DEBIAN_FRONT_PACKAGE_DEPENDS "liborlune-ptk1 (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_FRONT_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})  # where the library of these packages is

ptk_package(PYTHON python3-orlune-ptk python "machine vision and image processing for NumPy"
            "This package has the module orlune_ptk for Python 3.")
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "liborlune-ptk1 (>= ${PROJECT_VERSION}), python3 (>= 3.10), python3-numpy (>= 1:1.24)")
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${control_files}/postinst ${control_files}/prerm)

# The Python package, with the modules that are made from the headers.
set(python_folder ${PROJECT_BINARY_DIR}/python_package)
file(GLOB python_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/python/orlune_ptk/*.py)
add_custom_command(
  OUTPUT ${python_folder}/orlune_ptk/lowlevel.py
  COMMAND ${Python3_EXECUTABLE} -B ${PROJECT_SOURCE_DIR}/python/generate.py ${python_folder}
  DEPENDS ${public_headers} ${python_sources} ${PROJECT_SOURCE_DIR}/python/generate.py
          ${PROJECT_SOURCE_DIR}/python/headers.py
  COMMENT "Writing the Python package")
add_custom_target(python_package ALL DEPENDS ${python_folder}/orlune_ptk/lowlevel.py)
install(DIRECTORY ${python_folder}/orlune_ptk DESTINATION lib/python3/dist-packages COMPONENT python)

include(CPack)
