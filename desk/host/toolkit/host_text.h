#ifndef DESK_TOOLKIT_HOST_TEXT_H
#define DESK_TOOLKIT_HOST_TEXT_H

#include "desk.h"

namespace desk
{

/// One of the host's own words in the language that is shown; `id` itself without a translation.
inline const char *hostText(const char *id)
{
	return Desk::get().word ? Desk::get().word(id) : id;
}

} // namespace desk

#endif
