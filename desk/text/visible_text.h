#ifndef DESK_TEXT_VISIBLE_TEXT_H
#define DESK_TEXT_VISIBLE_TEXT_H

#include <string>
#include <string_view>
#include <vector>

namespace desk
{

/// `bytes` as valid UTF-8 in which every character is visible and harmless. Tabs become blanks up to the next
/// multiple of 8 columns, other C0 controls and DEL their control pictures (U+2400...). Each of these becomes U+FFFD:
/// C1 controls, separators of lines and paragraphs, overrides of direction, invisible characters (zero-width ones,
/// tags, variation selectors), and invalid bytes. Direction marks (U+200E, U+200F) stay. Drops one "\n" at the end.
std::string visibleText(std::string_view bytes);

/// Whether the locale's character set is UTF-8.
bool localeIsUtf8();

/// visibleText() for messages. In other character sets than UTF-8, non-ASCII characters become "?", because their
/// bytes may be controls there.
std::string localText(std::string_view bytes);

/// Columns of `text` (output of visibleText()) in a terminal: 0 for combining characters, 2 for wide ones.
int textColumns(std::string_view text);

/// Breaks `text` (output of visibleText()) into rows of at most `columns` columns of a terminal (at least 2), after
/// blanks or, if a word is too long, within it. An empty text gives one empty row.
std::vector<std::string> textRows(std::string_view text, int columns);

/// Pixels of one column of text in rows of that height.
int pixelsOfColumn(int rowHeight);

/// Breaks `text` into lines of at most `width` pixels, after blanks or, if a word is too long, within it. Counts
/// columns, which do not depend on the screen or the fonts; TextStyle::whole adjusts wider letters. Keeps line ends.
/// Takes any bytes; returns the output of visibleText() for each line, joined by "\n".
std::string wrapText(std::string_view text, int width, int rowHeight);

} // namespace desk

#endif
