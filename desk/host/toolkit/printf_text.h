#ifndef DESK_TOOLKIT_PRINTF_TEXT_H
#define DESK_TOOLKIT_PRINTF_TEXT_H

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace desk
{

/// Formats like printf, of any length; empty on libc's errors.
inline std::string printfText(const char *format, va_list values)
{
	char *made = nullptr;
	const int length = vasprintf(&made, format, values);
	if (length < 0)
		return {};
	std::string text(made, static_cast<size_t>(length));
	std::free(made);
	return text;
}

} // namespace desk

#endif
