#ifndef VEXLO_TRANSLATION_H
#define VEXLO_TRANSLATION_H

#include <clocale>
#include <cstddef>
#include <libintl.h>

/// The catalogue's text for `id`, or `id` itself if it has none; never null. Looks up every text, also the empty one,
/// for which a catalogue returns its header. The null domain is the one that the host has made current. The result
/// belongs to the catalogue, or to the caller when it is `id`.
__attribute__((format_arg(1))) inline const char *translate(const char *id)
{
	const char *text = dcgettext(NULL, id, LC_MESSAGES);
	return text ? text : "";
}

#endif
