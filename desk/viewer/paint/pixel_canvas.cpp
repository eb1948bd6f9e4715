#include "pixel_canvas.h"

#include "desk_error.h"
#include "typesetter.h"
#include "visible_text.h"

#include <cairo.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

namespace desk
{
namespace
{

constexpr double quarterTurn = 1.5707963267948966;

void setSource(cairo_t *to, Color c, double alpha = 1)
{
	cairo_set_source_rgba(to, c.r / 255.0, c.g / 255.0, c.b / 255.0, alpha);
}

/// The bounding box of the current clip.
Rect clipOf(cairo_t *to)
{
	double left = 0, top = 0, right = 0, bottom = 0;
	cairo_clip_extents(to, &left, &top, &right, &bottom);
	return {static_cast<int>(left), static_cast<int>(top), static_cast<int>(right - left),
	        static_cast<int>(bottom - top)};
}

void setGradient(cairo_t *to, const Rect &area, Color top, Color bottom)
{
	if (top == bottom)
		return setSource(to, top);
	cairo_pattern_t *gradient = cairo_pattern_create_linear(0, area.y, 0, area.bottom());
	cairo_pattern_add_color_stop_rgb(gradient, 0, top.r / 255.0, top.g / 255.0, top.b / 255.0);
	cairo_pattern_add_color_stop_rgb(gradient, 1, bottom.r / 255.0, bottom.g / 255.0, bottom.b / 255.0);
	cairo_set_source(to, gradient);
	cairo_pattern_destroy(gradient);
}

void roundedPath(cairo_t *to, double x, double y, double w, double h, double radius)
{
	radius = std::min({radius, w / 2, h / 2});
	cairo_new_path(to);
	if (radius <= 0)
		return cairo_rectangle(to, x, y, w, h);
	cairo_arc(to, x + w - radius, y + radius, radius, -quarterTurn, 0);
	cairo_arc(to, x + w - radius, y + h - radius, radius, 0, quarterTurn);
	cairo_arc(to, x + radius, y + h - radius, radius, quarterTurn, 2 * quarterTurn);
	cairo_arc(to, x + radius, y + radius, radius, 2 * quarterTurn, 3 * quarterTurn);
	cairo_close_path(to);
}

void roundedPath(cairo_t *to, const Rect &area, int radius)
{
	roundedPath(to, area.x, area.y, area.w, area.h, radius);
}

Color mixed(Color a, Color b, double part)
{
	const auto mix = [part](uint8_t from, uint8_t to) {
		return static_cast<uint8_t>(from + (to - from) * part + 0.5);
	};
	return {mix(a.r, b.r), mix(a.g, b.g), mix(a.b, b.b)};
}

// Fills each row with one colour, because Cairo computes a gradient for every pixel.
void fillRows(cairo_t *to, const Rect &area, const Fill &fill)
{
	const Rect seen = area.intersected(clipOf(to));
	if (seen.empty())
		return;
	cairo_surface_t *column = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, seen.h);
	cairo_t *toColumn = cairo_create(column);
	cairo_translate(toColumn, 0, -seen.y);
	setGradient(toColumn, area, fill.top, fill.bottom);
	cairo_paint(toColumn);
	cairo_destroy(toColumn);
	cairo_surface_flush(column);
	cairo_surface_t *surface = cairo_get_target(to);
	cairo_surface_flush(surface);
	const auto row = [](cairo_surface_t *of, int y) {
		return reinterpret_cast<uint32_t *>(cairo_image_surface_get_data(of) +
		                                    y * cairo_image_surface_get_stride(of));
	};
	for (int y = 0; y < seen.h; ++y)
		std::fill_n(row(surface, seen.y + y) + seen.x, seen.w, *row(column, y));
	cairo_surface_mark_dirty_rectangle(surface, seen.x, seen.y, seen.w, seen.h);
	cairo_surface_destroy(column);
}

constexpr int shadowLayers = 10, shadowDown = 5; // a shadow is a little lower than its window
constexpr uint32_t shadowAlpha = 11;             // of one layer, out of 255
static_assert(shadowLayers + shadowDown <= shadowReach);

/// Each colour value under a number of shadow layers, rounded like pixman.
constexpr auto shaded = [] {
	std::array<std::array<uint8_t, 256>, shadowLayers + 1> values{};
	for (size_t value = 0; value < 256; ++value) {
		values[0][value] = static_cast<uint8_t>(value);
		for (size_t i = 1; i < values.size(); ++i) {
			const uint32_t product = values[i - 1][value] * (255 - shadowAlpha) + 128;
			values[i][value] = static_cast<uint8_t>((product + (product >> 8)) >> 8);
		}
	}
	return values;
}();

void shade(cairo_t *to, const Rect &area, int layers)
{
	const Rect seen = area.intersected(clipOf(to));
	if (layers <= 0 || seen.empty())
		return;
	const std::array<uint8_t, 256> &values = shaded[static_cast<size_t>(layers)];
	cairo_surface_t *surface = cairo_get_target(to);
	cairo_surface_flush(surface);
	const int stride = cairo_image_surface_get_stride(surface);
	unsigned char *row = cairo_image_surface_get_data(surface) + seen.y * stride + 4 * seen.x;
	for (int y = 0; y < seen.h; ++y, row += stride)
		for (int i = 0; i < 4 * seen.w; ++i)
			row[i] = values[row[i]];
	cairo_surface_mark_dirty_rectangle(surface, seen.x, seen.y, seen.w, seen.h);
}

cairo_status_t writeTo(void *file, const unsigned char *data, unsigned int length)
{
	return fwrite(data, 1, length, static_cast<FILE *>(file)) == length ? CAIRO_STATUS_SUCCESS
	                                                                    : CAIRO_STATUS_WRITE_ERROR;
}

} // namespace

struct PixelCanvas::State
{
	cairo_surface_t *surface;
	cairo_t *cairo;
	size_t clips = 0;

	State(int width, int height)
		: surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height)), cairo(cairo_create(surface))
	{}
	State(const State &) = delete;
	State &operator=(const State &) = delete;
	~State()
	{
		cairo_destroy(cairo);
		cairo_surface_destroy(surface);
	}
};

PixelCanvas::PixelCanvas(int width, int height) : s(std::make_unique<State>(width, height)) {}

PixelCanvas::~PixelCanvas() = default;

void PixelCanvas::pushClip(const Rect &area)
{
	cairo_save(s->cairo);
	cairo_new_path(s->cairo);
	cairo_rectangle(s->cairo, area.x, area.y, std::max(0, area.w), std::max(0, area.h));
	cairo_clip(s->cairo);
	++s->clips;
}

void PixelCanvas::popClip()
{
	if (s->clips == 0)
		return;
	--s->clips;
	cairo_restore(s->cairo);
}

bool PixelCanvas::move(const Rect &area, int down)
{
	cairo_surface_flush(s->surface);
	unsigned char *const first = cairo_image_surface_get_data(s->surface) + 4 * area.x;
	for (int i = 0; i < area.h; ++i) {
		const int y = down < 0 ? area.y + i : area.bottom() - 1 - i; // reads each row before overwriting it
		memcpy(first + y * stride(), first + (y - down) * stride(), 4 * static_cast<size_t>(area.w));
	}
	cairo_surface_mark_dirty_rectangle(s->surface, area.x, area.y, area.w, area.h);
	return true;
}

void PixelCanvas::fill(const Rect &area, const Fill &fill)
{
	if (area.empty())
		return;
	if (fill.radius == 0 && fill.top != fill.bottom)
		return fillRows(s->cairo, area, fill);
	roundedPath(s->cairo, area, fill.radius);
	setGradient(s->cairo, area, fill.top, fill.bottom);
	cairo_fill(s->cairo);
}

void PixelCanvas::window(const Rect &outer, const Rect &client, std::string_view title,
                         const WindowStyle &style)
{
	if (outer.empty())
		return;
	cairo_t *to = s->cairo;

	if (const Rect seen = clipOf(to); seen.intersected(flatPart(outer, client, style)) == seen) {
		setSource(to, style.client);
		cairo_paint(to);
		return;
	}

	drawShadow(outer, std::max(0, style.radius));
	roundedPath(to, outer, style.radius);
	setSource(to, style.client);
	cairo_fill(to);

	const Rect bar = Rect{outer.x, outer.y, outer.w, client.y - outer.y}.intersected(outer);
	if (!bar.empty()) {
		cairo_save(to);
		cairo_rectangle(to, bar.x, bar.y, bar.w, bar.h);
		cairo_clip(to);
		roundedPath(to, outer, style.radius);
		setGradient(to, bar, style.titleTop, style.titleBottom);
		cairo_fill(to);
		setSource(to, mixed(style.border, style.titleBottom, 0.3));
		cairo_rectangle(to, bar.x, bar.bottom() - 1, bar.w, 1);
		cairo_fill(to);
		cairo_restore(to);

		TextStyle text;
		text.color = style.titleText;
		text.face = Face::prose;
		text.bold = true;
		text.rowHeight = std::min(20, bar.h);
		constexpr int indent = 12;
		const Rect room = {bar.x + indent, bar.y, bar.w - 2 * indent, bar.h - 1};
		this->text(room, title, text);
	}

	roundedPath(to, outer.x + 0.5, outer.y + 0.5, outer.w - 1, outer.h - 1, style.radius - 0.5);
	setSource(to, style.border);
	cairo_set_line_width(to, 1);
	cairo_stroke(to);
}

// Many thin layers make the shadow soft. Along straight edges, the distance from the window determines a pixel's
// number of layers. Cairo draws the corners, both curves of a row at once, because its rounding of one depends on
// the other.
void PixelCanvas::drawShadow(const Rect &outer, int radius)
{
	const bool isStraight = std::min(outer.w, outer.h) >= 2 * (radius + 1) && outer.x + radius + 1 > 0 &&
	                        outer.right() - radius - 1 < screenWidth;
	const int left = outer.x + (isStraight ? radius + 1 : outer.w / 2);
	const int right = isStraight ? outer.right() - radius - 1 : left;
	const int top = outer.y + radius, bottom = std::max(top, outer.bottom() - radius);
	const int side = std::min(top + shadowDown, bottom); // end of the curves at the sides
	const Rect around = {outer.x - shadowReach, outer.y - shadowReach, outer.w + 2 * shadowReach,
	                     outer.h + 2 * shadowReach};

	const auto corners = [&](std::initializer_list<Rect> parts) {
		Rect all;
		for (const Rect &part : parts)
			all = all.united(part.intersected(clipOf(s->cairo)));
		if (all.empty())
			return;
		// Through a mask, because pixman is slow with fully transparent areas.
		cairo_surface_t *mask = cairo_image_surface_create(CAIRO_FORMAT_A8, all.w, all.h);
		cairo_t *toMask = cairo_create(mask);
		cairo_translate(toMask, -all.x, -all.y);
		cairo_save(s->cairo);
		for (cairo_t *to : {s->cairo, toMask}) {
			cairo_new_path(to);
			for (const Rect &part : parts)
				cairo_rectangle(to, part.x, part.y, part.w, part.h);
			cairo_clip(to);
		}
		setSource(s->cairo, {}, shadowAlpha / 255.0);
		for (int i = shadowLayers; i > 0; --i) {
			cairo_set_operator(toMask, CAIRO_OPERATOR_CLEAR);
			cairo_paint(toMask);
			cairo_set_operator(toMask, CAIRO_OPERATOR_OVER);
			const int wider = i - 1;
			roundedPath(
				toMask,
				{outer.x - wider, outer.y - wider + shadowDown - 1, outer.w + 2 * wider, outer.h + 2 * wider},
				radius + i);
			cairo_fill(toMask);
			cairo_mask_surface(s->cairo, mask, all.x, all.y);
		}
		cairo_restore(s->cairo);
		cairo_destroy(toMask);
		cairo_surface_destroy(mask);
	};
	corners({{around.x, around.y, left - around.x, top - around.y},
	         {right, around.y, around.right() - right, top - around.y}});
	corners({{around.x, top, shadowReach, side - top}});
	corners({{outer.right(), top, shadowReach, side - top}});
	corners({{around.x, bottom, left - around.x, around.bottom() - bottom},
	         {right, bottom, around.right() - right, around.bottom() - bottom}});

	for (int away = 0; away < shadowReach; ++away) { // pixels between the window and this one
		const int layers = shadowLayers - 1 - away;
		shade(s->cairo, {outer.x - 1 - away, side, 1, bottom - side}, layers);
		shade(s->cairo, {outer.right() + away, side, 1, bottom - side}, layers);
		shade(s->cairo, {left, outer.y - 1 - away, right - left, 1}, layers - shadowDown + 1);
		shade(s->cairo, {left, outer.bottom() + away, right - left, 1},
		      std::min(shadowLayers, layers + shadowDown - 1));
	}
}

void PixelCanvas::text(const Rect &area, std::string_view line, const TextStyle &style)
{
	if (area.empty())
		return;
	cairo_save(s->cairo);
	cairo_new_path(s->cairo);
	cairo_rectangle(s->cairo, area.x, area.y, area.w, area.h);
	cairo_clip(s->cairo);
	// visibleText() does not shorten a text; a character cut here lies outside of the clip.
	drawLine(s->cairo, area, visibleText(line.substr(0, mostBytesWithin(area.w))), style);
	cairo_restore(s->cairo);
}

void PixelCanvas::keySymbol(const Rect &area, Key, Color color)
{
	if (area.empty())
		return;
	const int h = std::max(4, area.h * 7 / 10);
	const int w = std::min(area.w, h * 9 / 5);
	const Rect pill = {area.x + (area.w - w) / 2, area.y + (area.h - h) / 2, w, h};
	constexpr Color white = {255, 255, 255}, black = {0, 0, 0};
	cairo_save(s->cairo);
	cairo_rectangle(s->cairo, area.x, area.y, area.w, area.h);
	cairo_clip(s->cairo);
	roundedPath(s->cairo, pill, h / 2);
	setGradient(s->cairo, pill, mixed(color, white, 0.22), mixed(color, black, 0.12));
	cairo_fill(s->cairo);
	roundedPath(s->cairo, pill.x + 0.5, pill.y + 0.5, pill.w - 1, pill.h - 1, h / 2.0 - 0.5);
	setSource(s->cairo, mixed(color, black, 0.45));
	cairo_set_line_width(s->cairo, 1);
	cairo_stroke(s->cairo);
	cairo_restore(s->cairo);
}

bool PixelCanvas::canDrawText()
{
	return haveLetters();
}

const unsigned char *PixelCanvas::pixels()
{
	cairo_surface_flush(s->surface);
	return cairo_image_surface_get_data(s->surface);
}

int PixelCanvas::stride() const
{
	return cairo_image_surface_get_stride(s->surface);
}

void PixelCanvas::writePng(const std::string &path)
{
	const auto failure = [&](int reason) {
		return Error(visibleText("cannot write '" + path + "': " + strerror(reason)));
	};
	FILE *file = fopen(path.c_str(), "wb");
	if (!file)
		throw failure(errno);
	errno = 0;
	const cairo_status_t status = cairo_surface_write_to_png_stream(s->surface, writeTo, file);
	int reason = status == CAIRO_STATUS_SUCCESS ? 0 : errno ? errno : EIO;
	if (fclose(file) != 0 && !reason)
		reason = errno;
	if (reason == 0)
		return;
	if (struct stat written; lstat(path.c_str(), &written) == 0 && S_ISREG(written.st_mode))
		unlink(path.c_str()); // no partial pictures
	throw failure(reason);
}

} // namespace desk
