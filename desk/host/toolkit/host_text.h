#ifndef DESK_TOOLKIT_HOST_TEXT_H
#define DESK_TOOLKIT_HOST_TEXT_H

#include <clocale>
#include <libintl.h>

namespace desk
{

/// One of the host's own texts in the language that is shown; `id` itself without a translation.
inline const char *hostText(const char *id)
{
	return dcgettext(nullptr, id, LC_MESSAGES);
}

} // namespace desk

#endif
