#ifndef DESK_TERMINAL_TERMINAL_SCREEN_H
#define DESK_TERMINAL_TERMINAL_SCREEN_H

#include "screen.h"

namespace desk
{

/// Required height of a row of text, in pixels.
constexpr int terminalRowHeight = 20;

/// The terminal on standard input and output. Throws an Error when it cannot be used.
std::unique_ptr<Screen> makeTerminalScreen();

} // namespace desk

#endif
