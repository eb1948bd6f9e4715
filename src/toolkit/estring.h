#ifndef VEXLO_ESTRING_H
#define VEXLO_ESTRING_H

#include <string>
#include <utility>

#pragma GCC visibility push(default)

/// The toolkit's string: the standard one, bytes of any encoding, with formatting.
class eString : public std::string
{
public:
	eString() = default;
	/// Copies `text`, not null, up to its NUL.
	eString(const char *text) { assign(text); } // a library call; the base's constructor would be inlined
	/// Copies `text`.
	eString(const std::string &text) : std::string(text) {}
	/// Takes `text` over.
	eString(std::string &&text) noexcept : std::string(std::move(text)) {}

	/// Replaces the content by `format` and its values, printf-style and of any length, and returns
	/// this string. `format` is only read, although the host's signature does not say so.
	eString &sprintf(char *format, ...) __attribute__((format(printf, 2, 3)));
};

#pragma GCC visibility pop

#endif
