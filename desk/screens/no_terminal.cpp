#include "screen.h"

namespace desk
{

std::unique_ptr<Screen> makeTerminalScreen(std::string &error)
{
	error = "this deskhost has no terminal screen yet; use --screen window or --screen none";
	return nullptr;
}

} // namespace desk
