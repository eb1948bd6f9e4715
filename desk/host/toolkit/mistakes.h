#ifndef DESK_TOOLKIT_MISTAKES_H
#define DESK_TOOLKIT_MISTAKES_H

#include "windows.h"

#include <string>

namespace desk
{

/// Reports mistakes in the widgets of visible windows: two with one colour key, a text cut off, no size.
void lookForMistakes(const Windows &windows);

/// Reports a widget with a decoration that the skin lacks; null is none.
void checkDecoration(const eWidget &widget, const char *name);

/// Reports an operation with a key that is no colour key; "" is none.
void checkColour(const eWidget &widget, const char *operation, const std::string &key);

/// Whether the key looks like an eString, which a list box can delete.
bool isString(const void *key);

} // namespace desk

#endif
