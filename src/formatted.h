#ifndef VEXLO_FORMATTED_H
#define VEXLO_FORMATTED_H

#include "host_names.h"

/// Formats into `text`, printf-style, and returns it. The host's formatting takes its format as
/// writable characters and only reads them; the cast that this needs is here, once.
template <class... Values> eString &format(eString &text, const char *form, Values... values)
{
	return text.sprintf(const_cast<char *>(form), values...);
}

/// The same into a fresh string.
template <class... Values> eString formatted(const char *form, Values... values)
{
	eString text;
	format(text, form, values...);
	return text;
}

#endif
