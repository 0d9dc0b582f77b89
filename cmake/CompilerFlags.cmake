# Flags that hold for every source. Results are bit-exact by promise, so no multiply-add is
# contracted and no fast-math flag may appear anywhere.
add_compile_options(-ffp-contract=off)
# Where doubles that were rounded to floats are stored side by side, the vectoriser of straight-line
# code of g++ 12 leaves the rounding out.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-fno-tree-slp-vectorize)
endif()

# The steps of a sorting network are one fold expression, longer than clang's usual limit.
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fbracket-depth=1024>)
endif()

set(PTK_WARNING_FLAGS -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wcast-align
                      -Wdouble-promotion)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  # "GCC ivdep" above same-place loops; double{value}, which asks for a double (g++ tells of those that nothing
  # asks for); and & where both sides shall be computed.
  list(APPEND PTK_WARNING_FLAGS -Wno-unknown-pragmas -Wno-double-promotion -Wno-bitwise-instead-of-logical)
endif()
if(PTK_WARNINGS_AS_ERRORS)
  list(APPEND PTK_WARNING_FLAGS -Werror)
endif()

# What stops an overrun of the library before it becomes one of the program, measured to cost
# nothing: not in row routines, which are loops, nor in builds whose sanitizer sees more.
set(PTK_HARDENING_FLAGS)
set(PTK_HARDENING_LINK_FLAGS)
if(PTK_SANITIZE STREQUAL "" AND NOT PTK_FUZZ)
  set(PTK_HARDENING_FLAGS -fstack-protector-strong
                          $<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>)
  set(PTK_HARDENING_LINK_FLAGS -Wl,-z,relro,-z,now,-z,noexecstack)
endif()

# Callers have threads with stacks of 64 KB. Sanitizers make frames of their own size.
set(PTK_FRAME_FLAGS)
if(PTK_SANITIZE STREQUAL "" AND NOT PTK_FUZZ)
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    set(PTK_FRAME_FLAGS -Wframe-larger-than=16384 -Werror=frame-larger-than)
  else()
    set(PTK_FRAME_FLAGS -Werror=frame-larger-than=16384)
  endif()
endif()

if(PTK_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
  if(NOT PTK_FUZZ_COMPARISONS)
    add_compile_options(-fno-sanitize-coverage=trace-cmp)
  endif()
endif()

if(PTK_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined,float-cast-overflow)
elseif(PTK_SANITIZE STREQUAL "memory")
  add_compile_options(-fsanitize=memory -fsanitize-memory-track-origins=2 -fno-omit-frame-pointer)
  add_link_options(-fsanitize=memory)
elseif(PTK_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(PTK_SANITIZE STREQUAL "coverage")
  # Counters that several threads raise would come out wrong, even below 0.
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
elseif(NOT PTK_SANITIZE STREQUAL "")
  message(FATAL_ERROR "PTK_SANITIZE is '${PTK_SANITIZE}': use address, memory, thread or coverage")
endif()

# Tests take the compiler two and three times as long with sanitizers in them, which are for what the
# tests call: the library, and what the front does in memory. What a test leaves wrong in the heap is seen
# all the same. The front goes without the checks for undefined behaviour, all but its readers of files.
set(PTK_TEST_SANITIZE_FLAGS)
set(PTK_LIGHT_SANITIZE_FLAGS)
if(PTK_SANITIZE STREQUAL "address")
  set(PTK_TEST_SANITIZE_FLAGS -fno-sanitize=all)
  set(PTK_LIGHT_SANITIZE_FLAGS -fno-sanitize=undefined,float-cast-overflow)
endif()
