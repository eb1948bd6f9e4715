#include "visible_text.h"

#include "typesetter.h"

#include <glib.h>

#include <algorithm>
#include <cstdint>

namespace desk
{
namespace
{

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD
constexpr int cellWidth = 8;                             // of a terminal's canvas, in pixels

// Bytes of the well-formed sequence at the start of `s` and its character; 0 when it is not well-formed.
// Surrogates count as well-formed here: each is one wrong character, not three wrong bytes.
size_t decode(std::string_view s, uint32_t &character)
{
	const auto byte = [&](size_t i) { return static_cast<uint8_t>(s[i]); };
	const uint8_t lead = byte(0);
	if (lead < 0x80) {
		character = lead;
		return 1;
	}
	const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
	if (lead < 0xC2 || lead > 0xF4 || s.size() < length)
		return 0;
	uint32_t c = lead & (0x7Fu >> length);
	for (size_t i = 1; i < length; ++i) {
		if ((byte(i) & 0xC0u) != 0x80u)
			return 0;
		c = c << 6 | (byte(i) & 0x3Fu);
	}
	constexpr uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
	if (c < least[length] || c > 0x10FFFF)
		return 0;
	character = c;
	return length;
}

bool mayBeDrawn(uint32_t c)
{
	if (c >= 0x80 && c <= 0x9F)
		return false;
	if (c >= 0xD800 && c <= 0xDFFF)
		return false;
	// Line and paragraph separators; bidirectional embeddings, overrides and isolates.
	if ((c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069))
		return false;
	return true;
}

// The length of the first character of `text` with all that combines with it.
size_t clusterLength(std::string_view text)
{
	uint32_t c = 0;
	size_t length = decode(text, c);
	constexpr size_t most = 64; // bytes; beyond that it is no writing system's letter
	while (length < text.size()) {
		const size_t next = decode(text.substr(length), c);
		if (length + next > most || !g_unichar_iszerowidth(c))
			break;
		length += next;
	}
	return length;
}

// How much of `word` a line of `width` pixels takes, at least one character.
size_t fittingLength(std::string_view word, int width, int rowHeight, bool bold)
{
	size_t length = clusterLength(word);
	for (size_t next = length; next < word.size(); length = next) {
		next += clusterLength(word.substr(next));
		// What takes no room at all is cut somewhere, too.
		if (next > static_cast<size_t>(std::max(width, 1)) * 8 ||
		    textWidth(word.substr(0, next), rowHeight, bold) > width)
			break;
	}
	return length;
}

void wrapLine(std::string_view line, int width, int rowHeight, bool bold, std::string &out)
{
	std::string current;
	const auto flush = [&] {
		out += current;
		out += '\n';
		current.clear();
	};
	while (!line.empty()) {
		const size_t blanks = std::min(line.find_first_not_of(' '), line.size());
		const size_t wordEnd = std::min(line.find(' ', blanks), line.size());
		// A word that no line can hold is not measured whole.
		const std::string_view piece = line.substr(0, wordEnd);
		const bool fits = piece.size() / 4 <= static_cast<size_t>(width) &&
		                  textWidth(current + std::string(piece), rowHeight, bold) <= width;
		if (fits) {
			current += piece;
			line.remove_prefix(wordEnd);
		} else if (blanks == line.size())
			break; // blanks beyond the edge make no line of their own
		else if (!current.empty()) {
			flush();
			line.remove_prefix(blanks);
		} else {
			line.remove_prefix(blanks);
			const size_t length = fittingLength(line.substr(0, wordEnd - blanks), width, rowHeight, bold);
			current = line.substr(0, length);
			line.remove_prefix(length);
			if (!line.empty() && line.front() != ' ')
				flush();
		}
	}
	out += current;
}

} // namespace

std::string visibleText(std::string_view bytes)
{
	if (!bytes.empty() && bytes.back() == '\n')
		bytes.remove_suffix(1);
	std::string out;
	out.reserve(bytes.size());
	while (!bytes.empty()) {
		uint32_t c = 0;
		const size_t length = decode(bytes, c);
		if (length == 0)
			out += replacement;
		else if (c < 0x20 || c == 0x7F) {
			out += "\xE2\x90"; // the control pictures, U+2400 to U+2421
			out += static_cast<char>(c == 0x7F ? 0xA1 : 0x80 + c);
		} else if (mayBeDrawn(c))
			out += bytes.substr(0, length);
		else
			out += replacement;
		bytes.remove_prefix(std::max<size_t>(length, 1));
	}
	return out;
}

int textColumns(std::string_view text)
{
	int columns = 0;
	while (!text.empty()) {
		uint32_t c = 0;
		const size_t length = decode(text, c);
		columns += length == 0 ? 1 : g_unichar_iszerowidth(c) ? 0 : g_unichar_iswide(c) ? 2 : 1;
		text.remove_prefix(std::max<size_t>(length, 1));
	}
	return columns;
}

int textWidth(std::string_view line, int rowHeight, bool bold)
{
	const std::string visible = visibleText(line);
	return std::max(lineWidth(visible, Face::prose, rowHeight, bold), textColumns(visible) * cellWidth);
}

std::string wrapText(std::string_view text, int width, int rowHeight, bool bold)
{
	std::string out;
	while (true) {
		const size_t end = std::min(text.find('\n'), text.size());
		wrapLine(visibleText(text.substr(0, end)), width, rowHeight, bold, out);
		if (end == text.size())
			return out;
		out += '\n';
		text.remove_prefix(end + 1);
	}
}

} // namespace desk
