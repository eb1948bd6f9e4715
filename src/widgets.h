#ifndef VEXLO_WIDGETS_H
#define VEXLO_WIDGETS_H

#include "host_names.h"

/// What every screen is made of, so that each says only what is its own. A namespace, because the
/// members of a host's window would hide functions of their names.
namespace screen
{

/// Height in pixels of one text row in the active skin.
int rowHeight();

/// Titles a window and places its client area on the screen.
void frame(eWindow &window, const char *title, ePoint position, eSize size);

/// A plain label in the client area of `window`, which owns it.
void addLabel(eWindow &window, const char *text, ePoint position, eSize size);

/// Shows `text`: here once, so that not every caller makes and destroys a string.
void setText(eWidget &widget, const char *text);

/// A button without a text yet, at the lower left of `window`, which owns it and whose client area is
/// `clientHeight` high; `colour` is the key that presses it.
eButton *addButton(eWindow &window, int clientHeight, const char *colour);

/// A list of text lines in the client area of `window`, which owns it.
eListBox<eListBoxEntryText> *addList(eWindow &window, ePoint position, eSize size);

/// A line at the end of `list`, which owns it; its key is an eString of its own that holds `key`.
void addLine(eListBox<eListBoxEntryText> *list, const char *text, const char *key);

} // namespace screen

#endif
