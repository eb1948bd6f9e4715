# Flags of the plugin's release build, which aims at size because a receiver keeps the plugin in flash. Unknown flags
# are left out. Link to it PRIVATE; ./bench shows the plugin's size.
include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)

if(VEXLO_DESK)
  set(for_receiver OFF)
else()
  set(for_receiver ON)
endif()
option(VEXLO_RECEIVER "Make the plugin so that an old loader takes it" ${for_receiver})
if(VEXLO_RECEIVER)
  set(pack OFF)
  set(hash_style both)
else()
  set(pack ON)
  set(hash_style gnu)
endif()
option(VEXLO_PACK_RELOCATIONS
       "Pack the plugin's relative relocations, which a C library older than glibc 2.36 cannot load" ${pack})

# Appends to `list` those flags that `check` (compiler_flag, linker_flag) accepts.
function(vexlo_append_known check list)
  foreach(flag ${ARGN})
    string(MAKE_C_IDENTIFIER "VEXLO_TAKES${flag}" known)
    cmake_language(CALL vexlo_${check} ${flag} ${known})
    if(${known})
      list(APPEND ${list} ${flag})
    endif()
  endforeach()
  set(${list} ${${list}} PARENT_SCOPE)
endfunction()
macro(vexlo_compiler_flag flag known)
  check_cxx_compiler_flag(${flag} ${known})
endmacro()
macro(vexlo_linker_flag flag known)
  # A linker only warns of an unknown -z keyword.
  set(CMAKE_REQUIRED_LINK_OPTIONS -Wl,--fatal-warnings)
  check_linker_flag(CXX ${flag} ${known})
endmacro()

# No exception passes through the plugin, and its objects live no longer than a call. So it needs neither unwind
# tables nor start files.
set(code_flags)
vexlo_append_known(compiler_flag code_flags -Oz)
if(NOT code_flags)
  set(code_flags -Os)
endif()
list(APPEND code_flags -fno-exceptions)
vexlo_append_known(compiler_flag code_flags
  -ffunction-sections -fdata-sections -fno-asynchronous-unwind-tables -fno-plt)
# No detection of 64-bit ARM's instructions when the plugin is loaded, either.
vexlo_append_known(compiler_flag code_flags -mno-outline-atomics)
set(link_flags -nostartfiles)
vexlo_append_known(linker_flag link_flags
  -Wl,--gc-sections -Wl,--as-needed -Wl,--hash-style=${hash_style} -Wl,-O1 -Wl,-z,noseparate-code -Wl,-z,now)
if(VEXLO_RECEIVER)
  # For flash: no RELRO segment, which is padded to a page, no build id, and data right behind the text, not at the
  # next page of the file.
  vexlo_append_known(linker_flag link_flags -Wl,-z,norelro -Wl,--build-id=none -Wl,-z,common-page-size=64)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Link-time optimisation merges identical virtual tables of dialogs. Fat objects also link into programs without it.
  vexlo_append_known(compiler_flag code_flags -fno-inline-small-functions -fno-caller-saves)
  check_cxx_compiler_flag("-flto -ffat-lto-objects" VEXLO_COMPILER_MAKES_LTO)
  check_linker_flag(CXX -flto VEXLO_LINKER_TAKES_LTO)
  if(VEXLO_COMPILER_MAKES_LTO AND VEXLO_LINKER_TAKES_LTO)
    list(APPEND code_flags -flto -ffat-lto-objects)
  endif()
endif()
if(VEXLO_PACK_RELOCATIONS)
  vexlo_append_known(linker_flag link_flags -Wl,-z,pack-relative-relocs)
endif()

# vexlo_small_code is for objects of the plugin, vexlo_small for the plugin itself.
add_library(vexlo_small_code INTERFACE)
add_library(vexlo_small INTERFACE)
target_link_libraries(vexlo_small INTERFACE vexlo_small_code)
if(NOT VEXLO_SANITIZE)
  target_compile_options(vexlo_small_code INTERFACE "$<$<CONFIG:Release>:${code_flags}>")
  target_link_options(vexlo_small INTERFACE "$<$<CONFIG:Release>:${code_flags};${link_flags}>")
endif()
# Debug information describes the host's classes in full, so that tools/check-host can compare them.
set(type_flags)
vexlo_append_known(compiler_flag type_flags -femit-class-debug-always -fstandalone-debug)
target_compile_options(vexlo_small_code INTERFACE "$<$<CONFIG:Debug,RelWithDebInfo>:${type_flags}>")
