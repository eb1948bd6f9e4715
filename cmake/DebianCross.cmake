# Common part of the tool chain files: Debian's cross compiler, the sysroot of tools/sysroot, and QEMU to run the
# programs. Needs `triple` and `emulator`.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER ${triple}-g++)
get_filename_component(CMAKE_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/sysroots/${CMAKE_SYSTEM_PROCESSOR} ABSOLUTE)
if(NOT EXISTS ${CMAKE_SYSROOT}/usr/lib/${triple})
  message(FATAL_ERROR "There is no ${CMAKE_SYSROOT}; tools/sysroot ${CMAKE_SYSTEM_PROCESSOR} makes it")
endif()
find_program(VEXLO_EMULATOR ${emulator} REQUIRED) # package qemu-user
set(CMAKE_CROSSCOMPILING_EMULATOR ${VEXLO_EMULATOR} -L ${CMAKE_SYSROOT})

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR} ${CMAKE_SYSROOT}/usr/lib/${triple}/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig)
