#ifndef DESK_TOOLKIT_HOST_TEXT_H
#define DESK_TOOLKIT_HOST_TEXT_H

#include "desk.h"

namespace desk
{

/// A host's word in the current language, or `id` without a translation.
inline const char *hostText(const char *id)
{
	return Desk::get().word ? Desk::get().word(id) : id;
}

} // namespace desk

#endif
