#include "econtract.h"

// One a plugin; the linker collects sections of this name, and keeps them.
__attribute__((section(".note.vexlo"), used, aligned(4))) static constexpr eContractNote note{};
