#include "eskin.h"

#include "desk.h"
#include "trace.h"

using desk::Desk;
using desk::Trace;

eSkin *eSkin::getActive()
{
	static eSkin active;
	Trace::get().function("eSkin.getActive");
	return &active;
}

int eSkin::queryValue(const eString &name, int fallback) const
{
	const int value = Desk::get().skin().value(name).value_or(fallback);
	Trace::get().result(value, "eSkin.queryValue", name, fallback);
	return value;
}
