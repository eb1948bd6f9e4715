#ifndef DESK_TERMINAL_TERMINAL_SCREEN_H
#define DESK_TERMINAL_TERMINAL_SCREEN_H

#include "screen.h"

namespace desk
{

/// The terminal on standard input and output. On failure returns null and leaves one line in `error`.
std::unique_ptr<Screen> makeTerminalScreen(std::string &error);

} // namespace desk

#endif
