# Toolchain: 32-bit ARM as Debian has it (armhf: ARMv7, hard float), built on any machine and run under emulation. The
# folder with the libraries is made under build/ when it is missing; TAL_ARMHF_SYSROOT names another one.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(tal_triple arm-linux-gnueabihf)
set(CMAKE_LIBRARY_ARCHITECTURE ${tal_triple})
set(CMAKE_C_COMPILER ${tal_triple}-gcc)
set(CMAKE_CXX_COMPILER ${tal_triple}-g++)
find_program(TAL_ARMHF_COMPILER ${CMAKE_CXX_COMPILER})
find_program(TAL_ARMHF_EMULATOR qemu-arm)
if(NOT TAL_ARMHF_COMPILER OR NOT TAL_ARMHF_EMULATOR)
  message(FATAL_ERROR "The compiler or the emulator is missing: run ./test armhf, which installs them, or "
    "apt-get install g++-arm-linux-gnueabihf qemu-user")
endif()

set(TAL_ARMHF_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/armhf-sysroot CACHE PATH "Headers and libraries of the device")
get_filename_component(TAL_ARMHF_SYSROOT ${TAL_ARMHF_SYSROOT} ABSOLUTE)
if(NOT EXISTS ${TAL_ARMHF_SYSROOT})
  message(STATUS "Making ${TAL_ARMHF_SYSROOT}")
  execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../Scripts/armhf/make-sysroot.sh ${TAL_ARMHF_SYSROOT}
    RESULT_VARIABLE tal_result)
  if(tal_result)
    message(FATAL_ERROR "The libraries for ARM cannot be had (see above)")
  endif()
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TAL_ARMHF_SYSROOT)
set(CMAKE_SYSROOT ${TAL_ARMHF_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
string(APPEND CMAKE_CXX_FLAGS_INIT " -Wno-psabi")
set(CMAKE_CROSSCOMPILING_EMULATOR
  "env;TAL_ARMHF_SYSROOT=${TAL_ARMHF_SYSROOT};${CMAKE_CURRENT_LIST_DIR}/../Scripts/armhf/run.sh")
