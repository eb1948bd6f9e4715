#ifndef DESK_TERMINAL_CELL_CANVAS_H
#define DESK_TERMINAL_CELL_CANVAS_H

#include "canvas.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace desk
{

// The receiver's screen in character cells; see CellCanvas.
constexpr int cellColumns = 90;
constexpr int cellRows = 29;

/// One character cell, ready to be shown.
struct Cell
{
	/// What a terminal has characters of its own for: lines, and the scroll bar's parts.
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

	std::string glyph = " ";   ///< UTF-8, with its combining characters; empty: the right half of a wide one
	Shape shape = Shape::none; ///< drawn in place of `glyph`
	Color text, ground;
	Color below;  ///< the ground there would be without the entry or the button
	char end = 0; ///< '[' or ']': a button begins or ends here
	bool bold = false;
	bool dim = false;
	bool current = false; ///< where the viewer is; must differ from its surroundings whatever the colours
	bool inWindow = false;
};

/// A canvas of character cells. A cell is 8 x 20 pixels, so that a row of text of 20 pixels, the only
/// height that fits, is one row of cells, and columns made with blanks line up as they do in pixels.
///
/// Edges go to the nearest cell edge. A line of text goes to the row of cells that its middle is in, and so does
/// a fill that is made for one line, such as a button. Blanks in a text let what is beneath show through.
class CellCanvas : public Canvas
{
public:
	static constexpr int cellWidth = 8, cellHeight = 20;

	CellCanvas();

	/// No: what is in which window is known from its frame.
	bool paintsInParts() const override { return false; }
	void pushClip(const Rect &area) override;
	void popClip() override;
	void fill(const Rect &area, const Fill &fill) override;
	/// The edges are drawn in the cells around those of `client`, the title in the row above it.
	void frame(const Rect &outer, const Rect &client, std::string_view title,
	           const FrameStyle &style) override;
	void text(const Rect &area, std::string_view line, const TextStyle &style) override;
	/// The key's initial in brackets, on its colour.
	void keySymbol(const Rect &area, Key key, Color color) override;

	const Cell &at(int row, int column) const
	{
		return grid[static_cast<size_t>(row * cellColumns + column)];
	}

	/// The rows to show, from the top. While there are more than `comfortable`, those outside of the windows are
	/// left out and then those without text; while there are more than `most`, those farthest from the viewer's.
	std::vector<int> rowsWithin(int comfortable, int most) const;

	/// The first column to show where there is room for `most`: the middle, unless a window begins before it.
	int firstColumnWithin(int most) const;

private:
	Cell &cell(int row, int column) { return grid[static_cast<size_t>(row * cellColumns + column)]; }
	void put(int row, int column, const Cell &fresh);
	void put(const Rect &area, std::string_view line, const TextStyle &style, std::optional<Color> ground);

	std::vector<Rect> clips; ///< in pixels, the innermost last
	Rect window;             ///< the cells, without its edges, of the window that was begun last; empty: none
	std::vector<Cell> grid;
};

} // namespace desk

#endif
