#include "cell_canvas.h"

#include "visible_text.h"

#include <glib.h>

#include <algorithm>

namespace desk
{
namespace
{

using Shape = Cell::Shape;

constexpr Rect wholeGrid{0, 0, cellColumns, cellRows};
constexpr int thinnest = 4;        // pixels of what takes a cell of its own
constexpr size_t mostBytes = 8192; // of a line; far more than its cells need
constexpr size_t mostMarks = 4;    // combining characters in a cell

int floorDivide(int value, int by)
{
	return value >= 0 ? value / by : -((by - 1 - value) / by);
}

int nearest(int value, int by)
{
	return floorDivide(value + by / 2, by);
}

/// The cells, of `size` pixels, from `start` to `end`, rounded.
void toCells(int start, int end, int size, int &first, int &count)
{
	first = nearest(start, size);
	count = nearest(end, size) - first;
	if (count == 0 && end - start >= thinnest) {
		first = floorDivide((start + end) / 2, size);
		count = 1;
	}
}

Rect cellsOf(const Rect &pixels)
{
	Rect cells;
	toCells(pixels.x, pixels.right(), CellCanvas::cellWidth, cells.x, cells.w);
	toCells(pixels.y, pixels.bottom(), CellCanvas::cellHeight, cells.y, cells.h);
	return cells.intersected(wholeGrid);
}

/// The cells of a line of text in its middle.
Rect cellsOfLine(const Rect &pixels)
{
	Rect cells = cellsOf(pixels);
	cells.y = floorDivide(pixels.y + pixels.h / 2, CellCanvas::cellHeight);
	cells.h = pixels.h >= thinnest ? 1 : 0;
	return cells.intersected(wholeGrid);
}

Color middle(Color a, Color b)
{
	const auto mix = [](int from, int to) { return static_cast<uint8_t>((from + to) / 2); };
	return {mix(a.r, b.r), mix(a.g, b.g), mix(a.b, b.b)};
}

Color legibleOn(Color ground)
{
	const int light = 299 * ground.r + 587 * ground.g + 114 * ground.b;
	return light > 105000 ? Color{0, 0, 0} : Color{255, 255, 255};
}

/// A character with its combining characters, 1 or 2 cells wide.
struct Glyph
{
	std::string bytes;
	int width;
};

std::vector<Glyph> glyphsOf(std::string_view line)
{
	const std::string visible = visibleText(line.substr(0, mostBytes));
	std::vector<Glyph> glyphs;
	size_t marks = 0;
	for (const char *at = visible.c_str(), *next = at; *at; at = next) {
		next = g_utf8_next_char(at);
		const std::string character(at, next);
		const int width = textColumns(character);
		if (width > 0) {
			glyphs.push_back({character, width});
			marks = 0;
		} else if (glyphs.empty())
			glyphs.push_back({"\xE2\x97\x8C" + character, 1}); // on a dotted circle
		else if (++marks <= mostMarks)
			glyphs.back().bytes += character;
	}
	return glyphs;
}

int widthOf(const std::vector<Glyph> &glyphs)
{
	int width = 0;
	for (const Glyph &glyph : glyphs)
		width += glyph.width;
	return width;
}

} // namespace

CellCanvas::CellCanvas() : clips{wholeScreen}, grid(static_cast<size_t>(cellRows * cellColumns)) {}

void CellCanvas::pushClip(const Rect &area)
{
	clips.push_back(area.intersected(clips.back()));
}

void CellCanvas::popClip()
{
	if (clips.size() > 1)
		clips.pop_back();
}

// Overwriting half of a wide character leaves a blank in the other half.
void CellCanvas::put(int row, int column, const Cell &fresh)
{
	Cell &old = cell(row, column);
	if (old.glyph.empty() && !fresh.glyph.empty() && column > 0)
		cell(row, column - 1).glyph = " ";
	if (column + 1 < cellColumns && cell(row, column + 1).glyph.empty())
		cell(row, column + 1).glyph = " ";
	old = fresh;
}

void CellCanvas::fill(const Rect &area, const Fill &fill)
{
	const bool isButton = fill.part == Part::button || fill.part == Part::currentButton;
	const bool isCurrent = fill.part == Part::currentLine || fill.part == Part::currentButton;
	const bool isLine = isButton || isCurrent || fill.part == Part::line || fill.part == Part::idleLine;
	const Rect seen = area.intersected(clips.back());
	const Rect cells = isLine ? cellsOfLine(seen) : cellsOf(seen);
	if (fill.part == Part::backdrop)
		inside = {}; // a new picture
	for (int row = cells.y; row < cells.bottom(); ++row)
		for (int column = cells.x; column < cells.right(); ++column) {
			Cell fresh;
			fresh.ground = middle(fill.top, fill.bottom);
			fresh.below = isLine ? at(row, column).ground : fresh.ground;
			fresh.text = legibleOn(fresh.ground);
			fresh.inWindow = !inside.empty();
			fresh.current = isCurrent;
			fresh.dim = fill.part == Part::idleLine;
			if (fill.part == Part::track)
				fresh.shape = Shape::track;
			else if (fill.part == Part::thumb)
				fresh.shape = Shape::thumb;
			if (isButton && column == cells.x)
				fresh.end = '[';
			else if (isButton && column == cells.right() - 1)
				fresh.end = ']';
			put(row, column, fresh);
		}
}

void CellCanvas::window(const Rect &, const Rect &client, std::string_view title, const WindowStyle &style)
{
	inside = cellsOf(client.intersected(wholeScreen));
	const Rect clip = cellsOf(clips.back());
	const int left = inside.x - 1, right = inside.right(), top = inside.y - 1, bottom = inside.bottom();
	const auto drawn = [&](int row, int column) {
		return row >= clip.y && row < clip.bottom() && column >= clip.x && column < clip.right();
	};
	for (int row = top; row <= bottom; ++row)
		for (int column = left; column <= right; ++column) {
			if (!drawn(row, column))
				continue;
			Cell fresh;
			fresh.ground = fresh.below =
				row == top ? middle(style.titleTop, style.titleBottom) : style.client;
			fresh.text = style.border;
			fresh.inWindow = true;
			if (row == top)
				fresh.shape = column == left    ? Shape::topLeft
				              : column == right ? Shape::topRight
				                                : Shape::horizontal;
			else if (row == bottom)
				fresh.shape = column == left    ? Shape::bottomLeft
				              : column == right ? Shape::bottomRight
				                                : Shape::horizontal;
			else if (column == left || column == right)
				fresh.shape = Shape::vertical;
			put(row, column, fresh);
		}

	std::vector<Glyph> glyphs = glyphsOf(title);
	if (glyphs.empty())
		return;
	glyphs.insert(glyphs.begin(), {" ", 1});
	glyphs.push_back({" ", 1});
	int column = inside.x;
	for (const Glyph &glyph : glyphs) {
		if (column + glyph.width > right - 1)
			break;
		if (drawn(top, column) && drawn(top, column + glyph.width - 1)) {
			Cell fresh = at(top, column);
			fresh.shape = Shape::none;
			fresh.text = style.titleText;
			fresh.bold = true;
			fresh.glyph = glyph.bytes;
			put(top, column, fresh);
			fresh.glyph.clear();
			if (glyph.width == 2)
				put(top, column + 1, fresh);
		}
		column += glyph.width;
	}
}

void CellCanvas::text(const Rect &area, std::string_view line, const TextStyle &style)
{
	put(area, line, style, std::nullopt);
}

void CellCanvas::keySymbol(const Rect &area, Key key, Color color)
{
	const char symbol[] = {'[', g_ascii_toupper(*keyName(key)), ']', '\0'};
	TextStyle style;
	style.color = legibleOn(color);
	style.bold = true;
	style.align = Align::centre;
	put(area, cellsOf(area).w < 3 ? std::string_view(symbol + 1, 1) : symbol, style, color);
}

void CellCanvas::put(const Rect &area, std::string_view line, const TextStyle &style,
                     std::optional<Color> ground)
{
	const Rect seen = area.intersected(clips.back());
	const int centre = area.y + area.h / 2;
	const int row = floorDivide(centre, cellHeight);
	const Rect within = inside.empty() ? wholeGrid : inside;
	if (seen.empty() || centre < seen.y || centre >= seen.bottom() || row < within.y ||
	    row >= within.bottom())
		return;

	const std::vector<Glyph> glyphs = glyphsOf(line);
	int column = nearest(area.x, cellWidth);
	const int room = nearest(area.right(), cellWidth) - column - widthOf(glyphs);
	if (room > 0 && style.align != Align::start)
		column += style.align == Align::end ? room : room / 2;
	const int from = std::max(nearest(seen.x, cellWidth), within.x);
	const int end = std::min(nearest(seen.right(), cellWidth), within.right());
	for (const Glyph &glyph : glyphs) {
		const int after = column + glyph.width;
		if (column >= from && after <= end && (glyph.bytes != " " || ground)) {
			Cell fresh = at(row, column);
			fresh.glyph = glyph.bytes;
			fresh.shape = Shape::none;
			fresh.text = style.color;
			fresh.bold = style.bold;
			fresh.dim = fresh.dim || style.emphasis == Emphasis::dim;
			fresh.current = fresh.current || style.emphasis == Emphasis::current;
			if (ground)
				fresh.ground = fresh.below = *ground;
			put(row, column, fresh);
			if (glyph.width == 2) {
				fresh.glyph.clear();
				put(row, column + 1, fresh);
			}
		}
		column = after;
	}
}

std::vector<int> CellCanvas::rowsWithin(int comfortable, int most) const
{
	enum Worth
	{
		backdrop,
		blank,
		written,
	};
	std::vector<std::pair<int, Worth>> rows;
	int viewer = cellRows / 2;
	for (int row = 0; row < cellRows; ++row) {
		Worth worth = backdrop;
		for (int column = 0; column < cellColumns; ++column) {
			const Cell &here = at(row, column);
			const bool side =
				here.shape == Shape::vertical || here.shape == Shape::track || here.shape == Shape::thumb;
			if (here.current)
				viewer = row;
			if (here.glyph != " " || here.current || (here.shape != Shape::none && !side))
				worth = written;
			else if (here.inWindow)
				worth = std::max(worth, blank);
		}
		rows.emplace_back(row, worth);
	}

	const auto more = [&](int count) { return static_cast<int>(rows.size()) > count; };
	// Alternately from both ends, so that the rest stays in the middle, also when a question opens.
	for (const Worth worth : {backdrop, blank})
		for (bool bottom = true; more(comfortable); bottom = !bottom) {
			const auto leavable = [&](const auto &row) { return row.second == worth; };
			const auto first = std::find_if(rows.begin(), rows.end(), leavable);
			if (first == rows.end())
				break;
			rows.erase(bottom ? std::prev(std::find_if(rows.rbegin(), rows.rend(), leavable).base()) : first);
		}
	while (more(std::max(most, 1)))
		rows.erase(viewer - rows.front().first > rows.back().first - viewer ? rows.begin()
		                                                                    : std::prev(rows.end()));
	std::vector<int> numbers;
	for (const auto &row : rows)
		numbers.push_back(row.first);
	return numbers;
}

int CellCanvas::firstColumnWithin(int most) const
{
	const int first = std::max(0, (cellColumns - most) / 2);
	for (int column = 0; column < first; ++column)
		for (int row = 0; row < cellRows; ++row)
			if (at(row, column).inWindow)
				return column;
	return first;
}

} // namespace desk
