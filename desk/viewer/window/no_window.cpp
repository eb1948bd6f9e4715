// What a desk host that is built without its window does in its place.

#include "window_screen.h"

namespace desk
{

std::unique_ptr<Screen> makeWindowScreen(const std::string &, std::string &error)
{
	error = "this desk host is built without a window; use --screen terminal, framebuffer or none";
	return nullptr;
}

bool displayAnswers(std::string &error)
{
	error = "there is a display, but this desk host is built without a window";
	return false;
}

} // namespace desk
