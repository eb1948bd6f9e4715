#include "eskin.h"

#include "desk.h"
#include "trace.h"

using desk::Desk;
using desk::Trace;

eSkin *eSkin::getActive()
{
	static eSkin active;
	if (Trace::get().on())
		Trace::get().line("eSkin.getActive()");
	return &active;
}

int eSkin::queryValue(const eString &name, int fallback) const
{
	const int value = Desk::get().skin().value(name).value_or(fallback);
	Trace &trace = Trace::get();
	if (trace.on())
		trace.line(trace.form("eSkin.queryValue", name, fallback) + " = " + std::to_string(value));
	return value;
}
