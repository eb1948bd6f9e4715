#include "cell_layout.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace desk
{
namespace
{

/// Lines of one window that keep to one row, as the columns of a table do.
struct Row
{
	std::vector<CellLine *> lines;
	ColumnSet taken;
	int placed = -1;

	int centre() const { return lines.front()->centre; }
	int wanted() const { return lines.front()->row; }
	int first() const { return lines.front()->firstRow; }
	int end() const { return lines.front()->endRow; }
};

class Layout
{
public:
	Layout(const std::vector<CellLine *> &lines, const CoveredCells &coveredCells)
		: all(lines), covered(coveredCells)
	{}

	void placeWindow(const std::vector<CellLine *> &lines);
	void stray(CellLine &line) { strays.push_back(&line); }
	void placeStrays();

private:
	bool fits(const Row &row, int at) const;
	bool pushUp(std::vector<Row> &rows, size_t index) const;
	bool placeBehind(CellLine &line);
	bool placeFreely(CellLine &line, int from, int end);
	bool placeWithin(CellLine &line, int from, int end, int firstRow, int endRow, int firstColumn,
	                 int endColumn);
	void settle(CellLine &line, int from, int end, int row, int column);

	const std::vector<CellLine *> &all;
	const CoveredCells &covered;
	std::array<ColumnSet, cellRows> occupied;
	std::vector<CellLine *> strays;
};

ColumnSet span(int column, int width)
{
	ColumnSet set;
	for (int c = std::max(column, 0); c < std::min(column + width, cellColumns); ++c)
		set.set(static_cast<size_t>(c));
	return set;
}

bool Layout::fits(const Row &row, int at) const
{
	if ((occupied[static_cast<size_t>(at)] & row.taken).any())
		return false;
	if (at == row.wanted())
		return true;
	return std::all_of(row.lines.begin(), row.lines.end(),
	                   [&](const CellLine *line) { return (covered(at, line->order) & line->taken).none(); });
}

// Makes room for rows[index] at the bottom of its window by moving those above it up.
bool Layout::pushUp(std::vector<Row> &rows, size_t index) const
{
	std::vector<int> before;
	for (size_t i = 0; i <= index; ++i)
		before.push_back(rows[i].placed);

	for (size_t i = index + 1; i-- > 0;) {
		Row &row = rows[i];
		if (row.placed < 0 && i != index)
			continue; // a stray already
		int lowest = row.end() - 1;
		for (size_t j = i + 1; j <= index; ++j)
			if (rows[j].placed >= 0 && (rows[j].taken & row.taken).any())
				lowest = std::min(lowest, rows[j].placed - 1);
		if (i != index && row.placed <= lowest)
			continue;
		while (lowest >= row.first() && !fits(row, lowest))
			--lowest;
		if (lowest < row.first()) {
			for (size_t k = 0; k <= index; ++k)
				rows[k].placed = before[k];
			return false;
		}
		row.placed = lowest;
	}
	return true;
}

void Layout::placeWindow(const std::vector<CellLine *> &lines)
{
	std::vector<Row> rows;
	for (CellLine *line : lines) {
		auto row = std::find_if(rows.begin(), rows.end(), [&](const Row &r) {
			return r.centre() == line->centre && (r.taken & line->taken).none();
		});
		if (row == rows.end())
			row = rows.insert(rows.end(), Row());
		row->lines.push_back(line);
		row->taken |= line->taken;
	}
	std::stable_sort(rows.begin(), rows.end(),
	                 [](const Row &a, const Row &b) { return a.centre() < b.centre(); });

	for (size_t i = 0; i < rows.size(); ++i) {
		Row &row = rows[i];
		int at = row.wanted();
		for (size_t j = 0; j < i; ++j)
			if ((rows[j].taken & row.taken).any())
				at = std::max(at, rows[j].placed + 1);
		while (at < row.end() && !fits(row, at))
			++at;
		if (at < row.end())
			row.placed = at;
		else
			pushUp(rows, i);
	}
	for (const Row &row : rows)
		for (CellLine *line : row.lines) {
			if (row.placed >= 0)
				settle(*line, 0, line->width, row.placed, line->column);
			else
				strays.push_back(line);
		}
}

void Layout::settle(CellLine &line, int from, int end, int row, int column)
{
	line.pieces.push_back({from, end, row, column});
	for (int c = from; c < end; ++c)
		if (line.taken[static_cast<size_t>(line.column + c)])
			occupied[static_cast<size_t>(row)].set(static_cast<size_t>(column + c - from));
}

bool Layout::placeWithin(CellLine &line, int from, int end, int firstRow, int endRow, int firstColumn,
                         int endColumn)
{
	const int width = end - from;
	for (int distance = 0; distance < 2 * cellRows; ++distance) {
		const int row = line.row + (distance % 2 ? -1 : 1) * ((distance + 1) / 2);
		if (row < firstRow || row >= endRow)
			continue;
		const ColumnSet full = occupied[static_cast<size_t>(row)] | covered(row, line.order);
		const int own = line.column + from;
		for (int i = -1; firstColumn + i <= endColumn - width; ++i) {
			const int column = i < 0 ? own : firstColumn + i;
			if (column < firstColumn || column + width > endColumn)
				continue;
			// A blank on both sides, so that it is not read with what stands there.
			if ((full & span(column, width)).none() &&
			    (occupied[static_cast<size_t>(row)] & span(column - 1, width + 2)).none()) {
				settle(line, from, end, row, column);
				return true;
			}
		}
	}
	return false;
}

bool Layout::placeFreely(CellLine &line, int from, int end)
{
	return placeWithin(line, from, end, line.firstRow, line.endRow, line.firstColumn, line.endColumn) ||
	       placeWithin(line, from, end, 0, cellRows, 0, cellColumns);
}

// Puts a remainder where the line that it belongs to ends.
bool Layout::placeBehind(CellLine &line)
{
	const auto begun = std::find_if(
		all.begin(), all.end(), [&](const CellLine *l) { return l->order == line.order && !l->remainder; });
	if (begun == all.end() || (*begun)->pieces.size() != 1)
		return false;
	const CellPiece &piece = (*begun)->pieces.front();
	const int column = piece.column + piece.end - piece.from;
	const size_t row = static_cast<size_t>(piece.row);
	if (column + line.width > line.endColumn || (occupied[row] & span(column, line.width + 1)).any() ||
	    (covered(piece.row, line.order) & span(column, line.width)).any())
		return false;
	settle(line, 0, line.width, piece.row, column);
	return true;
}

void Layout::placeStrays()
{
	std::stable_sort(strays.begin(), strays.end(),
	                 [](const CellLine *a, const CellLine *b) { return a->remainder < b->remainder; });
	for (CellLine *line : strays) {
		if (line->remainder && placeBehind(*line))
			continue;
		if (placeFreely(*line, 0, line->width))
			continue;
		const auto shows = [&](int c) { return line->taken[static_cast<size_t>(line->column + c)]; };
		for (int from = 0; from < line->width;) {
			if (!shows(from)) {
				++from;
				continue;
			}
			int end = from;
			while (end < line->width && shows(end))
				++end;
			placeFreely(*line, from, end);
			from = end;
		}
	}
}

} // namespace

void placeLines(std::vector<CellLine *> lines, const CoveredCells &covered)
{
	Layout layout(lines, covered);
	// What is in front has the first choice.
	std::stable_sort(lines.begin(), lines.end(),
	                 [](const CellLine *a, const CellLine *b) { return a->window > b->window; });
	std::vector<CellLine *> together;
	for (auto line = lines.begin(); line != lines.end();) {
		const auto next =
			std::find_if(line, lines.end(), [&](const CellLine *l) { return l->window != (*line)->window; });
		together.clear();
		std::copy_if(line, next, std::back_inserter(together),
		             [](const CellLine *l) { return !l->remainder; });
		layout.placeWindow(together);
		line = next;
	}
	for (CellLine *line : lines)
		if (line->remainder)
			layout.stray(*line);
	layout.placeStrays();
}

} // namespace desk
