#ifndef VEXLO_HOST_NAMES_H
#define VEXLO_HOST_NAMES_H

// The toolkit, ours or a vendor's, and the few things in which toolkits differ. A vendor's toolkit.h
// defines the names that are not as in ours; docs/porting.md shows one.

#include "toolkit.h"

/// The height of a window's client area in pixels. `window` is the window that asks, so that a
/// protected member serves as well.
#ifndef VEXLO_CLIENT_HEIGHT
#define VEXLO_CLIENT_HEIGHT(window) ((window).getClientRect().height())
#endif

/// The list box that a menu window holds, likewise.
#ifndef VEXLO_MENU_LIST
#define VEXLO_MENU_LIST(menu) ((menu).list)
#endif

/// The key of a text entry, as an untyped pointer.
#ifndef VEXLO_ENTRY_KEY
#define VEXLO_ENTRY_KEY(entry) ((entry).getKey())
#endif

/// What a message box returns for yes and for no.
#ifndef VEXLO_ANSWER_YES
#define VEXLO_ANSWER_YES 4
#endif
#ifndef VEXLO_ANSWER_NO
#define VEXLO_ANSWER_NO 8
#endif

/// The active skin, which toolkits hand out as a pointer or as a reference.
inline const eSkin &hostSkin(const eSkin *skin)
{
	return *skin;
}
inline const eSkin &hostSkin(const eSkin &skin)
{
	return skin;
}

/// A format as eString::sprintf takes it: as writable characters, which it only reads.
__attribute__((format_arg(1))) inline char *hostFormat(const char *format)
{
	return const_cast<char *>(format);
}

#endif
