# What Debian wants of the files of each package, done by CPack before it packs them: manual pages and lists of changes
# are compressed, and each package tells its copyright.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(package ${CPACK_TEMPORARY_DIRECTORY}/${component})
  string(TOUPPER ${component} upper)
  set(documents ${package}/usr/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  execute_process(COMMAND install -D -m 644 ${CMAKE_CURRENT_LIST_DIR}/debian/copyright ${documents}/copyright
                  COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND install -m 644 ${CPACK_PTK_CHANGES} ${documents}/changelog COMMAND_ERROR_IS_FATAL ANY)
  file(WRITE ${documents}/changelog.Debian
       "${CPACK_DEBIAN_PACKAGE_SOURCE} (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * orlune_ptk ${CPACK_PACKAGE_VERSION}; changelog.gz tells what changed.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
  file(GLOB_RECURSE pages ${package}/usr/share/man/*.[0-9])
  execute_process(COMMAND gzip -9n ${documents}/changelog ${documents}/changelog.Debian ${pages}
                  COMMAND_ERROR_IS_FATAL ANY)
endforeach()
