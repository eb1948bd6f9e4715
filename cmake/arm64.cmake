# Tool chain: Debian's compiler for 64-bit ARM.
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(triple aarch64-linux-gnu)
set(emulator qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/DebianCross.cmake)
