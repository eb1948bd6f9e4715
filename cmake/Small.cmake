# What the plugin is compiled and linked with in a release build: it is made for size, because a
# receiver keeps it in flash. Link to it PRIVATE; ./bench tells what the plugin costs.
include(CheckLinkerFlag)

option(VEXLO_PACK_RELOCATIONS
       "Pack the plugin's relative relocations, which a C library older than glibc 2.36 cannot load" ON)

# No exception leaves or passes the plugin, and no object of it lives longer than a call: it needs
# neither unwind tables nor the compiler's start files.
set(code_flags
  -Oz -ffunction-sections -fdata-sections -fno-exceptions -fno-asynchronous-unwind-tables -fno-plt)
set(link_flags
  -nostartfiles -Wl,--gc-sections -Wl,--as-needed -Wl,--hash-style=gnu -Wl,-O1 -Wl,-z,noseparate-code
  -Wl,-z,now)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Seen as a whole, the tables of dialogs of one shape fall together. The objects are fat, so that
  # the readers also link into programs that are not made this way.
  list(APPEND code_flags -flto -ffat-lto-objects -fno-inline-small-functions -fno-caller-saves)
endif()
if(VEXLO_PACK_RELOCATIONS)
  check_linker_flag(CXX -Wl,-z,pack-relative-relocs VEXLO_LINKER_PACKS_RELOCATIONS)
  if(VEXLO_LINKER_PACKS_RELOCATIONS)
    list(APPEND link_flags -Wl,-z,pack-relative-relocs)
  endif()
endif()

# For what goes into the plugin, and for the plugin itself.
add_library(vexlo_small_code INTERFACE)
add_library(vexlo_small INTERFACE)
target_link_libraries(vexlo_small INTERFACE vexlo_small_code)
if(NOT VEXLO_SANITIZE)
  target_compile_options(vexlo_small_code INTERFACE "$<$<CONFIG:Release>:${code_flags}>")
  target_link_options(vexlo_small INTERFACE "$<$<CONFIG:Release>:${code_flags};${link_flags}>")
endif()
