#include "estring.h"

#include "printf_text.h"
#include "trace.h"

eString &eString::sprintf(char *format, ...)
{
	va_list values;
	va_start(values, format);
	std::string text = desk::printfText(format, values);
	va_end(values);

	desk::Trace &trace = desk::Trace::get();
	if (trace.on())
		trace.line(trace.form("eString.sprintf", static_cast<const char *>(format)) + " = " +
		           desk::Trace::quoted(text));
	swap(text);
	return *this;
}
