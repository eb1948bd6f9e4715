#include "econtract.h"

// One for each plugin. The linker keeps sections of this name.
__attribute__((section(".note.vexlo"), used, aligned(4))) static constexpr eContractNote note{};
