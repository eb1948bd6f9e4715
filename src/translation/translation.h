#ifndef VEXLO_TRANSLATION_H
#define VEXLO_TRANSLATION_H

#include <clocale>
#include <cstddef>
#include <libintl.h>

/// The text that the message catalogue gives for `id`, or `id` itself when it has none. Every text is
/// looked up, also the empty one, for which a catalogue answers with its own header.
/// The domain is null: whichever the host has made current. Never null; the result
/// belongs to the catalogue (or to the caller, when it is `id`).
__attribute__((format_arg(1))) inline const char *translate(const char *id)
{
	const char *text = dcgettext(NULL, id, LC_MESSAGES);
	return text ? text : "";
}

#endif
