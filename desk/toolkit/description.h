#ifndef DESK_TOOLKIT_DESCRIPTION_H
#define DESK_TOOLKIT_DESCRIPTION_H

#include "windows.h"

#include <nlohmann/json.hpp>

namespace desk
{

/// What is on the screen as a dump has it: the visible windows from bottom to top, with their widgets.
nlohmann::ordered_json describe(const Windows &windows);

} // namespace desk

#endif
