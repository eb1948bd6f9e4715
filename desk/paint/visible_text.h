#ifndef DESK_PAINT_VISIBLE_TEXT_H
#define DESK_PAINT_VISIBLE_TEXT_H

#include <string>
#include <string_view>

namespace desk
{

/// `bytes` as valid UTF-8 without any control character, so that drawing it can obey nothing:
/// C0 controls and DEL become their control pictures (U+2400...), C1 controls, surrogates, line and
/// paragraph separators, bidirectional embeddings, overrides and isolates, and bytes that are no UTF-8
/// become U+FFFD (one each). One line end at the end of the text ("\n") is left out: it is where the
/// line ends.
std::string visibleText(std::string_view bytes);

/// Columns of `text` (valid UTF-8, as visibleText() gives it) in a terminal: 0 for combining
/// characters, 2 for wide ones.
int textColumns(std::string_view text);

/// Pixels that a line needs in any canvas: the wider of Pango's measure at `rowHeight` and of
/// textColumns() cells. For layouts that must not lose text anywhere.
int textWidth(std::string_view line, int rowHeight, bool bold);

/// `text` broken at blanks into lines no wider than `width` pixels (prose face); a word wider than
/// that is broken within, at least one character a line. Line ends in the text stay line ends. Takes any
/// bytes; returns the lines, as visibleText() gives them, joined by "\n".
std::string wrapText(std::string_view text, int width, int rowHeight, bool bold);

} // namespace desk

#endif
