#ifndef VEXLO_TRANSLATION_H
#define VEXLO_TRANSLATION_H

#include <clocale>
#include <libintl.h>

/// The text that the message catalogue gives for `id`, or `id` itself when it has none.
/// The domain is null: whichever the host has made current. Never null; the result
/// belongs to the catalogue (or to the caller, when it is `id`).
__attribute__((format_arg(1))) inline const char *translate(const char *id)
{
	// The empty message is the catalogue's own header, which is no translation of anything.
	if (!*id)
		return id;
	const char *text = dcgettext(nullptr, id, LC_MESSAGES);
	return text ? text : "";
}

#endif
