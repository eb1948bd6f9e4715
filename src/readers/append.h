#ifndef VEXLO_APPEND_H
#define VEXLO_APPEND_H

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

/// Appends what printf would write, of any length. Arguments must not point into `text`.
__attribute__((format(printf, 2, 3))) inline void appendFormatted(std::string &text, const char *format, ...)
{
	char *made = NULL;
	va_list arguments;
	va_start(arguments, format);
	const int length = vasprintf(&made, format, arguments);
	va_end(arguments);
	if (length < 0)
		return;
	text.append(made, static_cast<std::size_t>(length));
	free(made);
}

/// Appends `value` in decimal. printf would take longer than everything else of a line.
inline void appendNumber(std::string &text, int value)
{
	char digits[16];
	char *const end = digits + sizeof digits;
	char *first = end;
	unsigned rest = value < 0 ? 0u - static_cast<unsigned>(value) : static_cast<unsigned>(value);
	do
		*--first = static_cast<char>('0' + rest % 10);
	while ((rest /= 10) > 0);
	if (value < 0)
		*--first = '-';
	text.append(first, static_cast<std::size_t>(end - first));
}

#endif
