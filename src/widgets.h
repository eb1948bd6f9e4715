#ifndef VEXLO_WIDGETS_H
#define VEXLO_WIDGETS_H

#include "host_names.h"

/// Parts that all dialogs share. A namespace, because members of a host's window would hide functions of the same
/// name.
namespace widgets
{

/// Height in pixels of one text row in the active skin.
int rowHeight();

/// Titles a window and places its client area on the screen.
void place(eWindow &window, const char *title, ePoint position, eSize size);

/// A plain label in the client area of `window`, which owns it.
void addLabel(eWindow &window, const char *text, ePoint position, eSize size);

/// Shows `text`. Saves callers the code for a temporary string, which counts in the plugin's size.
void setText(eWidget &widget, const char *text);

/// A button without text, at the lower left of `window`, which owns it. The client area is `clientHeight` high; the
/// key `colour` presses the button.
eButton *addButton(eWindow &window, int clientHeight, const char *colour);

/// A list of text lines in the client area of `window`, which owns it.
eListBox<eListBoxEntryText> *addList(eWindow &window, ePoint position, eSize size);

/// Appends a line to `list`, which owns it. Its key is a new eString with the content of `key`.
void addLine(eListBox<eListBoxEntryText> *list, const char *text, const char *key);

} // namespace widgets

#endif
