#ifndef DESK_TERMINAL_CELL_LAYOUT_H
#define DESK_TERMINAL_CELL_LAYOUT_H

#include <bitset>
#include <functional>
#include <vector>

namespace desk
{

// The receiver's screen in character cells; see CellCanvas.
constexpr int cellColumns = 90;
constexpr int cellRows = 29;

/// Some of the cells of one row, the leftmost at index 0.
using ColumnSet = std::bitset<cellColumns>;

/// Part of a line of text, and where it came to stand.
struct CellPiece
{
	int from = 0, end = 0; ///< columns within the line
	int row = 0;
	int column = 0; ///< of the screen, where `from` stands
};

/// A line of text that wants a place in the rows of cells.
struct CellLine
{
	int centre = 0;  ///< the height its middle stands at, in pixels; lines of one table row have the same
	int row = 0;     ///< the row that is nearest to it
	int column = 0;  ///< of its first cell
	int width = 0;   ///< in cells
	ColumnSet taken; ///< the cells of `row` that show something of it; blanks between words leave theirs free

	int window = 0;                      ///< 0: on the bare screen; windows above have higher numbers
	int firstRow = 0, endRow = cellRows; ///< the window's rows, the end excluded ...
	int firstColumn = 0, endColumn = cellColumns; ///< ... and columns
	int order = 0;                                ///< when it was painted
	/// The end of a line that needs more cells than it has, that line having the same `order`. It follows
	/// that line if there is room when all others have their places, and is placed like them if not.
	bool remainder = false;

	std::vector<CellPiece> pieces; ///< the result; empty when there is no room left
};

/// Cells of a row that a line painted at `order` must not be moved to: painted over since, or a window's
/// edge.
using CoveredCells = std::function<ColumnSet(int row, int order)>;

/// Finds a place for every line, so that none overwrites another.
///
/// A line stands in its own row where it can. Rows of text that are less than a cell apart are pushed
/// down, and up where there is no room below; their order, and that they stand beside each other when
/// they have the same centre, is kept. When a window is full, what is left goes to free cells wherever
/// there are some, word by word in the end.
void placeLines(std::vector<CellLine *> lines, const CoveredCells &covered);

} // namespace desk

#endif
