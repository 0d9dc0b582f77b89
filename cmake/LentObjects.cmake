# Objects that no sanitizer looks into are the same in every build. A build with sanitizers links those
# of a finished build instead of compiling them again, where PTK_OBJECTS_FROM names its folder: tests, the
# harness and the command line, which is more than half of the compiler's time.
set(PTK_OBJECTS_FROM "" CACHE PATH "Finished build whose objects of tests and harness are linked here")

# ptk_lent_sources(target sources...): gives the target these sources, or the other build's objects of them.
function(ptk_lent_sources target)
  if(PTK_OBJECTS_FROM STREQUAL "")
    target_sources(${target} PRIVATE ${ARGN})
    return()
  endif()
  file(RELATIVE_PATH folder ${PROJECT_BINARY_DIR} ${CMAKE_CURRENT_BINARY_DIR})
  set(objects ${ARGN})
  list(TRANSFORM objects REPLACE "(.+)" "${PTK_OBJECTS_FROM}/${folder}/CMakeFiles/${target}.dir/\\1.o")
  set_source_files_properties(${objects} PROPERTIES EXTERNAL_OBJECT TRUE GENERATED TRUE)
  target_sources(${target} PRIVATE ${objects})
  set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
endfunction()
