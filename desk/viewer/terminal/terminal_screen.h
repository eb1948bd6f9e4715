#ifndef DESK_TERMINAL_TERMINAL_SCREEN_H
#define DESK_TERMINAL_TERMINAL_SCREEN_H

#include "screen.h"

namespace desk
{

/// The height in pixels that a row of text must have on a terminal.
constexpr int terminalRowHeight = 20;

/// The terminal on standard input and output. Throws an Error when it cannot be used.
std::unique_ptr<Screen> makeTerminalScreen();

} // namespace desk

#endif
