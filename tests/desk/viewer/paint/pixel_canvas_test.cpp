#include "pixel_canvas.h"

#include "error_of.h"
#include "temp_folder.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <vector>

namespace desk
{

static std::ostream &operator<<(std::ostream &out, const Rect &r)
{
	return out << r.x << "," << r.y << " " << r.w << "x" << r.h;
}

} // namespace desk

namespace pixel_canvas_test
{

using namespace desk;
using namespace std::string_literals;

constexpr Color white = {255, 255, 255}, red = {255, 0, 0}, green = {0, 255, 0}, blue = {0, 0, 255};

Color at(PixelCanvas &canvas, int x, int y)
{
	const unsigned char *p = canvas.pixels() + y * canvas.stride() + 4 * x;
	return {p[2], p[1], p[0]};
}

/// The bounding box of all pixels that are not black.
Rect painted(PixelCanvas &canvas)
{
	static const unsigned char black[4 * screenWidth] = {};
	int left = screenWidth, top = screenHeight, right = 0, bottom = 0;
	for (int y = 0; y < screenHeight; ++y) {
		const unsigned char *p = canvas.pixels() + y * canvas.stride();
		if (std::memcmp(p, black, sizeof black) == 0) // most rows; pixel by pixel takes seconds
			continue;
		for (int x = 0; x < screenWidth; ++x, p += 4)
			if (p[0] || p[1] || p[2]) {
				left = std::min(left, x);
				right = std::max(right, x + 1);
				top = std::min(top, y);
				bottom = std::max(bottom, y + 1);
			}
	}
	return right > left ? Rect{left, top, right - left, bottom - top} : Rect{};
}

bool within(const Rect &inner, const Rect &outer)
{
	return inner.empty() || (inner.x >= outer.x && inner.y >= outer.y && inner.right() <= outer.right() &&
	                         inner.bottom() <= outer.bottom());
}

std::string copyOf(PixelCanvas &canvas)
{
	return std::string(reinterpret_cast<const char *>(canvas.pixels()),
	                   static_cast<size_t>(canvas.stride()) * screenHeight);
}

TextStyle columns(int rowHeight = 20)
{
	TextStyle style;
	style.color = white;
	style.rowHeight = rowHeight;
	return style;
}

TextStyle prose(Align align = Align::start)
{
	TextStyle style;
	style.color = white;
	style.face = Face::prose;
	style.align = align;
	return style;
}

/// The x of each upright stroke in a text of blanks and "|": its brightest column.
std::vector<int> strokes(PixelCanvas &canvas, int y)
{
	std::vector<int> found;
	for (int x = 1; x + 1 < screenWidth; ++x) {
		const int here = at(canvas, x, y).r;
		if (here > 60 && here >= at(canvas, x - 1, y).r && here > at(canvas, x + 1, y).r)
			found.push_back(x);
	}
	return found;
}

TEST(Rectangles, are_cut_by_others)
{
	const auto cut = [](Rect a, Rect b) { return a.intersected(b); };
	const Rect part = cut({10, 10, 20, 20}, {20, 5, 30, 10});
	EXPECT_TRUE(part.x == 20 && part.y == 10 && part.w == 10 && part.h == 5) << part;
	EXPECT_TRUE(cut({0, 0, 10, 10}, {10, 0, 10, 10}).empty());
	EXPECT_TRUE(cut({0, 0, 10, 10}, {50, 50, 10, 10}).empty());
	EXPECT_EQ(cut({0, 0, 10, 10}, {50, 50, 10, 10}).w, 0);
}

TEST(PixelCanvas, begins_black)
{
	PixelCanvas canvas;
	EXPECT_TRUE(painted(canvas).empty());
}

TEST(PixelCanvas, fills_exactly_the_area_and_no_more)
{
	PixelCanvas canvas;
	canvas.fill({10, 20, 30, 40}, Fill::plain(red));
	for (int y = 0; y < 80; ++y)
		for (int x = 0; x < 60; ++x)
			ASSERT_EQ(at(canvas, x, y) == red, x >= 10 && x < 40 && y >= 20 && y < 60) << x << "," << y;
	const Rect all = painted(canvas);
	EXPECT_TRUE(all.x == 10 && all.y == 20 && all.w == 30 && all.h == 40) << all;
}

TEST(PixelCanvas, fills_nothing_where_there_is_no_area)
{
	PixelCanvas canvas;
	canvas.fill({10, 10, 0, 10}, Fill::plain(red));
	canvas.fill({10, 10, 10, -1}, Fill::plain(red, 5));
	canvas.text({10, 10, 0, 20}, "text", columns());
	canvas.keySymbol({10, 10, 0, 0}, Key::red, red);
	canvas.window({10, 10, 0, 0}, {10, 10, 0, 0}, "title", {red, red, red, red, red, 5});
	EXPECT_TRUE(painted(canvas).empty());
}

TEST(PixelCanvas, fills_from_the_upper_colour_to_the_lower)
{
	PixelCanvas canvas;
	canvas.fill({0, 0, 100, 200}, {white, {0, 0, 1}});
	EXPECT_GT(at(canvas, 50, 0).r, 250);
	EXPECT_LT(at(canvas, 50, 199).r, 5);
	for (int y = 1; y < 200; ++y)
		ASSERT_LE(at(canvas, 50, y).r, at(canvas, 50, y - 1).r);
}

TEST(PixelCanvas, rounds_corners)
{
	PixelCanvas canvas;
	canvas.fill({0, 0, 40, 40}, Fill::plain(red, 10));
	EXPECT_EQ(at(canvas, 0, 0), Color{});
	EXPECT_EQ(at(canvas, 39, 39), Color{});
	EXPECT_EQ(at(canvas, 20, 0), red);
	EXPECT_EQ(at(canvas, 0, 20), red);
	EXPECT_EQ(at(canvas, 20, 20), red);
}

TEST(PixelCanvas, nests_clips_each_cut_by_the_one_around)
{
	PixelCanvas canvas;
	canvas.pushClip({10, 10, 50, 50});
	canvas.pushClip({40, 40, 50, 50});
	canvas.fill({0, 0, 200, 200}, Fill::plain(red));
	Rect all = painted(canvas);
	EXPECT_TRUE(all.x == 40 && all.y == 40 && all.w == 20 && all.h == 20) << all;
	canvas.popClip();
	canvas.fill({0, 0, 200, 200}, Fill::plain(green));
	all = painted(canvas);
	EXPECT_TRUE(all.x == 10 && all.y == 10 && all.w == 50 && all.h == 50) << all;
	canvas.popClip();
	canvas.popClip(); // an unmatched pop is harmless
	canvas.fill({0, 0, 200, 200}, Fill::plain(blue));
	EXPECT_EQ(at(canvas, 199, 199), blue);
}

TEST(PixelCanvas, draws_nothing_in_an_empty_clip)
{
	for (const Rect &clip : {Rect{10, 10, 0, 0}, Rect{10, 10, -5, 20}, Rect{-50, -50, 20, 20}}) {
		PixelCanvas canvas;
		canvas.pushClip(clip);
		canvas.fill({0, 0, 720, 576}, Fill::plain(red));
		canvas.text({0, 0, 720, 20}, "text", columns());
		EXPECT_TRUE(painted(canvas).empty()) << clip;
	}
}

TEST(PixelCanvas, touches_nothing_outside_of_the_clip)
{
	const Rect clip = {100, 100, 200, 60};
	PixelCanvas canvas;
	canvas.pushClip(clip);
	canvas.fill({50, 50, 400, 400}, {red, green, 20});
	canvas.window({80, 70, 300, 120}, {84, 100, 292, 86}, "A title", {red, green, blue, white, red, 8});
	canvas.text({90, 90, 400, 20}, "WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW", columns());
	canvas.text({90, 150, 400, 20}, "ggggÅÅÅÅÅÅ日本语", prose());
	canvas.keySymbol({290, 140, 40, 40}, Key::blue, blue);
	EXPECT_TRUE(within(painted(canvas), clip)) << painted(canvas);
	EXPECT_FALSE(painted(canvas).empty());
}

TEST(PixelCanvas, cuts_text_at_its_area)
{
	const Rect area = {100, 100, 50, 14};
	for (const TextStyle &style :
	     {columns(), prose(), prose(Align::centre), prose(Align::end), columns(60)}) {
		PixelCanvas canvas;
		canvas.text(area, "ÅgÅgÅgÅgÅgÅgÅg\xE0\xB9\x82\xE0\xB9\x89 and more", style);
		EXPECT_FALSE(painted(canvas).empty());
		EXPECT_TRUE(within(painted(canvas), area)) << painted(canvas);
	}
}

TEST(PixelCanvas, draws_columns_exactly_eight_pixels_apart)
{
	PixelCanvas canvas;
	canvas.text({0, 0, 720, 20}, std::string(90, '|'), columns());
	const std::vector<int> found = strokes(canvas, 10);
	ASSERT_EQ(found.size(), 90u);
	for (size_t i = 0; i < found.size(); ++i)
		EXPECT_EQ(found[i], found[0] + 8 * static_cast<int>(i));
	EXPECT_LT(found[0], 8);
}

TEST(PixelCanvas, keeps_columns_in_line_whatever_stands_before)
{
	const char *const before[] = {"abcdefgh",
	                              "iiiiiiii",
	                              "WWWWWWWW",
	                              "        ",
	                              "żółćęąśń",
	                              "日本語文",
	                              "عربيعربي",
	                              "g\xCC\x81g\xCC\x81g\xCC\x81g\xCC\x81ghij",
	                              "\x1b\x07\x08\xff\xfe\xc2\x80z\x7f",
	                              "\t"};
	for (int rowHeight : {20, 30, 16})
		for (bool bold : {false, true}) {
			std::set<int> places;
			for (const char *text : before) {
				PixelCanvas canvas;
				TextStyle style = columns(rowHeight);
				style.bold = bold;
				canvas.text({0, 0, 720, 40}, text + "        |"s, style);
				const std::vector<int> found = strokes(canvas, 20);
				ASSERT_FALSE(found.empty()) << text;
				places.insert(found.back());
			}
			EXPECT_EQ(places.size(), 1u) << *places.begin() << " to " << *places.rbegin();
			EXPECT_NEAR(*places.begin(), 16.5 * 0.4 * rowHeight, 2);
		}
}

TEST(PixelCanvas, stands_text_in_the_middle_of_its_area)
{
	for (int height : {20, 40, 60}) {
		PixelCanvas canvas;
		canvas.text({0, 100, 200, height}, "Hxg", columns());
		const Rect all = painted(canvas);
		const double middle = all.y + all.h / 2.0;
		EXPECT_NEAR(middle, 100 + height / 2.0, 2.5) << height;
	}
}

TEST(PixelCanvas, draws_neighbouring_rows_apart)
{
	PixelCanvas canvas;
	canvas.text({0, 100, 200, 20}, "gjpqy|(", columns());
	EXPECT_TRUE(within(painted(canvas), {0, 100, 200, 20})) << painted(canvas);
	const Rect rows = painted(canvas);
	EXPECT_GE(rows.h, 16) << "it uses the row it has";
}

TEST(PixelCanvas, aligns_prose)
{
	const Rect area = {100, 100, 300, 20};
	const auto drawn = [&](const char *text, Align align) {
		PixelCanvas canvas;
		canvas.text(area, text, prose(align));
		return painted(canvas);
	};
	EXPECT_LT(drawn("text", Align::start).x, 104);
	EXPECT_GT(drawn("text", Align::end).right(), 396);
	const Rect middle = drawn("text", Align::centre);
	EXPECT_NEAR(middle.x + middle.w / 2.0, 250, 2);
	// A right-to-left text starts at the right.
	EXPECT_GT(drawn("معلومات", Align::start).right(), 396);
	EXPECT_LT(drawn("معلومات", Align::end).x, 104);
	const Rect arabic = drawn("معلومات", Align::centre);
	EXPECT_NEAR(arabic.x + arabic.w / 2.0, 250, 2);
	EXPECT_GT(drawn("(2) عرض الذاكرة", Align::start).right(), 390);
}

TEST(PixelCanvas, keeps_columns_from_the_left_also_in_arabic)
{
	PixelCanvas canvas;
	canvas.text({100, 100, 300, 20}, "عربي 12", columns());
	EXPECT_LT(painted(canvas).right(), 170);
}

TEST(PixelCanvas, shows_the_start_of_a_text_that_is_too_long)
{
	const std::string text = "The beginning of a text that is by far too long for where it stands";
	for (const Align align : {Align::start, Align::centre, Align::end}) {
		PixelCanvas cut, whole;
		cut.pushClip({100, 100, 80, 20});
		whole.pushClip({100, 100, 80, 20});
		cut.text({100, 100, 80, 20}, text, prose(align));
		whole.text({100, 100, 600, 20}, text, prose());
		EXPECT_EQ(copyOf(cut), copyOf(whole));
	}
}

TEST(PixelCanvas, makes_a_text_narrower_that_is_to_be_seen_whole)
{
	const Rect area = {100, 100, 150, 20};
	TextStyle style = prose();
	PixelCanvas cut, whole, shorter;
	cut.text(area, "WWWWWWWWWWWWWWWWi", style);
	style.whole = true;
	whole.text(area, "WWWWWWWWWWWWWWWWi", style);
	EXPECT_TRUE(within(painted(whole), area)) << painted(whole);
	EXPECT_NE(copyOf(cut), copyOf(whole));
	shorter.text(area, "WWWWWWWWWWWWWWWW ", style);
	EXPECT_NE(copyOf(shorter), copyOf(whole)) << "its last letter is there";
	PixelCanvas one, other;
	one.text(area, "has room", prose());
	other.text(area, "has room", style);
	EXPECT_EQ(copyOf(one), copyOf(other)) << "what has room is as ever";
}

TEST(PixelCanvas, loses_nothing_that_can_be_seen_of_a_long_line)
{
	// The canvas cuts a long line before layout, which must not change a visible pixel.
	const std::string pieces[] = {"word ",        "iiii", "||||",     "e\xCC\x81\xCC\xA3",
	                              "\xE2\x80\x8B", "日本", "a\xC2\xAD"};
	for (const Face face : {Face::columns, Face::prose})
		for (const std::string &piece : pieces) {
			std::string line;
			while (line.size() < 1022)
				line += piece;
			TextStyle style = columns();
			style.face = face;
			PixelCanvas narrow, wide;
			narrow.pushClip({0, 0, 60, 20});
			wide.pushClip({0, 0, 60, 20});
			narrow.text({0, 0, 60, 20}, line, style);
			wide.text({0, 0, 3000, 20}, line, style);
			EXPECT_EQ(copyOf(narrow), copyOf(wide)) << piece;
		}
}

TEST(PixelCanvas, shows_controls_and_invalid_bytes)
{
	for (const std::string &nasty :
	     {"\x1b"s, "\x07"s, "\v"s, "\0"s, "\xff"s, "\xc2\x9b"s, "\x7f"s, "\xe2\x80\xae"s}) {
		PixelCanvas canvas;
		canvas.text({0, 0, 100, 20}, nasty, columns());
		const Rect mark = painted(canvas);
		EXPECT_FALSE(mark.empty());
		EXPECT_LE(mark.right(), 9);
		EXPECT_TRUE(within(mark, {0, 0, 100, 20})) << mark;
	}
}

TEST(PixelCanvas, tells_the_controls_apart)
{
	std::set<std::string> pictures;
	for (char c = 0; c < 0x20; ++c) {
		if (c == '\n' || c == '\t')
			continue;
		PixelCanvas canvas;
		canvas.text({0, 0, 100, 20}, std::string(1, c), columns());
		pictures.insert(copyOf(canvas));
	}
	EXPECT_EQ(pictures.size(), 30u);
}

TEST(PixelCanvas, draws_any_bytes_at_any_size)
{
	std::mt19937 random(4);
	std::uniform_int_distribution<int> byte(0, 255), length(0, 300), place(-100, 800), size(-5, 300);
	for (int i = 0; i < 400; ++i) {
		PixelCanvas canvas;
		std::string bytes;
		for (int n = length(random); n > 0; --n)
			bytes += static_cast<char>(byte(random));
		TextStyle style = i % 2 ? columns(size(random)) : prose(static_cast<Align>(i % 3));
		style.bold = i % 5 == 0;
		const Rect area = {place(random), place(random), size(random), size(random)};
		canvas.text(area, bytes, style);
		ASSERT_TRUE(within(painted(canvas), area));
	}
}

TEST(PixelCanvas, obeys_no_bidirectional_override)
{
	PixelCanvas plain, nasty;
	plain.text({0, 0, 300, 20},
	           "a\xEF\xBF\xBD"
	           "exe.txt",
	           columns());
	nasty.text({0, 0, 300, 20},
	           "a\xE2\x80\xAE"
	           "exe.txt",
	           columns());
	EXPECT_EQ(copyOf(plain), copyOf(nasty));
}

TEST(PixelCanvas, draws_the_same_whatever_the_machine_settings)
{
	PixelCanvas canvas;
	canvas.text({0, 0, 300, 20}, "Text", columns());
	// Grey levels only, so no subpixel rendering.
	for (int y = 0; y < 20; ++y)
		for (int x = 0; x < 100; ++x) {
			const Color c = at(canvas, x, y);
			ASSERT_TRUE(c.r == c.g && c.g == c.b);
		}
}

TEST(PixelCanvas, frames_a_window)
{
	const WindowStyle style = {red, green, green, white, blue, 8};
	const Rect outer = {96, 70, 408, 264}, client = {100, 100, 400, 230};
	PixelCanvas canvas;
	canvas.fill({0, 0, 720, 576}, Fill::plain(white));
	canvas.window(outer, client, "Title", style);
	for (int y = client.y; y < client.bottom(); ++y)
		for (int x = client.x; x < client.right(); ++x)
			ASSERT_EQ(at(canvas, x, y), blue) << x << "," << y;
	EXPECT_EQ(at(canvas, 300, 80), green);
	EXPECT_EQ(at(canvas, 300, 70), red);
	EXPECT_EQ(at(canvas, 96, 200), red);
	EXPECT_EQ(at(canvas, 503, 200), red);
	EXPECT_EQ(at(canvas, 300, 333), red);
	EXPECT_NE(at(canvas, 96, 70), red) << "the corner is round";
	int titled = 0;
	for (int y = 71; y < 99; ++y)
		for (int x = 100; x < 200; ++x)
			titled += at(canvas, x, y).r > 200;
	EXPECT_GT(titled, 50);
	EXPECT_EQ(at(canvas, 300, 40), white) << "the shadow is narrow";
}

TEST(PixelCanvas, draws_the_colour_key_in_its_colour_within_its_area)
{
	const Rect area = {100, 100, 24, 20};
	PixelCanvas canvas;
	canvas.keySymbol(area, Key::red, {200, 30, 30});
	EXPECT_TRUE(within(painted(canvas), area)) << painted(canvas);
	const Color middle = at(canvas, 112, 110);
	EXPECT_GT(middle.r, 180);
	EXPECT_LT(middle.g, 90);
	EXPECT_EQ(at(canvas, 100, 100), Color{});
}

TEST(PixelCanvas, writes_a_png)
{
	const support::TempFolder folder;
	PixelCanvas canvas;
	canvas.fill({10, 10, 100, 100}, Fill::plain(red));
	const std::string path = folder / "picture.png";
	canvas.writePng(path);
	EXPECT_NO_THROW(canvas.writePng(path)) << "over an older one";
	const std::string png = support::readFile(path);
	ASSERT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
	const auto number = [&](size_t at) {
		return static_cast<unsigned char>(png.at(at)) * 256 + static_cast<unsigned char>(png.at(at + 1));
	};
	EXPECT_EQ(number(18), screenWidth);
	EXPECT_EQ(number(22), screenHeight);

	const auto failure = [&](const std::string &to) {
		return support::errorOf([&] { canvas.writePng(to); });
	};
	EXPECT_EQ(failure(folder / "no/picture.png"),
	          "cannot write '" + folder / "no/picture.png" + "': No such file or directory");
	EXPECT_EQ(failure(folder.path()), "cannot write '" + folder.path() + "': Is a directory");
	EXPECT_EQ(failure("/dev/full"), "cannot write '/dev/full': No space left on device");
	EXPECT_TRUE(std::filesystem::is_character_file("/dev/full")) << "a device is not removed";
}

} // namespace pixel_canvas_test
