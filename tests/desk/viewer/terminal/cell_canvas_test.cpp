#include "cell_canvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

using namespace desk;

namespace
{

constexpr Color black{0, 0, 0}, white{255, 255, 255}, red{255, 0, 0}, blue{0, 0, 255}, grey{128, 128, 128};

const Cell &cellAt(CellCanvas &canvas, int row, int column)
{
	return canvas.at(row, column);
}

/// A row's characters without trailing blanks; lines become '-', '|' and '+'.
std::string rowText(CellCanvas &canvas, int row)
{
	std::string text;
	for (int column = 0; column < cellColumns; ++column) {
		const Cell &cell = cellAt(canvas, row, column);
		switch (cell.shape) {
		case Cell::Shape::none:
		case Cell::Shape::track:
		case Cell::Shape::thumb:
			text += cell.glyph;
			break;
		case Cell::Shape::horizontal:
			text += '-';
			break;
		case Cell::Shape::vertical:
			text += '|';
			break;
		default:
			text += '+';
		}
	}
	text.erase(text.find_last_not_of(' ') + 1);
	return text;
}

std::string allText(CellCanvas &canvas)
{
	std::string text;
	for (int row = 0; row < cellRows; ++row)
		text += rowText(canvas, row) + '\n';
	return text;
}

TextStyle style(int rowHeight = 20, Face face = Face::columns, Align align = Align::start)
{
	TextStyle s;
	s.color = white;
	s.face = face;
	s.rowHeight = rowHeight;
	s.align = align;
	return s;
}

void backdrop(CellCanvas &canvas)
{
	canvas.fill({0, 0, screenWidth, screenHeight}, Fill::plain(black, 0, Part::backdrop));
}

TEST(CellCanvas, a_line_stands_in_the_row_that_its_middle_is_in)
{
	CellCanvas canvas;
	canvas.text({16, 0, 400, 20}, "first", style());
	canvas.text({16, 25, 400, 20}, "second", style());
	canvas.text({16, 55, 400, 40}, "fourth", style());
	EXPECT_EQ(rowText(canvas, 0), "  first");
	EXPECT_EQ(rowText(canvas, 1), "  second");
	EXPECT_EQ(rowText(canvas, 2), "");
	EXPECT_EQ(rowText(canvas, 3), "  fourth");
}

TEST(CellCanvas, rows_of_the_default_height_are_consecutive_wherever_they_start)
{
	for (int y = 0; y < 40; ++y) {
		CellCanvas canvas;
		for (int i = 0; i < 20; ++i)
			canvas.text({0, y + 20 * i, 400, 20}, "line " + std::to_string(i), style());
		const int first = (y + 10) / 20;
		for (int i = 0; i < 20; ++i)
			ASSERT_EQ(rowText(canvas, first + i), "line " + std::to_string(i)) << "y " << y;
	}
}

TEST(CellCanvas, the_last_row_is_one_though_it_is_not_whole_on_the_screen)
{
	CellCanvas canvas;
	canvas.text({0, 560, 400, 20}, "down here", style());
	EXPECT_EQ(rowText(canvas, 28), "down here");
}

TEST(CellCanvas, the_first_column_is_the_nearest)
{
	CellCanvas canvas;
	canvas.text({3, 0, 400, 20}, "a", style());
	canvas.text({4, 20, 400, 20}, "b", style());
	canvas.text({12, 40, 400, 20}, "c", style());
	EXPECT_EQ(rowText(canvas, 0), "a");
	EXPECT_EQ(rowText(canvas, 1), " b");
	EXPECT_EQ(rowText(canvas, 2), "  c");
}

TEST(CellCanvas, text_is_aligned_in_its_area)
{
	CellCanvas canvas;
	canvas.text({0, 0, 80, 20}, "abcd", style(20, Face::prose, Align::centre));
	canvas.text({0, 20, 80, 20}, "abcd", style(20, Face::prose, Align::end));
	canvas.text({0, 40, 16, 20}, "abcd", style(20, Face::columns, Align::centre));
	EXPECT_EQ(rowText(canvas, 0), "   abcd");
	EXPECT_EQ(rowText(canvas, 1), "      abcd");
	EXPECT_EQ(rowText(canvas, 2), "ab");
}

TEST(CellCanvas, text_is_cut_at_its_area_and_at_the_clip)
{
	CellCanvas canvas;
	canvas.text({0, 0, 40, 20}, "0123456789", style());
	canvas.pushClip({16, 0, 400, 400});
	canvas.pushClip({0, 0, 48, 400});
	canvas.text({0, 20, 400, 20}, "0123456789", style());
	canvas.text({0, 392, 400, 20}, "its middle is outside", style());
	canvas.popClip();
	canvas.text({0, 40, 400, 20}, "0123456789", style());
	canvas.popClip();
	canvas.popClip(); // an unmatched pop is harmless
	canvas.text({0, 60, 400, 20}, "0123456789", style());
	EXPECT_EQ(rowText(canvas, 0), "01234");
	EXPECT_EQ(rowText(canvas, 1), "  2345");
	EXPECT_EQ(rowText(canvas, 2), "  23456789");
	EXPECT_EQ(rowText(canvas, 3), "0123456789");
	EXPECT_EQ(rowText(canvas, 20), "");
}

TEST(CellCanvas, wide_characters_take_two_cells_and_are_never_split)
{
	CellCanvas canvas;
	canvas.text({0, 0, 400, 20}, "a\xE6\x97\xA5z", style());
	EXPECT_EQ(cellAt(canvas, 0, 1).glyph, "\xE6\x97\xA5");
	EXPECT_EQ(cellAt(canvas, 0, 2).glyph, "");
	EXPECT_EQ(cellAt(canvas, 0, 3).glyph, "z");

	canvas.text({0, 20, 16, 20}, "a\xE6\x97\xA5", style());
	EXPECT_EQ(rowText(canvas, 1), "a");
	canvas.pushClip({16, 0, 400, 400});
	canvas.text({0, 40, 400, 20}, "a\xE6\x97\xA5z", style());
	canvas.popClip();
	EXPECT_EQ(rowText(canvas, 2), "   z");

	canvas.text({0, 60, 400, 20}, "\xE6\x97\xA5\xE6\x97\xA5", style());
	canvas.fill({8, 60, 16, 20}, Fill::plain(blue)); // covers half of both cells in the middle
	EXPECT_EQ(rowText(canvas, 3), "");
}

TEST(CellCanvas, combining_characters_share_the_cell_of_their_base)
{
	CellCanvas canvas;
	canvas.text({0, 0, 400, 20}, "e\xCC\x81x", style());
	EXPECT_EQ(cellAt(canvas, 0, 0).glyph, "e\xCC\x81");
	EXPECT_EQ(cellAt(canvas, 0, 1).glyph, "x");
	canvas.text({0, 20, 400, 20}, "\xCC\x81x", style());
	EXPECT_EQ(cellAt(canvas, 1, 0).glyph, "\xE2\x97\x8C\xCC\x81");
	std::string pile = "e";
	for (int i = 0; i < 500; ++i)
		pile += "\xCC\x81";
	canvas.text({0, 40, 400, 20}, pile + "x", style());
	EXPECT_EQ(cellAt(canvas, 2, 0).glyph, pile.substr(0, 9));
	EXPECT_EQ(cellAt(canvas, 2, 1).glyph, "x");
}

TEST(CellCanvas, nasty_bytes_become_visible_marks)
{
	CellCanvas canvas;
	canvas.text({0, 0, 400, 20}, std::string_view("a\0b\033[2J\xFF\n", 9), style());
	EXPECT_EQ(rowText(canvas, 0), "a\xE2\x90\x80"
	                              "b\xE2\x90\x9B[2J\xEF\xBF\xBD");
	canvas.text({0, 20, 400, 20}, std::string(1000000, 'x'), style());
	EXPECT_EQ(rowText(canvas, 1), std::string(50, 'x'));
}

TEST(CellCanvas, a_fill_goes_to_the_nearest_cell_edges)
{
	CellCanvas canvas;
	backdrop(canvas);
	canvas.fill({5, 11, 30, 38}, Fill::plain(blue)); // columns 0.6 to 4.4, rows 0.55 to 2.45
	for (int row = 0; row < 5; ++row)
		for (int column = 0; column < 8; ++column)
			EXPECT_EQ(cellAt(canvas, row, column).ground == blue, row == 1 && column >= 1 && column < 4)
				<< row << ' ' << column;
}

TEST(CellCanvas, a_thin_bar_is_a_column_and_a_hairline_is_nothing)
{
	CellCanvas canvas;
	backdrop(canvas);
	canvas.fill({85, 0, 6, 200}, Fill::plain(blue));
	canvas.fill({200, 0, 2, 200}, Fill::plain(red));
	EXPECT_EQ(cellAt(canvas, 3, 11).ground, blue);
	for (int column = 0; column < cellColumns; ++column)
		EXPECT_NE(cellAt(canvas, 3, column).ground, red);
}

TEST(CellCanvas, the_scroll_bars_parts_are_known)
{
	CellCanvas canvas;
	backdrop(canvas);
	canvas.fill({80, 0, 8, 200}, Fill::plain(grey, 4, Part::track));
	canvas.fill({80, 40, 8, 7}, Fill::plain(white, 4, Part::thumb));
	EXPECT_EQ(cellAt(canvas, 0, 10).shape, Cell::Shape::track);
	EXPECT_EQ(cellAt(canvas, 2, 10).shape, Cell::Shape::thumb);
	EXPECT_EQ(cellAt(canvas, 3, 10).shape, Cell::Shape::track);
	EXPECT_FALSE(cellAt(canvas, 2, 10).current);
}

TEST(CellCanvas, a_fill_covers_the_texts_whose_middle_it_covers)
{
	CellCanvas canvas;
	canvas.text({0, 0, 400, 20}, "abcdef", style());
	canvas.fill({16, 0, 16, 20}, Fill::plain(blue));
	EXPECT_EQ(rowText(canvas, 0), "ab  ef");
	canvas.text({0, 30, 400, 20}, "grazed", style());
	canvas.fill({0, 20, 400, 18}, Fill::plain(blue));
	EXPECT_EQ(rowText(canvas, 2), "grazed");
	canvas.fill({0, 20, 400, 20}, Fill::plain(blue));
	canvas.text({0, 20, 400, 20}, "before", style());
	canvas.text({0, 25, 400, 20}, "after", style());
	EXPECT_EQ(rowText(canvas, 1), "aftere") << "what is painted later is in front";
}

TEST(CellCanvas, text_stands_on_what_is_beneath_and_its_blanks_hide_nothing)
{
	CellCanvas canvas;
	canvas.fill({0, 0, 400, 20}, Fill::plain(blue));
	canvas.text({0, 0, 400, 20}, "one     three", style());
	canvas.text({0, 0, 400, 20}, "    two      ", style());
	EXPECT_EQ(rowText(canvas, 0), "one two three");
	EXPECT_EQ(cellAt(canvas, 0, 4).ground, blue);
	EXPECT_EQ(cellAt(canvas, 0, 4).text, white);
}

TEST(CellCanvas, the_current_entry_is_marked_over_its_whole_width)
{
	CellCanvas canvas;
	canvas.fill({0, 0, 400, 400}, Fill::plain(grey));
	canvas.fill({0, 20, 400, 20}, Fill::plain(blue, 0, Part::currentLine));
	canvas.text({0, 20, 400, 20}, "entry", style());
	for (int column = 0; column < 50; ++column) {
		EXPECT_TRUE(cellAt(canvas, 1, column).current);
		EXPECT_EQ(cellAt(canvas, 1, column).below, grey);
	}
	EXPECT_FALSE(cellAt(canvas, 0, 0).current);
	EXPECT_FALSE(cellAt(canvas, 2, 0).current);
}

TEST(CellCanvas, a_button_is_a_row_high)
{
	CellCanvas canvas;
	backdrop(canvas);
	canvas.fill({80, 70, 160, 40}, Fill::plain(blue, 0, Part::button));
	canvas.text({80, 70, 160, 40}, "OK", style(20, Face::prose, Align::centre));
	int rows = 0;
	for (int row = 0; row < cellRows; ++row)
		rows += cellAt(canvas, row, 12).ground == blue;
	EXPECT_EQ(rows, 1);
	EXPECT_EQ(rowText(canvas, 4), std::string(19, ' ') + "OK");
}

TEST(CellCanvas, a_frame_is_drawn_around_its_client_area)
{
	CellCanvas canvas;
	backdrop(canvas);
	WindowStyle frame;
	frame.client = blue;
	frame.border = red;
	frame.titleText = white;
	canvas.window({76, 30, 88, 114}, {80, 60, 80, 80}, "Info", frame);
	EXPECT_EQ(rowText(canvas, 2), "         + Info ----+");
	for (int row = 3; row < 7; ++row)
		EXPECT_EQ(rowText(canvas, row), "         |          |");
	EXPECT_EQ(rowText(canvas, 7), "         +----------+");
	EXPECT_EQ(cellAt(canvas, 3, 10).ground, blue);
	EXPECT_EQ(cellAt(canvas, 3, 9).text, red);
	EXPECT_TRUE(cellAt(canvas, 2, 11).bold);
}

TEST(CellCanvas, a_long_title_is_cut_and_an_empty_one_is_a_line)
{
	CellCanvas canvas;
	canvas.window({76, 30, 88, 114}, {80, 60, 80, 80}, "A title that is long", WindowStyle());
	EXPECT_EQ(rowText(canvas, 2), "         + A title -+");
	canvas.window({76, 30, 88, 114}, {80, 60, 80, 80}, "", WindowStyle());
	EXPECT_EQ(rowText(canvas, 2), "         +----------+");
}

TEST(CellCanvas, a_window_covers_what_is_beneath)
{
	CellCanvas canvas;
	backdrop(canvas);
	for (int i = 0; i < 12; ++i)
		canvas.text({0, i * 20, 400, 20}, std::string(40, static_cast<char>('a' + i)), style());
	canvas.window({76, 30, 88, 114}, {80, 60, 80, 80}, "Info", WindowStyle());
	EXPECT_EQ(rowText(canvas, 1), std::string(40, 'b'));
	EXPECT_EQ(rowText(canvas, 2), "ccccccccc+ Info ----+" + std::string(19, 'c'));
	EXPECT_EQ(rowText(canvas, 5), "fffffffff|          |" + std::string(19, 'f'));
	EXPECT_EQ(rowText(canvas, 8), std::string(40, 'i'));
}

TEST(CellCanvas, a_window_at_the_edge_loses_only_the_lines_beyond)
{
	CellCanvas canvas;
	canvas.window({0, 0, 720, 576}, {0, 30, 720, 546}, "Whole", WindowStyle());
	canvas.text({0, 30, 720, 20}, "first", style());
	canvas.text({0, 556, 720, 20}, "last", style());
	EXPECT_EQ(rowText(canvas, 1).substr(0, 12), " Whole -----");
	EXPECT_EQ(rowText(canvas, 2), "first");
	EXPECT_EQ(rowText(canvas, 28), "last");
}

TEST(CellCanvas, text_stays_inside_of_its_window)
{
	for (int y = 50; y < 90; ++y) {
		CellCanvas canvas;
		backdrop(canvas);
		canvas.window({76, y - 30, 408, 234}, {80, y, 400, 200}, "", WindowStyle());
		canvas.pushClip({80, y, 400, 200});
		for (int i = 0; i < 12; ++i)
			canvas.text({85, y - 7 + i * 20, 400, 20}, "line", style());
		canvas.popClip();
		int lines = 0;
		for (int row = 0; row < cellRows; ++row) {
			const std::string text = rowText(canvas, row);
			if (text.find("line") == std::string::npos)
				continue;
			++lines;
			EXPECT_EQ(text[9], '|') << text;
			EXPECT_EQ(text.back(), '|') << text;
		}
		EXPECT_GE(lines, 9); // lines that fit completely
	}
}

TEST(CellCanvas, a_colour_key_is_its_initial_on_its_colour)
{
	CellCanvas canvas;
	backdrop(canvas);
	canvas.keySymbol({80, 63, 24, 20}, Key::green, {0, 200, 0});
	canvas.text({112, 63, 100, 20}, "OK", style());
	EXPECT_EQ(rowText(canvas, 3), "          [G] OK");
	EXPECT_EQ(cellAt(canvas, 3, 10).ground, (Color{0, 200, 0}));
	EXPECT_EQ(cellAt(canvas, 3, 11).text, black);
	canvas.keySymbol({80, 83, 12, 20}, Key::blue, blue);
	EXPECT_EQ(rowText(canvas, 4), "          B");
}

/// The texts of these canvas rows.
std::vector<std::string> texts(CellCanvas &canvas, const std::vector<int> &rows)
{
	std::vector<std::string> shown;
	for (const int row : rows)
		shown.push_back(rowText(canvas, row));
	return shown;
}

/// A window of 400 x 200 pixels whose client area covers rows 10 to 19, with texts and a current entry.
void paintWindow(CellCanvas &canvas, const std::vector<int> &written, int current)
{
	backdrop(canvas);
	canvas.window({76, 170, 408, 234}, {80, 200, 400, 200}, "Info", WindowStyle());
	for (const int row : written) {
		const Rect line{80, row * 20, 400, 20};
		if (row == current)
			canvas.fill(line, Fill::plain(blue, 0, Part::currentLine));
		canvas.text(line, "row " + std::to_string(row), style());
	}
}

TEST(CellCanvas, where_rows_are_few_what_is_outside_of_the_windows_is_left_out_first)
{
	CellCanvas canvas;
	paintWindow(canvas, {10, 11, 15, 19}, 11);
	EXPECT_EQ(canvas.rowsWithin(40, 40).size(), static_cast<size_t>(cellRows));
	std::vector<int> rows = canvas.rowsWithin(25, 26);
	ASSERT_EQ(rows.size(), 25u);
	EXPECT_EQ(rows.front(), 2);
	EXPECT_EQ(rows.back(), 26) << "the window stays in the middle";
	rows = canvas.rowsWithin(12, 26);
	ASSERT_EQ(rows.size(), 12u);
	EXPECT_EQ(rows.front(), 9);
	EXPECT_EQ(rows.back(), 20);
}

TEST(CellCanvas, then_rows_without_text_are_left_out_and_no_others)
{
	CellCanvas canvas;
	paintWindow(canvas, {10, 11, 15, 19}, 11);
	EXPECT_EQ(texts(canvas, canvas.rowsWithin(6, 6)),
	          (std::vector<std::string>{rowText(canvas, 9), rowText(canvas, 10), rowText(canvas, 11),
	                                    rowText(canvas, 15), rowText(canvas, 19), rowText(canvas, 20)}));
	EXPECT_EQ(canvas.rowsWithin(3, 6).size(), 6u) << "text only gives way where it must";
	paintWindow(canvas, {10, 19}, 0);
	canvas.fill({80, 240, 400, 20}, Fill::plain(blue, 0, Part::currentLine));
	EXPECT_EQ(canvas.rowsWithin(1, 6), (std::vector<int>{9, 10, 12, 19, 20})) << "an empty entry is one";
}

TEST(CellCanvas, when_text_must_give_way_the_view_follows_the_viewer)
{
	const std::vector<int> all = {10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
	for (const int current : all) {
		CellCanvas canvas;
		paintWindow(canvas, all, current);
		const std::vector<int> rows = canvas.rowsWithin(5, 5);
		EXPECT_EQ(rows.size(), 5u);
		EXPECT_TRUE(std::count(rows.begin(), rows.end(), current)) << current;
	}
}

TEST(CellCanvas, where_columns_are_few_the_middle_is_shown_unless_a_window_begins_before)
{
	CellCanvas canvas;
	paintWindow(canvas, {10}, 10);
	EXPECT_EQ(canvas.firstColumnWithin(200), 0);
	EXPECT_EQ(canvas.firstColumnWithin(80), 5);
	canvas.window({12, 170, 408, 234}, {16, 200, 400, 200}, "Info", WindowStyle());
	EXPECT_EQ(canvas.firstColumnWithin(80), 1);
}

TEST(CellCanvas, a_button_knows_where_it_begins_and_ends)
{
	CellCanvas canvas;
	canvas.fill({0, 0, 400, 400}, Fill::plain(grey));
	canvas.fill({80, 70, 160, 40}, Fill::plain(blue, 0, Part::button));
	EXPECT_EQ(cellAt(canvas, 4, 10).end, '[');
	EXPECT_EQ(cellAt(canvas, 4, 11).end, 0);
	EXPECT_EQ(cellAt(canvas, 4, 29).end, ']');
	EXPECT_EQ(cellAt(canvas, 4, 10).below, grey);
}

TEST(CellCanvas, repeated_painting_needs_no_more_time)
{
	CellCanvas canvas;
	std::string first;
	for (int i = 0; i < 2000; ++i) {
		canvas.fill({0, 0, 400, 400}, Fill::plain(black));
		for (int row = 0; row < 20; ++row)
			canvas.text({0, row * 20, 400, 20}, "row " + std::to_string(row), style());
		if (i == 0)
			first = allText(canvas);
	}
	EXPECT_EQ(allText(canvas), first);
}

TEST(CellCanvas, no_numbers_are_too_strange)
{
	std::mt19937 random(1);
	const auto pick = [&](int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); };
	const auto rect = [&] {
		const int reach = std::array{10, 100, 1000, 100000}[static_cast<size_t>(pick(0, 3))];
		return Rect{pick(-reach, reach), pick(-reach, reach), pick(-5, reach), pick(-5, reach)};
	};
	const std::string texts[] = {"",
	                             " ",
	                             "word",
	                             "two words",
	                             "\xE6\x97\xA5\xE6\x9C\xAC x",
	                             std::string(3000, 'l'),
	                             "\xCC\x81\xCC\x81",
	                             "\xFF\xFE\x00"};
	CellCanvas canvas;
	for (int i = 0; i < 20000; ++i) {
		const std::string &text = texts[static_cast<size_t>(pick(0, 7))];
		TextStyle any =
			style(pick(-1, 40), pick(0, 1) ? Face::prose : Face::columns, static_cast<Align>(pick(0, 2)));
		any.emphasis = static_cast<Emphasis>(pick(0, 2));
		switch (pick(0, 6)) {
		case 0:
			canvas.pushClip(rect());
			break;
		case 1:
			canvas.popClip();
			break;
		case 2:
			canvas.fill(rect(), Fill::plain(blue, 0, static_cast<Part>(pick(0, 8))));
			break;
		case 3:
			canvas.window(rect(), rect(), text, WindowStyle());
			break;
		case 4:
			canvas.keySymbol(rect(), static_cast<Key>(pick(0, 3)), red);
			break;
		default:
			canvas.text(rect(), text, any);
		}
		if (i % 50 == 0) {
			const int room = pick(0, 40);
			ASSERT_LE(canvas.rowsWithin(pick(0, 40), room).size(), static_cast<size_t>(std::max(room, 1)));
			canvas.firstColumnWithin(pick(1, 100));
			while (pick(0, 3))
				canvas.popClip();
			backdrop(canvas);
		}
	}
}

} // namespace
