#ifndef DESK_TERMINAL_TERMINAL_SCREEN_H
#define DESK_TERMINAL_TERMINAL_SCREEN_H

#include "screen.h"

namespace desk
{

/// The height in pixels that a row of text must have on a terminal.
constexpr int terminalRowHeight = 20;

/// The terminal on standard input and output. On failure returns null and leaves one line in `error`.
std::unique_ptr<Screen> makeTerminalScreen(std::string &error);

} // namespace desk

#endif
