#ifndef DESK_TEXT_VISIBLE_TEXT_H
#define DESK_TEXT_VISIBLE_TEXT_H

#include <string>
#include <string_view>
#include <vector>

namespace desk
{

/// `bytes` as valid UTF-8 without anything that could be obeyed or overlooked: tabs become blanks up to the
/// next column that is a multiple of 8, other C0 controls and DEL their control pictures (U+2400...); C1
/// controls, separators of lines and paragraphs, what changes the direction of other text, characters that
/// show nothing (zero-width ones, tags, variation selectors) and bytes that are no UTF-8 become U+FFFD, one
/// each. Only the marks of direction (U+200E, U+200F) stay. One line end at the end of the text ("\n") is
/// left out: it is where the line ends.
std::string visibleText(std::string_view bytes);

/// Whether UTF-8 is what the locale's characters are made of.
bool localeIsUtf8();

/// visibleText() for messages: where the locale's character set is not UTF-8, whatever is not ASCII becomes "?",
/// because bytes of UTF-8 can be controls there.
std::string localText(std::string_view bytes);

/// Columns of `text` (valid UTF-8, as visibleText() gives it) in a terminal: 0 for combining
/// characters, 2 for wide ones.
int textColumns(std::string_view text);

/// `text`, as visibleText() gives it, in rows of at most so many columns of a terminal (at least 2), broken
/// after a blank, or within a word that has no room in a row; of an empty text one empty row.
std::vector<std::string> textRows(std::string_view text, int columns);

/// The width of a column where text is drawn in rows of that height, in pixels.
int pixelsOfColumn(int rowHeight);

/// `text` broken into lines that have room in `width` pixels, after blanks or, where a word is too long, within it.
/// What is measured are columns, which are the same on every screen and without any font: TextStyle::whole makes
/// up for letters that are wider. Line ends in the text stay line ends. Takes any bytes; returns the lines, as
/// visibleText() gives them, joined by "\n".
std::string wrapText(std::string_view text, int width, int rowHeight);

} // namespace desk

#endif
