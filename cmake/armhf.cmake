# Tool chain: Debian's compiler for 32-bit ARM with floating point in hardware.
set(CMAKE_SYSTEM_PROCESSOR armhf)
set(triple arm-linux-gnueabihf)
set(emulator qemu-arm)
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi) # notes on calls between this code and that of GCC 6
include(${CMAKE_CURRENT_LIST_DIR}/DebianCross.cmake)
