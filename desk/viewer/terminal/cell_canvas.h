#ifndef DESK_TERMINAL_CELL_CANVAS_H
#define DESK_TERMINAL_CELL_CANVAS_H

#include "canvas.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace desk
{

// The receiver's screen in cells.
constexpr int cellColumns = 90;
constexpr int cellRows = 29;

/// One character cell.
struct Cell
{
	/// Line-drawing characters and the scroll bar, which each terminal draws in its own way.
	enum class Shape
	{
		none,
		horizontal,
		vertical,
		topLeft,
		topRight,
		bottomLeft,
		bottomRight,
		track,
		thumb,
	};

	std::string glyph = " ";   ///< UTF-8 with combining characters; empty: right half of a wide one
	Shape shape = Shape::none; ///< drawn in place of `glyph`
	Color text, ground;
	Color below;  ///< the ground without the entry or the button
	char end = 0; ///< '[' or ']': a button's left or right end
	bool bold = false;
	bool dim = false;
	bool current = false; ///< has the focus; must stand out without colours too
	bool inWindow = false;
};

/// A canvas of character cells. A cell is 8 x 20 pixels: a row of text of 20 pixels, the only height that fits, is
/// one row of cells, and columns made of blanks align.
///
/// Edges are rounded to cells. A line of text goes to the row of cells at its middle, as does a fill for one line,
/// such as a button. Blanks in a text are transparent.
class CellCanvas : public Canvas
{
public:
	static constexpr int cellWidth = 8, cellHeight = 20;

	CellCanvas();

	/// False, because a window defines which cells belong to a window.
	bool paintsInParts() const override { return false; }
	void pushClip(const Rect &area) override;
	void popClip() override;
	void fill(const Rect &area, const Fill &fill) override;
	/// Draws the edges in the cells around `client`, the title in the row above it.
	void window(const Rect &outer, const Rect &client, std::string_view title,
	            const WindowStyle &style) override;
	void text(const Rect &area, std::string_view line, const TextStyle &style) override;
	/// The key's initial in brackets, in its colour.
	void keySymbol(const Rect &area, Key key, Color color) override;

	const Cell &at(int row, int column) const
	{
		return grid[static_cast<size_t>(row * cellColumns + column)];
	}

	/// The rows to show, from the top. With more than `comfortable` rows, leaves out those outside of windows and
	/// then those without text; with more than `most`, those farthest from the current one.
	std::vector<int> rowsWithin(int comfortable, int most) const;

	/// The first of `most` columns to show: centred, unless a window begins further left.
	int firstColumnWithin(int most) const;

private:
	Cell &cell(int row, int column) { return grid[static_cast<size_t>(row * cellColumns + column)]; }
	void put(int row, int column, const Cell &fresh);
	void put(const Rect &area, std::string_view line, const TextStyle &style, std::optional<Color> ground);

	std::vector<Rect> clips; ///< in pixels, innermost last
	Rect inside;             ///< the inner cells of the last window; empty: none
	std::vector<Cell> grid;
};

} // namespace desk

#endif
