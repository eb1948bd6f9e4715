#ifndef DESK_TOOLKIT_NOTICES_H
#define DESK_TOOLKIT_NOTICES_H

#include "windows.h"

#include <string>

namespace desk
{

/// Notices what is wrong with the widgets of the visible windows: two with one colour, a text that is cut off, no size.
void lookForMistakes(const Windows &windows);

/// Notices that the plugin constructs a widget with a decoration that the skin lacks; null is none.
void noticeDecoration(const eWidget &widget, const char *name);

/// Notices that it names in that operation what is no colour key; "" is none.
void noticeColour(const eWidget &widget, const char *operation, const std::string &key);

/// Whether a list box can delete this key: it is an eString, as far as its bytes tell.
bool isString(const void *key);

} // namespace desk

#endif
