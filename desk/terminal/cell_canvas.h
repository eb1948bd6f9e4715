#ifndef DESK_TERMINAL_CELL_CANVAS_H
#define DESK_TERMINAL_CELL_CANVAS_H

#include "canvas.h"
#include "cell_layout.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace desk
{

/// One character cell, ready to be shown.
struct Cell
{
	/// Lines that a terminal has characters of its own for.
	enum class Rule
	{
		none,
		horizontal,
		vertical,
		topLeft,
		topRight,
		bottomLeft,
		bottomRight,
	};
	/// The scroll bar's parts, which a terminal without colours must draw.
	enum class Bar
	{
		none,
		track,
		thumb,
	};

	std::string glyph = " "; ///< UTF-8, with its combining characters; empty: the right half of a wide one
	Rule rule = Rule::none;  ///< drawn in place of `glyph`
	Bar bar = Bar::none;
	Color text, ground;
	Color plain; ///< the ground for a terminal that has not the colours for shades
	Color below; ///< the plain ground there would be without `current`
	bool bold = false;
	bool current = false; ///< must be told from its surroundings whatever the colours are
	bool dim = false;
};

/// A canvas of character cells. A cell is 8 x 20 pixels, so that a row of text of the default height
/// is one row of cells.
///
/// Edges go to the nearest cell edge. A line of text goes to the row of cells that its middle is in;
/// rows of another height, and texts that overlap, are moved to free cells rather than lost (see
/// placeLines()). Blanks in a text let other texts show through. A fill or a window covers the texts
/// whose middle it covers.
class CellCanvas : public Canvas
{
public:
	static constexpr int cellWidth = 8, cellHeight = 20;

	CellCanvas();

	bool paintsInParts() const override { return false; } // texts make room for each other
	void pushClip(const Rect &area) override;
	void popClip() override;
	void fill(const Rect &area, const Fill &fill) override;
	/// The edges stand in the cells around those of `client`, the title in the row above it. What
	/// would stand beyond the screen's edge is left out.
	void frame(const Rect &outer, const Rect &client, std::string_view title,
	           const FrameStyle &style) override;
	void text(const Rect &area, std::string_view line, const TextStyle &style) override;
	/// The key's initial in brackets, on its colour.
	void keySymbol(const Rect &area, ColourKey key, Color color) override;

	/// What has been painted: cellRows rows of cellColumns cells. Valid until the next operation.
	const std::vector<Cell> &cells();

private:
	/// The cells of a rectangle, the ends excluded.
	struct Block
	{
		int firstRow = 0, endRow = 0, firstColumn = 0, endColumn = 0;

		bool empty() const { return firstRow >= endRow || firstColumn >= endColumn; }
	};
	/// A fill, or a window when it has a style.
	struct Area
	{
		int order = 0;
		Rect pixels;
		Block block;
		Fill fill;
		std::optional<FrameStyle> frame;
		Block clip;                     ///< windows: what of it may be drawn
		std::vector<std::string> title; ///< a cell each
	};
	struct Text
	{
		CellLine line;
		std::vector<std::string> glyphs; ///< a cell each
		TextStyle style;
		std::optional<Color> ground; ///< its own, whatever it stands on
		int on = 0;                  ///< `order` of the fill it was painted on
	};

	static Block blockOf(const Rect &area);
	const Rect &clip() const { return clips.back(); }
	void cover(const Rect &pixels, const Block &block, const std::function<bool(const CellLine &)> &hides);
	void addText(const Rect &area, std::vector<std::string> glyphs, const TextStyle &style,
	             std::optional<Color> ground, bool mayReachOut);
	void compose();
	void drawFill(const Area &area);
	void drawFrame(const Area &area);
	void drawText(const Text &text);
	std::pair<int, int> rowsOf(const Area &area) const;
	Cell &at(int row, int column) { return grid[static_cast<size_t>(row * cellColumns + column)]; }

	std::vector<Rect> clips;
	std::vector<Area> areas; ///< in the order of painting
	std::vector<Text> texts;
	int painted = 0; ///< operations so far
	bool changed = true;
	std::vector<Cell> grid;
};

} // namespace desk

#endif
