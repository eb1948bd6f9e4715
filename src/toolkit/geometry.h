#ifndef VEXLO_GEOMETRY_H
#define VEXLO_GEOMETRY_H

/// A position in pixels: of a top-level window on the screen, of a child in its parent's client area.
struct ePoint
{
	/// `px` to the right, `py` down.
	ePoint(int px, int py) : x(px), y(py) {}

	int x; ///< to the right
	int y; ///< down
};

/// A size in pixels.
struct eSize
{
	/// `w` wide, `h` high.
	eSize(int w, int h) : width(w), height(h) {}

	int width;  ///< from left to right
	int height; ///< from top to bottom
};

/// A rectangle in pixels; `right` and `bottom` are the first column and row beyond it.
struct eRect
{
	/// An empty one at (0, 0).
	eRect() = default;
	/// From column `l` and row `t` up to, but without, column `r` and row `b`.
	eRect(int l, int t, int r, int b) : left(l), top(t), right(r), bottom(b) {}

	int width() const { return right - left; }  ///< in pixels; negative when the sides are swapped
	int height() const { return bottom - top; } ///< in pixels; negative when the sides are swapped

	int left = 0;   ///< the first column
	int top = 0;    ///< the first row
	int right = 0;  ///< the first column beyond
	int bottom = 0; ///< the first row beyond
};

#endif
