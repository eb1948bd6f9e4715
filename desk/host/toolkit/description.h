#ifndef DESK_TOOLKIT_DESCRIPTION_H
#define DESK_TOOLKIT_DESCRIPTION_H

#include "windows.h"

#include <string>

namespace desk
{

/// The visible windows from bottom to top with their widgets, in the dump's JSON.
std::string describe(const Windows &windows);

} // namespace desk

#endif
