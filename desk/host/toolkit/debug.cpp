#include "edebug.h"

#include "desk.h"
#include "printf_text.h"
#include "trace.h"

void eDebug(const char *format, ...)
{
	va_list values;
	va_start(values, format);
	const std::string text = desk::printfText(format, values);
	va_end(values);

	desk::Trace::get().function("eDebug", text);
	desk::Desk::get().note(text);
}
