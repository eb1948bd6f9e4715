#ifndef VEXLO_HOST_NAMES_H
#define VEXLO_HOST_NAMES_H

// Includes the toolkit, ours or a vendor's, and covers the few differences between toolkits. A vendor's toolkit.h
// defines the names that differ from ours; docs/porting.md shows one.

#include "toolkit.h"

/// The height of a window's client area in pixels. `window` is the calling window itself, so a protected member works
/// too.
#ifndef VEXLO_CLIENT_HEIGHT
#define VEXLO_CLIENT_HEIGHT(window) ((window).getClientRect().height())
#endif

/// The list box of a menu window; may be protected too.
#ifndef VEXLO_MENU_LIST
#define VEXLO_MENU_LIST(menu) ((menu).list)
#endif

/// The key of a text entry, as an untyped pointer.
#ifndef VEXLO_ENTRY_KEY
#define VEXLO_ENTRY_KEY(entry) ((entry).getKey())
#endif

/// Results of a message box for yes and no.
#ifndef VEXLO_ANSWER_YES
#define VEXLO_ANSWER_YES 4
#endif
#ifndef VEXLO_ANSWER_NO
#define VEXLO_ANSWER_NO 8
#endif

/// The active skin: some toolkits return a pointer, others a reference.
inline const eSkin &hostSkin(const eSkin *skin)
{
	return *skin;
}
inline const eSkin &hostSkin(const eSkin &skin)
{
	return skin;
}

/// A format for eString::sprintf, which takes writable characters but only reads them.
__attribute__((format_arg(1))) inline char *hostFormat(const char *format)
{
	return const_cast<char *>(format);
}

#endif
