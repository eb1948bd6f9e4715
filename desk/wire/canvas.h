#ifndef DESK_WIRE_CANVAS_H
#define DESK_WIRE_CANVAS_H

#include "key.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace desk
{

/// The receiver's screen, in pixels.
constexpr int screenWidth = 720;
constexpr int screenHeight = 576;

/// Limits coordinates, so that sums of them cannot overflow.
constexpr int farthest = 1 << 20;

constexpr int bounded(int pixels)
{
	return pixels < -farthest ? -farthest : pixels > farthest ? farthest : pixels;
}

/// A rectangle in screen pixels; with `w` or `h` zero it is empty.
struct Rect
{
	int x = 0, y = 0, w = 0, h = 0;

	int right() const { return x + w; }
	int bottom() const { return y + h; }
	bool empty() const { return w <= 0 || h <= 0; }
	Rect intersected(const Rect &other) const
	{
		const int left = std::max(x, other.x), top = std::max(y, other.y);
		return {left, top, std::max(0, std::min(right(), other.right()) - left),
		        std::max(0, std::min(bottom(), other.bottom()) - top)};
	}
	/// The bounding box of both; ignores an empty one.
	Rect united(const Rect &other) const;
	/// The parts around `hole`, which lies within: at its left, its right, above and below. Some may be empty.
	std::array<Rect, 4> around(const Rect &hole) const;

	bool operator==(const Rect &o) const { return x == o.x && y == o.y && w == o.w && h == o.h; }
	bool operator!=(const Rect &o) const { return !(*this == o); }
};

constexpr Rect wholeScreen = {0, 0, screenWidth, screenHeight};

struct Color
{
	uint8_t r = 0, g = 0, b = 0;

	bool operator==(const Color &o) const { return r == o.r && g == o.g && b == o.b; }
	bool operator!=(const Color &o) const { return !(*this == o); }
};

/// What a fill is, for canvases that show it in another way than by its colours and corners.
enum class Part
{
	area,
	backdrop, ///< of the whole screen, below all windows
	line,     ///< behind one line of text
	currentLine,
	idleLine, ///< the current one of a list without the focus
	button,
	currentButton,
	track, ///< of a scroll bar
	thumb, ///< of a scroll bar, on its track
};

/// How an area is filled. Canvases may ignore the gradient and the corners.
struct Fill
{
	Color top;      ///< colour at the upper edge
	Color bottom;   ///< colour at the lower edge; equals `top` for a plain area
	int radius = 0; ///< of the corners, in pixels
	Part part = Part::area;

	bool operator==(const Fill &o) const
	{
		return top == o.top && bottom == o.bottom && radius == o.radius && part == o.part;
	}

	static Fill plain(Color c, int radius = 0, Part part = Part::area) { return {c, c, radius, part}; }
};

/// The meaning of a text, for canvases without enough colours.
enum class Emphasis
{
	none,
	current, ///< the current entry, the button with the focus
	dim,     ///< the current entry of a list without the focus
};

enum class Face
{
	columns, ///< every character has the same width, so that columns made of blanks align
	prose,   ///< titles, menu lines, buttons, questions
};

enum class Align
{
	start,
	centre,
	end,
};

/// The style of one line of text.
struct TextStyle
{
	Color color;
	Face face = Face::columns;
	int rowHeight = 20; ///< height of the text's row in pixels; determines the font size
	bool bold = false;
	Align align = Align::start;
	Emphasis emphasis = Emphasis::none;
	bool whole = false; ///< narrows the letters to show all of the text

	bool operator==(const TextStyle &o) const
	{
		return color == o.color && face == o.face && rowHeight == o.rowHeight && bold == o.bold &&
		       align == o.align && emphasis == o.emphasis && whole == o.whole;
	}
};

/// Bytes of a line that can matter in `width` pixels.
constexpr size_t mostBytesWithin(int width)
{
	return width > 0 ? static_cast<size_t>(width) * 16 + 64 : 0;
}

/// The style of a window's border, title bar and background.
struct WindowStyle
{
	Color border;
	Color titleTop, titleBottom; ///< the title bar
	Color titleText;
	Color client;   ///< the window's background
	int radius = 0; ///< of the corners, in pixels

	bool operator==(const WindowStyle &o) const
	{
		return border == o.border && titleTop == o.titleTop && titleBottom == o.titleBottom &&
		       titleText == o.titleText && client == o.client && radius == o.radius;
	}
};

/// The part of a window in one colour: its client area without the rows of rounded corners.
Rect flatPart(const Rect &outer, const Rect &client, const WindowStyle &style);

/// Maximum extent of a window's shadow, in pixels.
constexpr int shadowReach = 16;

/// Where the toolkit paints. Coordinates are screen pixels on every canvas.
class Canvas
{
public:
	virtual ~Canvas() = default;

	/// Whether a clip can restrict painting to a part of the screen.
	virtual bool paintsInParts() const { return true; }

	/// Copies to `area` the pixels `down` rows above it. False: this canvas cannot.
	virtual bool move(const Rect & /*area*/, int /*down*/) { return false; }

	/// Clips drawing to `area` within the current clip.
	virtual void pushClip(const Rect &area) = 0;
	virtual void popClip() = 0;

	virtual void fill(const Rect &area, const Fill &fill) = 0;

	/// A window's border, title bar and background. `client` lies within `outer`; the title bar is the part above it.
	virtual void window(const Rect &outer, const Rect &client, std::string_view title,
	                    const WindowStyle &style) = 0;

	/// One line of text, vertically centred in `area`, clipped to it. Takes any bytes: see visibleText().
	virtual void text(const Rect &area, std::string_view line, const TextStyle &style) = 0;

	/// The symbol of a colour key. `area` is about as high as a text row.
	virtual void keySymbol(const Rect &area, Key key, Color color) = 0;
};

} // namespace desk

#endif
