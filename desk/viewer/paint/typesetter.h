#ifndef DESK_PAINT_TYPESETTER_H
#define DESK_PAINT_TYPESETTER_H

#include "canvas.h"

#include <cstddef>
#include <string_view>

typedef struct _cairo cairo_t;

namespace desk
{

/// Lays out and draws all text of the desk host, a line at a time, so that measuring and drawing agree. Fonts and
/// options are fixed, independent of the computer. `line` is output of visibleText(). `rowHeight` is limited to 1 to
/// 200.

/// Whether this computer's fonts have letters and digits.
bool haveLetters();

/// Draws the line in the vertical middle of `area`. A longer line is drawn from its start and beyond the end of
/// `area`; the caller clips, and restores the state of `to`. Lays out only the visible part. In Face::prose, a
/// right-to-left line begins at the right.
void drawLine(cairo_t *to, const Rect &area, std::string_view line, const TextStyle &style);

} // namespace desk

#endif
