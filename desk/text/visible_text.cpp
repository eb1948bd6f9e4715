#include "visible_text.h"

#include <glib.h>

#include <langinfo.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <vector>

namespace desk
{
namespace
{

constexpr char replacement[] = "\xEF\xBF\xBD"; // U+FFFD
constexpr int tabStop = 8;                     // in columns
constexpr int cellWidth = 8;                   // of a terminal's canvas, in pixels: the narrowest column

/// Characters not to draw: controls, and invisible ones. Keeps the direction marks U+200E and U+200F, which
/// translations need; they end with their word.
bool isHidden(gunichar c)
{
	constexpr struct
	{
		gunichar first, last;
	} ranges[] = {
		{0x80, 0x9F}, // C1 controls
		{0xAD, 0xAD}, // from here Default_Ignorable_Code_Point of Unicode ...
		{0x34F, 0x34F},   {0x61C, 0x61C},     {0x115F, 0x1160},   {0x17B4, 0x17B5},   {0x180B, 0x180F},
		{0x200B, 0x200D}, {0x2028, 0x202E}, // ... and separators of lines and paragraphs
		{0x2060, 0x206F}, {0x3164, 0x3164},   {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0},
		{0xFFF0, 0xFFFB}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF}, // tags
	};
	const auto *range = std::lower_bound(std::begin(ranges), std::end(ranges), c,
	                                     [](const auto &r, gunichar value) { return r.last < value; });
	return range != std::end(ranges) && c >= range->first;
}

int columnsOf(gunichar c)
{
	return c < 0x80 ? 1 : g_unichar_iszerowidth(c) ? 0 : g_unichar_iswide(c) ? 2 : 1;
}

/// Without trailing blanks.
std::string_view trimmed(std::string_view text)
{
	return text.substr(0, text.find_last_not_of(' ') + 1);
}

} // namespace

std::string visibleText(std::string_view bytes)
{
	if (!bytes.empty() && bytes.back() == '\n')
		bytes.remove_suffix(1);
	if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= 0x20 && c < 0x7F; }))
		return std::string(bytes); // as most are
	std::string out;
	out.reserve(bytes.size());
	int column = 0;
	while (!bytes.empty()) {
		const auto lead = static_cast<unsigned char>(bytes.front());
		const gunichar c =
			lead < 0x80 ? lead : g_utf8_get_char_validated(bytes.data(), static_cast<gssize>(bytes.size()));
		const bool valid = c <= 0x10FFFF;
		const size_t length = valid ? static_cast<size_t>(g_unichar_to_utf8(c, nullptr)) : 1;
		if (c == '\t') {
			const int blanks = tabStop - column % tabStop;
			out.append(static_cast<size_t>(blanks), ' ');
			column += blanks;
		} else if (c < 0x20 || c == 0x7F) {
			out += "\xE2\x90"; // the control pictures, U+2400 to U+2421
			out += static_cast<char>(c == 0x7F ? 0xA1 : 0x80 + c);
			++column;
		} else if (!valid || isHidden(c)) {
			out += replacement;
			++column;
		} else {
			out += bytes.substr(0, length);
			column += columnsOf(c);
		}
		bytes.remove_prefix(length);
	}
	return out;
}

bool localeIsUtf8()
{
	return std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
}

std::string localText(std::string_view bytes)
{
	std::string visible = visibleText(bytes);
	if (localeIsUtf8())
		return visible;
	std::string out;
	for (const char *at = visible.c_str(); *at; at = g_utf8_next_char(at))
		out += static_cast<unsigned char>(*at) < 0x80 ? *at : '?';
	return out;
}

int textColumns(std::string_view text)
{
	int columns = 0;
	for (const char *at = text.data(); at < text.data() + text.size(); at = g_utf8_next_char(at))
		columns += columnsOf(g_utf8_get_char(at));
	return columns;
}

std::vector<std::string> textRows(std::string_view text, int columns)
{
	std::vector<std::string> rows(1);
	int used = 0;
	bool full = false; // the row is full, and blanks after it are dropped
	for (const char *at = text.data(), *end = at + text.size(), *next = at; at < end; at = next) {
		next = g_utf8_next_char(at);
		const int needed = columnsOf(g_utf8_get_char(at));
		if (used + needed > columns && *at == ' ') {
			full = true;
			continue;
		}
		for (; used + needed > columns; full = false) {
			const size_t blank = full ? std::string::npos : rows.back().rfind(' ');
			std::string word = blank == std::string::npos ? "" : rows.back().substr(blank + 1);
			rows.back().resize(rows.back().size() - word.size());
			used = textColumns(word);
			rows.push_back(std::move(word));
		}
		rows.back().append(at, next);
		used += needed;
	}
	return rows;
}

int pixelsOfColumn(int rowHeight)
{
	return std::max(cellWidth, rowHeight * 2 / 5);
}

std::string wrapText(std::string_view text, int width, int rowHeight)
{
	const int column = pixelsOfColumn(rowHeight);
	std::string out;
	while (true) {
		const size_t end = std::min(text.find('\n'), text.size());
		bool first = true;
		for (const std::string &row :
		     textRows(visibleText(text.substr(0, end)), std::max(2, width / column))) {
			out.append(first ? "" : "\n").append(trimmed(row));
			first = false;
		}
		if (end == text.size())
			return out;
		out += '\n';
		text.remove_prefix(end + 1);
	}
}

} // namespace desk
