// Replaces the window in builds without SDL2.

#include "window_screen.h"

#include "desk_error.h"

namespace desk
{

std::unique_ptr<Screen> makeWindowScreen(const std::string &)
{
	throw Error("this desk host is built without a window; use --screen terminal, framebuffer or none");
}

void awaitDisplay()
{
	throw Error("there is a display, but this desk host is built without a window");
}

} // namespace desk
