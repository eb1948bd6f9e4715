#ifndef DESK_TOOLKIT_DESCRIPTION_H
#define DESK_TOOLKIT_DESCRIPTION_H

#include "windows.h"

#include <string>

namespace desk
{

/// What is on the screen as a dump has it, in JSON: the visible windows from bottom to top, with their widgets.
std::string describe(const Windows &windows);

} // namespace desk

#endif
