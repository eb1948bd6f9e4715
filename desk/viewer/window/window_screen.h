#ifndef DESK_WINDOW_WINDOW_SCREEN_H
#define DESK_WINDOW_WINDOW_SCREEN_H

#include "screen.h"

namespace desk
{

/// A window on the display named by the environment, with the title `title` of any bytes. Throws an Error on failure.
std::unique_ptr<Screen> makeWindowScreen(const std::string &title);

/// Waits until the environment's display answers. Throws an Error when it does not. To be called before a window is
/// opened.
void awaitDisplay();

} // namespace desk

#endif
