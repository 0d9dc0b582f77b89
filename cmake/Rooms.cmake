# A room is a folder of sources with the tests beside them. Its objects go into the shared library
# and into the static one that tests and fuzzers link.

# The one list of processor levels that each *_rows.cpp is compiled for, in rising order, with their
# flags. `plain` is the text of every processor: no source may use an instruction by name there.
set(PTK_ALL_LEVELS plain)
set(PTK_LEVEL_FLAGS_plain "")
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
  list(APPEND PTK_ALL_LEVELS baseline v3 v4)
  set(PTK_LEVEL_FLAGS_baseline "")
  set(PTK_LEVEL_FLAGS_v3 -march=x86-64-v3)
  set(PTK_LEVEL_FLAGS_v4 -march=x86-64-v4 -mavx512vbmi -mavx512vbmi2 -mavx512vnni -mprefer-vector-width=512)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
  list(APPEND PTK_ALL_LEVELS neon)
  set(PTK_LEVEL_FLAGS_neon "")
endif()

# A build for trying, or under a slow compiler, may leave levels out.
set(PTK_SKIP_LEVELS "" CACHE STRING "Processor levels to leave out of this build (never plain)")
set(PTK_LEVELS ${PTK_ALL_LEVELS})
list(REMOVE_ITEM PTK_LEVELS ${PTK_SKIP_LEVELS})
if(NOT plain IN_LIST PTK_LEVELS)
  message(FATAL_ERROR "PTK_SKIP_LEVELS may not name plain, the level of every processor")
endif()

# The list for the sources: X(level, ...) for each level.
list(TRANSFORM PTK_LEVELS REPLACE "(.+)" "X(\\1, __VA_ARGS__)" OUTPUT_VARIABLE level_calls)
list(JOIN level_calls " " level_calls)
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/generated/engine/level_list.h
     CONTENT "// Made by the build.\n#pragma once\n#define ZEL_FOR_EACH_LEVEL(X, ...) @level_calls@\n" @ONLY)

# Without optimisation the compiler's vector functions are macros, which warn of themselves.
set(PTK_ROW_OPTIMISATION "$<IF:$<CONFIG:Release>,-O3,-O1>" CACHE STRING "Optimisation of the row routines")

# The library itself has no exceptions and no run-time type information.
function(ptk_library_flags target)
  target_compile_options(${target} PRIVATE ${PTK_WARNING_FLAGS} ${PTK_FRAME_FLAGS} -fno-exceptions -fno-rtti
                                           -fno-semantic-interposition)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include
                                               ${PROJECT_BINARY_DIR}/generated)
endfunction()

# ptk_room(name [TESTS_COMPILED_HERE] SOURCES ... [ROWS ...] [TESTS ...])
function(ptk_room name)
  cmake_parse_arguments(ROOM "TESTS_COMPILED_HERE" "" "SOURCES;ROWS;TESTS" ${ARGN})

  add_library(room_${name} OBJECT ${ROOM_SOURCES})
  ptk_library_flags(room_${name})
  target_compile_options(room_${name} PRIVATE ${PTK_HARDENING_FLAGS})
  set_property(GLOBAL APPEND PROPERTY PTK_OBJECT_LIBRARIES room_${name})

  if(ROOM_ROWS)
    foreach(level IN LISTS PTK_LEVELS)
      set(rows rows_${name}_${level})
      add_library(${rows} OBJECT ${ROOM_ROWS})
      ptk_library_flags(${rows})
      target_compile_definitions(${rows} PRIVATE ZEL_LEVEL=${level} ZEL_LEVEL_${level}=1)
      if(NOT level STREQUAL "plain")
        target_compile_definitions(${rows} PRIVATE ZEL_VECTORS=1)
      endif()
      # No code looks at the flags or the errno that floating-point operations leave, so both sides of
      # a choice may be computed and square roots need no check; values are the same.
      target_compile_options(${rows} PRIVATE ${PTK_LEVEL_FLAGS_${level}} -fno-trapping-math -fno-math-errno
                                             ${PTK_ROW_OPTIMISATION})
      set_property(GLOBAL APPEND PROPERTY PTK_OBJECT_LIBRARIES ${rows})
      set_property(GLOBAL APPEND PROPERTY PTK_ROW_LIBRARIES ${rows})
    endforeach()
  endif()

  if(PTK_BUILD_TESTS AND ROOM_TESTS)
    set(here)
    if(ROOM_TESTS_COMPILED_HERE)
      set(here COMPILED_HERE)
    endif()
    if(ROOM_ROWS)
      # Results are the same at every level, so the same tests pass at each.
      ptk_test(${name}_tests ${ROOM_TESTS} ${here} LEVELS ${PTK_LEVELS})
    else()
      ptk_test(${name}_tests ${ROOM_TESTS} ${here})
    endif()
  endif()
endfunction()

# What all GoogleTest programs are compiled and linked with.
function(ptk_test_flags name)
  target_compile_options(${name} PRIVATE ${PTK_WARNING_FLAGS} ${PTK_TEST_SANITIZE_FLAGS}
                                         $<$<CONFIG:Release>:-O1>)
  target_link_libraries(${name} PRIVATE ptk_test_support orlune_internal GTest::gtest)
endfunction()

# ptk_test(name sources... [COMPILED_HERE] [LEVELS ...]): a GoogleTest program over the library's internals,
# run by ctest once, or once at each processor level. Tests that look at the levels of this build, or run
# threads, are compiled in it.
function(ptk_test name)
  cmake_parse_arguments(TEST "COMPILED_HERE" "" "LEVELS" ${ARGN})
  add_executable(${name})
  if(TEST_COMPILED_HERE)
    target_sources(${name} PRIVATE ${TEST_UNPARSED_ARGUMENTS})
  else()
    ptk_lent_sources(${name} ${TEST_UNPARSED_ARGUMENTS})
  endif()
  ptk_test_flags(${name})
  if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
    target_precompile_headers(${name} REUSE_FROM ptk_test_headers)
    # g++ 12 forgets that precompiled headers are the system's, and warns of what is inlined from them.
    target_compile_options(${name} PRIVATE -Wno-array-bounds -Wno-stringop-overflow)
  endif()
  if(NOT TEST_LEVELS)
    add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
  endif()
  foreach(level IN LISTS TEST_LEVELS)
    add_test(NAME ${name}_at_${level} COMMAND ${name} --gtest_brief=1)
    set_tests_properties(${name}_at_${level} PROPERTIES ENVIRONMENT "ORLUNE_PTK_LEVEL=${level}"
                                                         SKIP_RETURN_CODE 77)
  endforeach()
endfunction()

# The shared library that programs link, and the static one with its insides open to tests.
function(ptk_add_libraries)
  get_property(objects GLOBAL PROPERTY PTK_OBJECT_LIBRARIES)
  set(contents)
  foreach(library IN LISTS objects)
    list(APPEND contents $<TARGET_OBJECTS:${library}>)
  endforeach()

  # Everything but the listed exports is local to the library.
  set(list_file ${PROJECT_SOURCE_DIR}/include/exports.txt)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list_file})
  file(STRINGS ${list_file} exports REGEX "^ZEL_")
  list(JOIN exports ";\n    " export_lines)
  set(script ${PROJECT_BINARY_DIR}/exports.map)
  file(CONFIGURE OUTPUT ${script} CONTENT "ORLUNE_PTK_1 {\n  global:\n    @export_lines@;\n  local: *;\n};\n"
       @ONLY)

  add_library(orlune_ptk SHARED ${contents})
  add_library(orlune_ptk::orlune_ptk ALIAS orlune_ptk)
  set_target_properties(orlune_ptk PROPERTIES VERSION ${PROJECT_VERSION}
                                              SOVERSION ${PROJECT_VERSION_MAJOR}
                                              LINK_DEPENDS ${script})
  target_link_options(orlune_ptk PRIVATE -Wl,--version-script=${script} -Wl,-Bsymbolic-functions
                                         ${PTK_HARDENING_LINK_FLAGS})
  if(PTK_SANITIZE STREQUAL "")
    target_link_options(orlune_ptk PRIVATE -Wl,--no-undefined)
  endif()
  target_link_libraries(orlune_ptk PRIVATE Threads::Threads)
  target_include_directories(
    orlune_ptk INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
                         $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

  add_library(orlune_internal STATIC ${contents})
  target_link_libraries(orlune_internal PUBLIC Threads::Threads)
  target_include_directories(orlune_internal PUBLIC ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include
                                                    ${PROJECT_BINARY_DIR}/generated)
endfunction()
