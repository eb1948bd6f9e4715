# Warnings for all our targets; link to it PRIVATE.
add_library(vexlo_warnings INTERFACE)
target_compile_options(vexlo_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${VEXLO_WERROR}>:-Werror>)

if(VEXLO_SANITIZE)
  # For the whole tree: the plugin and its host need the same runtime.
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

if(VEXLO_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
