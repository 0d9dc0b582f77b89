# A build for arm64 on another processor: the compiler and the C library that Debian has for it, and
# qemu to run what was built. GoogleTest comes from its sources, and nothing else is looked for: the
# machine's own libraries are for the machine's own processor.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_FIND_ROOT_PATH /usr/aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
find_program(PTK_EMULATOR NAMES qemu-aarch64 qemu-aarch64-static)
if(PTK_EMULATOR)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${PTK_EMULATOR};-L;/usr/aarch64-linux-gnu")
endif()
