#include "typesetter.h"

#include "visible_text.h"

#include <glib.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <utility>

namespace desk
{
namespace
{

constexpr char columnsFamily[] = "DejaVu Sans Mono";
constexpr char proseFamily[] = "DejaVu Sans";
constexpr double fontSize = 0.8;      // of the row height: these fonts' ascent and descent just fit
constexpr double columnWidth = 0.4;   // of the row height: 8 pixels for 20
constexpr double proseSqueeze = 0.94; // makes an average letter about as wide as a column

struct Unref
{
	void operator()(void *object) const { g_object_unref(object); }
};
template <typename T> using Handle = std::unique_ptr<T, Unref>;

constexpr gunichar firstPicture = 0x2400, lastPicture = 0x2421; // of control characters

// A laid out line. Its glyphs are at whole pixels.
struct SetLine
{
	Handle<PangoLayout> layout;
	double pixels = 0; // width on the screen
};

// A face in one size and weight.
struct Font
{
	Handle<PangoContext> context;
	Face face = Face::prose;
	int rowHeight = 20;
	double squeeze = 1;    // horizontal screen pixels per layout pixel
	double correction = 1; // of layout widths, because Pango widens them for a squeezing matrix
	double cell = 0;       // width of a digit in layout pixels; in columns, of every character
	double ascent = 0, descent = 0;

	const SetLine &set(std::string_view line);
	Handle<PangoLayout> newLayout() const;

private:
	int fitColumns(PangoLayout *layout) const;

	std::map<std::string, SetLine, std::less<>> lines; // of recent frames: most lines recur
};

constexpr size_t mostLinesKept = 64; // two screens full

// Small systems have no font with control pictures. Draws each as a framed letter, the one that makes the control on
// a keyboard ("[" for escape).
void drawControlPicture(cairo_t *to, PangoAttrShape *shape, gboolean, gpointer)
{
	const auto code = static_cast<uint8_t>(GPOINTER_TO_UINT(shape->data));
	const char letter[] = {static_cast<char>(code == 0x21 ? '?' : '@' + code), '\0'};
	const double w = pango_units_to_double(shape->logical_rect.width);
	const double h = w * 1.25;
	double x = 0, y = 0;
	cairo_get_current_point(to, &x, &y);
	cairo_save(to);
	cairo_translate(to, x, y);
	cairo_new_path(to);
	cairo_rectangle(to, w * 0.1, w * 0.17 - h, w * 0.8, h);
	cairo_set_line_width(to, w * 0.09);
	cairo_stroke(to);
	cairo_select_font_face(to, columnsFamily, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
	cairo_set_font_size(to, w * 1.05);
	cairo_text_extents_t extents;
	cairo_text_extents(to, letter, &extents);
	cairo_move_to(to, w / 2 - extents.width / 2 - extents.x_bearing,
	              w * 0.17 - h / 2 - extents.height / 2 - extents.y_bearing);
	// As a path, because Cairo 1.18 may draw a glyph one pixel beyond the clip.
	cairo_text_path(to, letter);
	cairo_fill(to);
	cairo_restore(to);
}

Handle<PangoLayout> Font::newLayout() const
{
	Handle<PangoLayout> layout(pango_layout_new(context.get()));
	pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
	// An Arabic word in a process name must not reverse its row.
	pango_layout_set_auto_dir(layout.get(), face == Face::prose);
	return layout;
}

const SetLine &Font::set(std::string_view line)
{
	if (const auto found = lines.find(line); found != lines.end())
		return found->second;
	PangoAttrList *attributes = pango_attr_list_new();
	const PangoRectangle box = {0, pango_units_from_double(-0.75 * rowHeight), pango_units_from_double(cell),
	                            pango_units_from_double(rowHeight)};
	for (const char *at = line.data(); at < line.data() + line.size(); at = g_utf8_next_char(at)) {
		const gunichar c = g_utf8_get_char(at);
		if (c < firstPicture || c > lastPicture)
			continue;
		PangoAttribute *shape =
			pango_attr_shape_new_with_data(&box, &box, GUINT_TO_POINTER(c - firstPicture), nullptr, nullptr);
		shape->start_index = static_cast<guint>(at - line.data());
		shape->end_index = shape->start_index + 3;
		pango_attr_list_insert(attributes, shape);
	}
	Handle<PangoLayout> layout = newLayout();
	pango_layout_set_attributes(layout.get(), attributes);
	pango_attr_list_unref(attributes);
	pango_layout_set_text(layout.get(), line.data(), static_cast<int>(line.size()));
	const double pixels = fitColumns(layout.get()) * squeeze / PANGO_SCALE;
	if (lines.size() >= mostLinesKept)
		lines.clear();
	return lines[std::string(line)] = {std::move(layout), pixels};
}

// Moves the line's glyphs to whole pixels and returns the width. In columns, each character takes exactly its columns
// in any font. In prose, each glyph's width is whole pixels, except in scripts that join letters.
int Font::fitColumns(PangoLayout *layout) const
{
	const char *text = pango_layout_get_text(layout);
	const PangoLayoutLine *line = pango_layout_get_line(layout, 0);
	int width = 0;
	for (GSList *run = line->runs; run; run = run->next) {
		auto *item = static_cast<PangoGlyphItem *>(run->data);
		PangoGlyphInfo *glyphs = item->glyphs->glyphs;
		for (int i = 0; i < item->glyphs->num_glyphs; ++i) {
			PangoGlyphGeometry &place = glyphs[i].geometry;
			place.width = static_cast<int>(std::lround(place.width * correction));
			place.x_offset = static_cast<int>(std::lround(place.x_offset * correction));
		}
		if (face == Face::columns) {
			PangoGlyphItemIter cluster;
			for (gboolean more = pango_glyph_item_iter_init_start(&cluster, item, text); more;
			     more = pango_glyph_item_iter_next_cluster(&cluster)) {
				const int first = std::min(cluster.start_glyph, cluster.end_glyph + 1);
				const int last = std::max(cluster.start_glyph, cluster.end_glyph - 1);
				const auto bytes = static_cast<size_t>(cluster.end_index - cluster.start_index);
				const int columns = textColumns({text + cluster.start_index, bytes});
				int before = 0;
				for (int i = first; i < last; ++i)
					before += glyphs[i].geometry.width;
				// Marks are positioned relative to their letter, so only the last glyph's advance may change.
				glyphs[last].geometry.width = pango_units_from_double(columns * cell) - before;
			}
		} else if (item->item->analysis.level % 2 == 0)
			for (int i = 0; i < item->glyphs->num_glyphs; ++i) {
				const double pixels = glyphs[i].geometry.width * squeeze / PANGO_SCALE;
				glyphs[i].geometry.width = pango_units_from_double(std::round(pixels) / squeeze);
			}
		width += pango_glyph_string_get_width(item->glyphs);
	}

	// Cairo 1.18 blurs glyphs between two pixels; earlier versions round.
	const auto whole = [this](int units) {
		return pango_units_from_double(std::round(units * squeeze / PANGO_SCALE) / squeeze);
	};
	int start = 0;
	for (GSList *run = line->runs; run; run = run->next) {
		const PangoGlyphString *glyphs = static_cast<PangoGlyphItem *>(run->data)->glyphs;
		for (int i = 0; i < glyphs->num_glyphs; ++i) {
			PangoGlyphGeometry &place = glyphs->glyphs[i].geometry;
			place.x_offset = whole(start + place.x_offset) - start;
			start += place.width;
		}
	}
	return width;
}

class Typesetter
{
public:
	Typesetter() : map(pango_cairo_font_map_new()), options(cairo_font_options_create())
	{
		cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
		cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
		cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
	}
	~Typesetter() { cairo_font_options_destroy(options); }
	Typesetter(const Typesetter &) = delete;
	Typesetter &operator=(const Typesetter &) = delete;

	Font &font(Face face, int rowHeight, bool bold);

private:
	Font make(Face face, int rowHeight, bool bold);

	Handle<PangoFontMap> map;
	cairo_font_options_t *options;
	std::map<std::tuple<Face, int, bool>, Font> fonts;
};

Font Typesetter::make(Face face, int rowHeight, bool bold)
{
	Font s;
	s.face = face;
	s.rowHeight = rowHeight;
	s.context.reset(pango_font_map_create_context(map.get()));
	PangoContext *context = s.context.get();
	pango_cairo_context_set_font_options(context, options);
	pango_cairo_context_set_shape_renderer(context, drawControlPicture, nullptr, nullptr);
	pango_context_set_language(context, pango_language_from_string("en"));
	pango_context_set_base_dir(context, PANGO_DIRECTION_LTR);
	pango_context_set_round_glyph_positions(context, FALSE);

	PangoFontDescription *font = pango_font_description_new();
	pango_font_description_set_family_static(font, face == Face::columns ? columnsFamily : proseFamily);
	pango_font_description_set_weight(font, bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
	// Absolute, so independent of the display's resolution.
	pango_font_description_set_absolute_size(font, fontSize * rowHeight * PANGO_SCALE);
	pango_context_set_font_description(context, font);
	pango_font_description_free(font);

	const auto measure = [&] {
		const Handle<PangoLayout> digits = s.newLayout();
		pango_layout_set_text(digits.get(), "0000000000", -1);
		int advance = 0;
		pango_layout_get_size(digits.get(), &advance, nullptr);
		return std::max(1.0, pango_units_to_double(advance)) / 10;
	};
	const double advance = measure();
	s.cell = advance;
	s.squeeze = face == Face::columns ? columnWidth * rowHeight / advance : proseSqueeze;
	PangoMatrix matrix = PANGO_MATRIX_INIT;
	matrix.xx = s.squeeze;
	pango_context_set_matrix(context, &matrix);
	s.correction = advance / measure();

	PangoFontMetrics *metrics = pango_context_get_metrics(context, nullptr, nullptr);
	s.ascent = pango_units_to_double(pango_font_metrics_get_ascent(metrics));
	s.descent = pango_units_to_double(pango_font_metrics_get_descent(metrics));
	pango_font_metrics_unref(metrics);
	return s;
}

Font &Typesetter::font(Face face, int rowHeight, bool bold)
{
	rowHeight = std::clamp(rowHeight, 1, 200);
	const std::tuple<Face, int, bool> key(face, rowHeight, bold);
	auto found = fonts.find(key);
	if (found == fonts.end()) {
		if (fonts.size() >= 32)
			fonts.clear();
		found = fonts.emplace(key, make(face, rowHeight, bold)).first;
	}
	return found->second;
}

Typesetter &typesetter()
{
	static thread_local Typesetter only; // Pango's objects belong to one thread
	return only;
}

// The visible start of `line` for `width` pixels, and a little more.
std::string_view startWithin(std::string_view line, int width, const Font &font)
{
	const double column = columnWidth * font.rowHeight;
	const double narrowest = column / 4; // of a letter in any fallback font
	const size_t mostBytes = mostBytesWithin(width);
	double least = 0;
	const auto character = [&](const char *at) {
		return std::string_view(at, static_cast<size_t>(g_utf8_next_char(at) - at));
	};
	const char *at = line.data();
	const char *const end = at + line.size();
	while (at < end && least <= width + column && at < line.data() + mostBytes) {
		const std::string_view c = character(at);
		if (font.face == Face::columns)
			least += c.size() == 1 ? column : textColumns(c) * column;
		else if (textColumns(c) > 0)
			least += narrowest;
		at += c.size();
	}
	// Combining characters belong to the last character.
	for (int marks = 0; at < end && marks < 16 && textColumns(character(at)) == 0; ++marks)
		at = g_utf8_next_char(at);
	return line.substr(0, static_cast<size_t>(at - line.data()));
}

} // namespace

bool haveLetters()
{
	// Checked first, because without fonts Pango prints warnings.
	const Handle<PangoFontMap> fonts(pango_cairo_font_map_new());
	PangoFontFamily **families = nullptr;
	int count = 0;
	pango_font_map_list_families(fonts.get(), &families, &count);
	g_free(static_cast<void *>(families));
	if (count == 0)
		return false;
	Font &font = typesetter().font(Face::columns, 20, false);
	return pango_layout_get_unknown_glyphs_count(font.set("Az0").layout.get()) == 0;
}

void drawLine(cairo_t *to, const Rect &area, std::string_view line, const TextStyle &style)
{
	if (area.empty() || line.empty())
		return;
	Font &font = typesetter().font(style.face, style.rowHeight, style.bold);
	if (!style.whole)
		line = startWithin(line, area.w, font);
	const SetLine &set = font.set(line);
	const double narrower = style.whole ? std::min(1.0, area.w / std::max(1.0, set.pixels)) : 1.0;
	const int width = static_cast<int>(std::ceil(set.pixels * narrower - 0.01));

	PangoLayoutLine *laidOut = pango_layout_get_line_readonly(set.layout.get(), 0);
	const bool rightToLeft = pango_layout_line_get_resolved_direction(laidOut) == PANGO_DIRECTION_RTL;
	const int spare = area.w - width;
	const Align align = spare < 0 ? Align::start : style.align; // long text shows its start
	double x = area.x;
	if (align == Align::centre)
		x += std::floor(spare / 2.0);
	else if ((align == Align::end) != rightToLeft)
		x = area.right() - width;
	const double baseline = std::round(area.y + (area.h - font.ascent - font.descent) / 2 + font.ascent);

	cairo_set_source_rgb(to, style.color.r / 255.0, style.color.g / 255.0, style.color.b / 255.0);
	cairo_translate(to, x, baseline);
	cairo_scale(to, font.squeeze * narrower, 1);
	cairo_move_to(to, 0, 0);
	pango_cairo_show_layout_line(to, laidOut);
}

} // namespace desk
