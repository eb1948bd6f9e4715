#ifndef DESK_PAINT_TYPESETTER_H
#define DESK_PAINT_TYPESETTER_H

#include "canvas.h"

#include <cstddef>
#include <string_view>

typedef struct _cairo cairo_t;

namespace desk
{

/// Lays out and draws single lines of text. All text of the desk host goes through here, so that what
/// is measured is what is drawn. The fonts and their options are fixed, not the machine's.
/// `line` is what visibleText() gives: valid UTF-8 without controls. `rowHeight` is brought into the
/// range 1 to 200.

/// Whether the fonts of this computer have letters and digits.
bool haveLetters();

/// Draws the line in the middle of the height of `area`. Draws the start of a line that is longer than
/// `area` is wide, and beyond its end; the caller clips. Lays out no more than can be seen in `area`.
/// In Face::prose a right-to-left line starts at the right.
void drawLine(cairo_t *to, const Rect &area, std::string_view line, const TextStyle &style);

} // namespace desk

#endif
