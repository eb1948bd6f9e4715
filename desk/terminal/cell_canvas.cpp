#include "cell_canvas.h"

#include "typesetter.h"
#include "visible_text.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace desk
{
namespace
{

constexpr Rect screen{0, 0, screenWidth, screenHeight};
constexpr int smallest = 4;        // pixels; what is thinner is a line or a shade, and is left out
constexpr int rowLike = 48;        // pixels; a fill up to that height belongs to the text on it
constexpr size_t mostBytes = 8192; // of a line; far more than 90 cells with their combining characters
constexpr size_t mostMarks = 4;    // combining characters that a cell can hold
constexpr int mostBeyond = 60;     // cells of a line's end that may stand elsewhere

int floorDivide(int value, int by)
{
	return value >= 0 ? value / by : -((by - 1 - value) / by);
}

int nearest(int value, int by)
{
	return floorDivide(value + by / 2, by);
}

// The cells from pixel `from` to `end`, one at least unless the stretch is hardly visible.
void stretch(int from, int end, int size, int limit, int &first, int &last)
{
	first = nearest(from, size);
	last = nearest(end, size);
	if (first >= last && end - from >= smallest) {
		first = floorDivide((from + end) / 2, size);
		last = first + 1;
	}
	first = std::max(first, 0);
	last = std::min(last, limit);
}

bool contains(const Rect &area, int x, int y)
{
	return x >= area.x && x < area.right() && y >= area.y && y < area.bottom();
}

bool contains(const Rect &outer, const Rect &inner)
{
	return inner.x >= outer.x && inner.y >= outer.y && inner.right() <= outer.right() &&
	       inner.bottom() <= outer.bottom();
}

Color blend(Color a, Color b, int part, int whole)
{
	const auto mix = [&](uint8_t from, uint8_t to) {
		return static_cast<uint8_t>(from + (to - from) * part / whole);
	};
	return {mix(a.r, b.r), mix(a.g, b.g), mix(a.b, b.b)};
}

// What is legible on `ground`.
Color contrasting(Color ground)
{
	const int light = 299 * ground.r + 587 * ground.g + 114 * ground.b;
	return light > 105000 ? Color{0, 0, 0} : Color{255, 255, 255};
}

// A line of text, a string for each cell; wide characters are followed by an empty one.
std::vector<std::string> glyphsOf(std::string_view line)
{
	const std::string visible = visibleText(line.substr(0, mostBytes));
	std::vector<std::string> cells;
	size_t marks = 0;
	size_t last = 0; // where combining characters go
	for (size_t i = 0; i < visible.size();) {
		size_t end = i + 1;
		while (end < visible.size() && (static_cast<unsigned char>(visible[end]) & 0xC0) == 0x80)
			++end;
		std::string character = visible.substr(i, end - i);
		i = end;
		const int columns = textColumns(character);
		if (columns == 0 && !cells.empty()) {
			if (++marks <= mostMarks)
				cells[last] += character;
			continue;
		}
		marks = 0;
		last = cells.size();
		// With nothing to combine with, it stands on a dotted circle.
		cells.push_back(columns == 0 ? "\xE2\x97\x8C" + character : std::move(character));
		if (columns == 2)
			cells.emplace_back();
	}
	return cells;
}

// Half a wide character is nothing.
void dropHalves(std::vector<std::string> &glyphs)
{
	if (!glyphs.empty() && glyphs.front().empty())
		glyphs.front() = " ";
	if (!glyphs.empty() && textColumns(glyphs.back()) == 2)
		glyphs.back() = " ";
}

} // namespace

CellCanvas::CellCanvas() : clips{screen}, grid(static_cast<size_t>(cellRows * cellColumns)) {}

void CellCanvas::pushClip(const Rect &area)
{
	clips.push_back(area.intersected(clip()));
}

void CellCanvas::popClip()
{
	if (clips.size() > 1)
		clips.pop_back();
}

CellCanvas::Block CellCanvas::blockOf(const Rect &area)
{
	Block block;
	stretch(area.y, area.bottom(), cellHeight, cellRows, block.firstRow, block.endRow);
	stretch(area.x, area.right(), cellWidth, cellColumns, block.firstColumn, block.endColumn);
	return block;
}

// Takes away what a new area hides; so repeated painting of the same screen needs no more memory.
void CellCanvas::cover(const Rect &pixels, const Block &block,
                       const std::function<bool(const CellLine &)> &hides)
{
	changed = true;
	areas.erase(std::remove_if(areas.begin(), areas.end(),
	                           [&](const Area &area) { return contains(pixels, area.pixels); }),
	            areas.end());
	for (Text &text : texts) {
		if (!hides(text.line))
			continue;
		const int from = std::max(block.firstColumn - text.line.column, 0);
		const int end = std::min(block.endColumn - text.line.column, text.line.width);
		if (from >= end)
			continue;
		const auto wipe = [&](int i) {
			text.glyphs[static_cast<size_t>(i)] = " ";
			text.line.taken.reset(static_cast<size_t>(text.line.column + i));
		};
		if (text.glyphs[static_cast<size_t>(from)].empty())
			wipe(from - 1);
		if (end < text.line.width && text.glyphs[static_cast<size_t>(end)].empty())
			wipe(end);
		for (int i = from; i < end; ++i)
			wipe(i);
	}
	texts.erase(
		std::remove_if(texts.begin(), texts.end(), [](const Text &text) { return text.line.taken.none(); }),
		texts.end());
}

void CellCanvas::fill(const Rect &area, const Fill &style)
{
	const Rect seen = area.intersected(clip());
	Area added;
	added.pixels = seen;
	added.block = blockOf(seen);
	added.fill = style;
	if (seen.empty() || added.block.empty())
		return;
	added.order = ++painted;

	// A text is hidden when its middle is, which a fill that only grazes its cells does not do.
	cover(seen, added.block,
	      [&](const CellLine &line) { return line.centre >= seen.y && line.centre < seen.bottom(); });
	areas.push_back(std::move(added));
}

void CellCanvas::frame(const Rect &outer, const Rect &client, std::string_view title, const FrameStyle &style)
{
	Area added;
	added.pixels = outer.intersected(clip());
	if (added.pixels.empty())
		return;
	added.order = ++painted;
	added.block = blockOf(client);
	added.clip = blockOf(clip());
	added.frame = style;
	added.title = glyphsOf(title);

	Block whole = added.block;
	--whole.firstRow;
	++whole.endRow;
	--whole.firstColumn;
	++whole.endColumn;
	whole.firstRow = std::max(whole.firstRow, added.clip.firstRow);
	whole.endRow = std::min(whole.endRow, added.clip.endRow);
	whole.firstColumn = std::max(whole.firstColumn, added.clip.firstColumn);
	whole.endColumn = std::min(whole.endColumn, added.clip.endColumn);
	cover(added.pixels, whole,
	      [&](const CellLine &line) { return line.row >= whole.firstRow && line.row < whole.endRow; });
	areas.push_back(std::move(added));
}

void CellCanvas::text(const Rect &area, std::string_view line, const TextStyle &style)
{
	addText(area, glyphsOf(line), style, std::nullopt, true);
}

void CellCanvas::keySymbol(const Rect &area, ColourKey key, Color color)
{
	static constexpr const char *initials[] = {"R", "G", "Y", "B"};
	const std::string initial = initials[static_cast<size_t>(key)];
	std::vector<std::string> glyphs = {"[", initial, "]"};
	if (nearest(area.right(), cellWidth) - nearest(area.x, cellWidth) < 3)
		glyphs = {initial};
	TextStyle style;
	style.color = contrasting(color);
	style.bold = true;
	style.align = Align::centre;
	addText(area, std::move(glyphs), style, color, false);
}

void CellCanvas::addText(const Rect &area, std::vector<std::string> glyphs, const TextStyle &style,
                         std::optional<Color> ground, bool mayReachOut)
{
	const Rect seen = area.intersected(clip());
	const int centre = area.y + area.h / 2;
	if (seen.empty() || glyphs.empty() || centre < seen.y || centre >= seen.bottom())
		return;

	Text added;
	added.style = style;
	added.ground = ground;
	CellLine &line = added.line;
	line.centre = centre;
	line.order = ++painted;
	for (const Area &below : areas) {
		if (!contains(below.pixels, seen.x, centre))
			continue;
		added.on = below.order;
		if (below.frame && !below.block.empty() && centre < below.pixels.bottom()) {
			line.window = below.order;
			line.firstRow = std::max(below.block.firstRow, 0);
			line.endRow = below.block.endRow;
			line.firstColumn = below.block.firstColumn;
			line.endColumn = below.block.endColumn;
		}
	}
	line.row = std::clamp(floorDivide(centre, cellHeight), line.firstRow, line.endRow - 1);

	const int room = nearest(area.right(), cellWidth) - nearest(area.x, cellWidth);
	const int width = static_cast<int>(glyphs.size());
	int start = nearest(area.x, cellWidth);
	if (width < room && style.align != Align::start)
		start += style.align == Align::end ? room - width : (room - width) / 2;

	const int from = std::clamp(nearest(seen.x, cellWidth), start, start + width);
	int end = std::clamp(nearest(seen.right(), cellWidth), from, start + width);
	const auto part = [&](Text &text, int first, int last, int column) {
		text.glyphs.assign(glyphs.begin() + (first - start), glyphs.begin() + (last - start));
		dropHalves(text.glyphs);
		text.line.column = column;
		text.line.width = last - first;
		text.line.taken.reset();
		for (int i = 0; i < text.line.width; ++i)
			if (text.glyphs[static_cast<size_t>(i)] != " ")
				text.line.taken.set(static_cast<size_t>(column + i));
		if (text.line.taken.any())
			texts.push_back(text);
	};

	// Narrow letters: the screen of pixels shows more of them than there are cells.
	int beyond = end;
	if (mayReachOut && start == nearest(area.x, cellWidth) && end > from && end < start + width) {
		const int visible = seen.right() - area.x;
		if (style.face == Face::columns) {
			if (style.rowHeight > 0 && style.rowHeight < cellHeight)
				beyond = start + visible * cellHeight / (cellWidth * style.rowHeight);
		} else {
			const std::string whole = std::accumulate(glyphs.begin(), glyphs.end(), std::string());
			const int pixels = std::max(1, lineWidth(whole, style.face, style.rowHeight, style.bold));
			beyond = start + static_cast<int>(int64_t{width} * std::min(visible, pixels) / pixels);
		}
		beyond = std::min({beyond, start + width, end + mostBeyond});
		if (beyond > end) {
			// Words are not cut in two; the first one may reach over the edge.
			int cut = end;
			while (cut > from && glyphs[static_cast<size_t>(cut - start - 1)] != " ")
				--cut;
			end = cut > from ? cut : std::max(from, std::min(beyond, line.endColumn));
		}
	}
	changed = true;
	part(added, from, std::max(end, from), from);
	if (beyond > end) {
		line.remainder = true;
		part(added, end, beyond, std::min(end, cellColumns - (beyond - end)));
	}
}

const std::vector<Cell> &CellCanvas::cells()
{
	if (changed)
		compose();
	changed = false;
	return grid;
}

void CellCanvas::compose()
{
	struct Mark
	{
		int order = 0;
		bool edge = false;
	};
	std::array<std::array<Mark, cellColumns>, cellRows> marks;
	for (const Area &area : areas) {
		const int edge = area.frame ? 1 : 0;
		const Block &b = area.block;
		for (int row = std::max(b.firstRow - edge, 0); row < std::min(b.endRow + edge, cellRows); ++row)
			for (int c = std::max(b.firstColumn - edge, 0); c < std::min(b.endColumn + edge, cellColumns);
			     ++c)
				marks[static_cast<size_t>(row)][static_cast<size_t>(c)] = {
					area.order,
					edge && (row < b.firstRow || row >= b.endRow || c < b.firstColumn || c >= b.endColumn)};
	}
	std::vector<CellLine *> lines;
	for (Text &text : texts) {
		text.line.pieces.clear();
		lines.push_back(&text.line);
	}
	placeLines(lines, [&](int row, int order) {
		ColumnSet covered;
		for (size_t c = 0; c < cellColumns; ++c) {
			const Mark &mark = marks[static_cast<size_t>(row)][c];
			covered[c] = mark.order > order || mark.edge;
		}
		return covered;
	});

	std::fill(grid.begin(), grid.end(), Cell());
	for (const Area &area : areas) {
		if (area.frame)
			drawFrame(area);
		else
			drawFill(area);
	}
	for (const Text &text : texts)
		drawText(text);
}

// The rows of a fill. One that was made for a line of text is where that text has come to stand, and
// no higher: a button, the current entry.
std::pair<int, int> CellCanvas::rowsOf(const Area &area) const
{
	std::pair<int, int> rows{cellRows, 0};
	bool bare = true;
	if (area.pixels.h <= rowLike)
		for (const Text &text : texts) {
			if (text.on != area.order || text.line.remainder)
				continue;
			bare = false;
			for (const CellPiece &piece : text.line.pieces)
				if (piece.column == text.line.column) {
					rows.first = std::min(rows.first, piece.row);
					rows.second = std::max(rows.second, piece.row + 1);
				}
		}
	return bare ? std::pair<int, int>(area.block.firstRow, area.block.endRow) : rows;
}

void CellCanvas::drawFill(const Area &area)
{
	const Block &block = area.block;
	const auto [firstRow, endRow] = rowsOf(area);
	const bool current = area.fill.emphasis == Emphasis::current;
	const bool narrow = block.endColumn - block.firstColumn <= 2;
	const bool track = narrow && area.fill.emphasis == Emphasis::dim && block.endRow - block.firstRow > 2;
	const Color plain = blend(area.fill.top, area.fill.bottom, 1, 2);
	for (int row = firstRow; row < endRow; ++row) {
		const int part = std::clamp(row * cellHeight + cellHeight / 2 - area.pixels.y, 0, area.pixels.h);
		const Color ground = blend(area.fill.top, area.fill.bottom, part, area.pixels.h);
		for (int column = block.firstColumn; column < block.endColumn; ++column) {
			Cell &cell = at(row, column);
			Cell fresh;
			fresh.ground = ground;
			fresh.plain = fresh.below = plain;
			if (track)
				fresh.bar = Cell::Bar::track;
			else if (narrow && cell.bar == Cell::Bar::track)
				fresh.bar = Cell::Bar::thumb;
			else if (current) {
				fresh.current = true;
				fresh.below = cell.below;
			}
			fresh.text = contrasting(ground);
			cell = fresh;
		}
	}
}

void CellCanvas::drawFrame(const Area &area)
{
	using Rule = Cell::Rule;
	const FrameStyle &style = *area.frame;
	const Block &b = area.block;
	const auto cellAt = [&](int row, int column) -> Cell * {
		const bool drawn = row >= area.clip.firstRow && row < area.clip.endRow &&
		                   column >= area.clip.firstColumn && column < area.clip.endColumn;
		return drawn ? &at(row, column) : nullptr;
	};
	for (int row = b.firstRow - 1; row <= b.endRow; ++row)
		for (int column = b.firstColumn - 1; column <= b.endColumn; ++column) {
			Cell *cell = cellAt(row, column);
			if (!cell)
				continue;
			*cell = Cell();
			cell->ground = row < b.firstRow ? blend(style.titleTop, style.titleBottom, 1, 2) : style.client;
			cell->plain = cell->below = cell->ground;
			cell->text = style.border;
			const bool left = column < b.firstColumn, right = column == b.endColumn;
			if (row < b.firstRow)
				cell->rule = left ? Rule::topLeft : right ? Rule::topRight : Rule::horizontal;
			else if (row == b.endRow)
				cell->rule = left ? Rule::bottomLeft : right ? Rule::bottomRight : Rule::horizontal;
			else if (left || right)
				cell->rule = Rule::vertical;
		}

	std::vector<std::string> title = area.title;
	title.resize(std::min(title.size(), static_cast<size_t>(std::max(0, b.endColumn - b.firstColumn - 2))));
	dropHalves(title);
	if (title.empty())
		return;
	title.insert(title.begin(), " ");
	title.emplace_back(" ");
	for (size_t i = 0; i < title.size(); ++i)
		if (Cell *cell = cellAt(b.firstRow - 1, b.firstColumn + static_cast<int>(i))) {
			cell->rule = Rule::none;
			cell->glyph = title[i];
			cell->text = style.titleText;
			cell->bold = true;
		}
}

void CellCanvas::drawText(const Text &text)
{
	const auto on =
		std::find_if(areas.begin(), areas.end(), [&](const Area &a) { return a.order == text.on; });
	const bool onCurrent = on != areas.end() && !on->frame && on->fill.emphasis == Emphasis::current;
	for (const CellPiece &piece : text.line.pieces) {
		const bool moved = piece.row != text.line.row || piece.column != text.line.column + piece.from;
		for (int i = piece.from; i < piece.end; ++i) {
			if (!text.line.taken[static_cast<size_t>(text.line.column + i)])
				continue;
			Cell &cell = at(piece.row, piece.column + i - piece.from);
			cell.glyph = text.glyphs[static_cast<size_t>(i)];
			cell.rule = Cell::Rule::none;
			cell.bar = Cell::Bar::none;
			cell.text = text.style.color;
			cell.bold = text.style.bold;
			cell.dim = text.style.emphasis == Emphasis::dim;
			// What has been moved looks as it did where it comes from.
			if (moved && onCurrent && !cell.current) {
				cell.below = cell.plain;
				cell.ground = cell.plain = on->fill.top;
			}
			if (moved && !onCurrent && cell.current)
				cell.ground = cell.plain = cell.below;
			cell.current = onCurrent || text.style.emphasis == Emphasis::current || (cell.current && !moved);
			if (text.ground)
				cell.ground = cell.plain = *text.ground;
		}
	}
}

} // namespace desk
