# Tool chain: Debian's compiler for 32-bit MIPS, little-endian.
set(CMAKE_SYSTEM_PROCESSOR mipsel)
set(triple mipsel-linux-gnu)
set(emulator qemu-mipsel)
include(${CMAKE_CURRENT_LIST_DIR}/DebianCross.cmake)
