#ifndef DESK_TOOLKIT_PRINTF_TEXT_H
#define DESK_TOOLKIT_PRINTF_TEXT_H

#include <cstdarg>
#include <cstdio>
#include <string>

namespace desk
{

/// Formats like printf, of any length; empty on libc's errors.
inline std::string printfText(const char *format, va_list values)
{
	va_list again;
	va_copy(again, values);
	const int length = std::vsnprintf(nullptr, 0, format, values);
	std::string text;
	if (length > 0) {
		text.resize(static_cast<size_t>(length));
		std::vsnprintf(text.data(), text.size() + 1, format, again);
	}
	va_end(again);
	return text;
}

} // namespace desk

#endif
