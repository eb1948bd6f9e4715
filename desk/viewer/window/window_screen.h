#ifndef DESK_WINDOW_WINDOW_SCREEN_H
#define DESK_WINDOW_WINDOW_SCREEN_H

#include "screen.h"

namespace desk
{

/// A window on the display that the environment names; `title` is what it shows, in any bytes. On failure
/// returns null and leaves one line in `error`.
std::unique_ptr<Screen> makeWindowScreen(const std::string &title, std::string &error);

/// Whether the display that the environment names is there: it may have gone since. Otherwise one line in `error`
/// says what is wrong. To be called before there is a window.
bool displayAnswers(std::string &error);

} // namespace desk

#endif
