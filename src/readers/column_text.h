#ifndef VEXLO_COLUMN_TEXT_H
#define VEXLO_COLUMN_TEXT_H

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <string>

/// Appends to `text` what printf would write; no limit on the length. Arguments must not
/// point into `text`.
__attribute__((format(printf, 2, 3))) inline void appendFormatted(std::string &text, const char *format, ...)
{
	char buffer[256];
	va_list arguments;
	va_start(arguments, format);
	const int length = std::vsnprintf(buffer, sizeof buffer, format, arguments);
	va_end(arguments);
	if (length < 0)
		return;
	const std::size_t wanted = static_cast<std::size_t>(length);
	if (wanted < sizeof buffer) {
		text.append(buffer, wanted);
		return;
	}

	const std::size_t before = text.size();
	text.resize(before + wanted);
	va_start(arguments, format);
	// The terminator falls on the string's own.
	std::vsnprintf(&text[before], wanted + 1, format, arguments);
	va_end(arguments);
}

#endif
