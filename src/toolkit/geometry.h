#ifndef VEXLO_GEOMETRY_H
#define VEXLO_GEOMETRY_H

/// A position in pixels: of a top-level window on the screen, of a child in its parent's client area.
struct ePoint
{
	ePoint(int px, int py) : x(px), y(py) {}

	int x, y;
};

/// A size in pixels.
struct eSize
{
	eSize(int w, int h) : width(w), height(h) {}

	int width, height;
};

/// A rectangle in pixels; `right` and `bottom` are the first column and row beyond it.
struct eRect
{
	eRect() = default;
	eRect(int l, int t, int r, int b) : left(l), top(t), right(r), bottom(b) {}

	int width() const { return right - left; }
	int height() const { return bottom - top; }

	int left = 0, top = 0, right = 0, bottom = 0;
};

#endif
