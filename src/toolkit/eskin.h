#ifndef VEXLO_ESKIN_H
#define VEXLO_ESKIN_H

#include "estring.h"

#pragma GCC visibility push(default)

/// The active skin: the look of the host's screens, and named integers. The host owns it; there is exactly one at a
/// time.
class eSkin
{
public:
	/// Never null while the plugin runs.
	static eSkin *getActive();

	/// The skin's integer `name`, or `fallback` when it has none. "fontsize" is the height in pixels
	/// of one row of text.
	int queryValue(const eString &name, int fallback) const;

private:
	eSkin() = default;
};

#pragma GCC visibility pop

#endif
