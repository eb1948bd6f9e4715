#ifndef DESK_WINDOW_WINDOW_SCREEN_H
#define DESK_WINDOW_WINDOW_SCREEN_H

#include "screen.h"

namespace desk
{

/// A window on the display that the environment names; `title` is what it shows, in any bytes. Throws an Error
/// when there can be none.
std::unique_ptr<Screen> makeWindowScreen(const std::string &title);

/// Waits until the display that the environment names answers; throws an Error when it does not, because it may have
/// gone since. To be called before there is a window.
void awaitDisplay();

} // namespace desk

#endif
