#include "estring.h"

#include "printf_text.h"
#include "trace.h"

eString &eString::sprintf(char *format, ...)
{
	va_list values;
	va_start(values, format);
	std::string text = desk::printfText(format, values);
	va_end(values);

	desk::Trace::get().result(text, "eString.sprintf", format);
	swap(text);
	return *this;
}
