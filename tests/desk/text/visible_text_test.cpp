#include "visible_text.h"

#include <algorithm>
#include <clocale>
#include <gtest/gtest.h>
#include <random>

namespace visible_text_test
{

using namespace desk;
using namespace std::string_literals;

const std::string mark = "\xEF\xBF\xBD"; // U+FFFD

std::string marks(int count)
{
	std::string text;
	while (count-- > 0)
		text += mark;
	return text;
}

std::string utf8(uint32_t c)
{
	const auto byte = [](uint32_t value) { return static_cast<char>(value); };
	if (c < 0x80)
		return {byte(c)};
	if (c < 0x800)
		return {byte(0xC0 | c >> 6), byte(0x80 | (c & 0x3F))};
	if (c < 0x10000)
		return {byte(0xE0 | c >> 12), byte(0x80 | (c >> 6 & 0x3F)), byte(0x80 | (c & 0x3F))};
	return {byte(0xF0 | c >> 18), byte(0x80 | (c >> 12 & 0x3F)), byte(0x80 | (c >> 6 & 0x3F)),
	        byte(0x80 | (c & 0x3F))};
}

TEST(VisibleText, leaves_ordinary_text_as_it_is)
{
	for (const char *text : {"", "plain ASCII ~", "Größe, żółć, Ελληνικά, Русский, العربية, 日本語",
	                         "\xF0\x9F\x98\x80", "e\xCC\x81", "50% {} \\n"})
		EXPECT_EQ(visibleText(text), text);
}

TEST(VisibleText, shows_every_control_as_its_picture)
{
	for (uint32_t c = 0; c < 0x20; ++c) {
		if (c == '\t')
			continue;
		EXPECT_EQ(visibleText("a"s + static_cast<char>(c) + "b"), "a" + utf8(0x2400 + c) + "b") << c;
	}
	EXPECT_EQ(visibleText("a\x7F"), "a" + utf8(0x2421));
	EXPECT_EQ(visibleText("\x1b[31m"), utf8(0x241B) + "[31m");
}

TEST(VisibleText, makes_blanks_of_tabs_up_to_the_next_stop)
{
	EXPECT_EQ(visibleText("\tb"), "        b");
	EXPECT_EQ(visibleText("1234567\tb"), "1234567 b");
	EXPECT_EQ(visibleText("12345678\tb"), "12345678        b");
	EXPECT_EQ(visibleText("日本\tb\tc"), "日本    b       c") << "by columns, not by bytes";
	EXPECT_EQ(visibleText("\x1b\xff\t|"), utf8(0x241B) + mark + "      |");
}

TEST(VisibleText, marks_what_shows_nothing)
{
	for (uint32_t c : {0xADu,   0x34Fu,   0x61Cu,   0x115Fu,  0x180Eu,  0x200Bu, 0x200Cu, 0x200Du,
	                   0x2060u, 0x2064u,  0x206Fu,  0x3164u,  0xFE00u,  0xFE0Fu, 0xFEFFu, 0xFFA0u,
	                   0xFFF9u, 0x1D173u, 0xE0001u, 0xE0041u, 0xE007Fu, 0xE0100u})
		EXPECT_EQ(visibleText("a" + utf8(c) + "b"), "a" + mark + "b") << std::hex << c;
	for (uint32_t c :
	     {0xACu, 0xAEu, 0x301u, 0x34Eu, 0x600u, 0x20ACu, 0x3163u, 0xFE10u, 0xFEFEu, 0xFFFCu, 0x1F600u})
		EXPECT_EQ(visibleText("a" + utf8(c) + "b"), "a" + utf8(c) + "b") << std::hex << c;
}

TEST(LocalText, is_ascii_where_the_locale_is_not_utf_8)
{
	const std::string before = setlocale(LC_CTYPE, nullptr);
	ASSERT_TRUE(setlocale(LC_CTYPE, "C.UTF-8"));
	EXPECT_EQ(localText("ö\x1b\xff日"), "ö" + utf8(0x241B) + mark + "日");
	setlocale(LC_CTYPE, "C");
	EXPECT_EQ(localText("ö\x1b\xff日 ~\n"), "???? ~");
	EXPECT_EQ(localText(utf8(0x9B) + "31m"), "?31m");
	setlocale(LC_CTYPE, before.c_str());
}

TEST(VisibleText, marks_every_c1_control)
{
	for (uint32_t c = 0x80; c < 0xA0; ++c)
		EXPECT_EQ(visibleText("a" + utf8(c) + "b"), "a" + mark + "b") << c;
	EXPECT_EQ(visibleText(utf8(0xA0)), utf8(0xA0));
}

TEST(VisibleText, marks_separators_and_bidirectional_formatting_once_each)
{
	for (uint32_t c = 0x2028; c <= 0x202E; ++c)
		EXPECT_EQ(visibleText("a" + utf8(c) + "b"), "a" + mark + "b") << std::hex << c;
	for (uint32_t c = 0x2066; c <= 0x2069; ++c)
		EXPECT_EQ(visibleText("a" + utf8(c) + "b"), "a" + mark + "b") << std::hex << c;
	// Direction marks are harmless and end with their word.
	for (uint32_t c : {0x200Eu, 0x200Fu, 0x2027u, 0x202Fu})
		EXPECT_EQ(visibleText("a" + utf8(c) + "b"), "a" + utf8(c) + "b") << std::hex << c;
}

TEST(VisibleText, marks_every_byte_of_a_surrogate)
{
	for (uint32_t c : {0xD800u, 0xDABCu, 0xDBFFu, 0xDC00u, 0xDFFFu})
		EXPECT_EQ(visibleText("a" + utf8(c) + "b"), "a" + marks(3) + "b") << std::hex << c;
	EXPECT_EQ(visibleText(utf8(0xD7FF) + utf8(0xE000)), utf8(0xD7FF) + utf8(0xE000));
}

TEST(VisibleText, marks_every_byte_that_is_no_utf_8)
{
	EXPECT_EQ(visibleText("a\xFE\xFF"
	                      "b"),
	          "a" + marks(2) + "b");
	for (int lead = 0x80; lead < 0x100; ++lead)
		EXPECT_EQ(visibleText(std::string(1, static_cast<char>(lead))), mark) << lead;
	for (int lead = 0xF5; lead < 0x100; ++lead)
		EXPECT_EQ(visibleText(std::string(1, static_cast<char>(lead)) + "\x80\x80\x80"), marks(4)) << lead;
}

TEST(VisibleText, marks_every_byte_of_an_overlong_form)
{
	EXPECT_EQ(visibleText("\xC0\x80"), marks(2));
	EXPECT_EQ(visibleText("\xC1\xBF"), marks(2));
	EXPECT_EQ(visibleText("\xE0\x9F\xBF"), marks(3));
	EXPECT_EQ(visibleText("\xF0\x8F\xBF\xBF"), marks(4));
	EXPECT_EQ(visibleText("\xE0\xA0\x80"), "\xE0\xA0\x80");
	EXPECT_EQ(visibleText("\xF0\x90\x80\x80"), "\xF0\x90\x80\x80");
}

TEST(VisibleText, marks_what_lies_beyond_unicode)
{
	EXPECT_EQ(visibleText("\xF4\x8F\xBF\xBD"), "\xF4\x8F\xBF\xBD");
	EXPECT_EQ(visibleText("\xF4\x90\x80\x80"), marks(4));
}

TEST(VisibleText, marks_every_byte_of_a_truncated_sequence)
{
	for (const std::string &whole : {utf8(0xE9), utf8(0x20AC), utf8(0x1F600)})
		for (size_t length = 1; length < whole.size(); ++length) {
			const std::string cut = whole.substr(0, length);
			EXPECT_EQ(visibleText(cut), marks(static_cast<int>(length)));
			EXPECT_EQ(visibleText(cut + "a"), marks(static_cast<int>(length)) + "a");
			EXPECT_EQ(visibleText(cut + whole), marks(static_cast<int>(length)) + whole);
		}
}

TEST(VisibleText, leaves_out_one_line_end_at_the_end)
{
	EXPECT_EQ(visibleText("line\n"), "line");
	EXPECT_EQ(visibleText("line\n\n"), "line" + utf8(0x240A));
	EXPECT_EQ(visibleText("line\r\n"), "line" + utf8(0x240D));
	EXPECT_EQ(visibleText("two\nlines"), "two" + utf8(0x240A) + "lines");
	EXPECT_EQ(visibleText("\n"), "");
}

TEST(VisibleText, is_never_changed_by_a_second_time)
{
	std::mt19937 random(1);
	std::uniform_int_distribution<int> byte(0, 255), length(0, 40);
	for (int i = 0; i < 20000; ++i) {
		std::string bytes;
		for (int n = length(random); n > 0; --n)
			bytes += static_cast<char>(byte(random));
		const std::string once = visibleText(bytes);
		ASSERT_EQ(visibleText(once), once);
		for (const char c : once)
			ASSERT_TRUE(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
	}
}

TEST(TextColumns, count_narrow_wide_and_combining_characters)
{
	EXPECT_EQ(textColumns(""), 0);
	EXPECT_EQ(textColumns("abc"), 3);
	EXPECT_EQ(textColumns("żółć"), 4);
	EXPECT_EQ(textColumns("e\xCC\x81"), 1);
	EXPECT_EQ(textColumns("日本"), 4);
	EXPECT_EQ(textColumns("\xE2\x80\x8D"), 0); // zero width joiner
	EXPECT_EQ(textColumns("عربي"), 4);
	EXPECT_EQ(textColumns(visibleText("\x1b\xff\t")), 8);
}

/// Expects that every line of `wrapped` fits.
void expectFits(const std::string &wrapped, int width)
{
	size_t start = 0;
	while (start <= wrapped.size()) {
		const size_t end = std::min(wrapped.find('\n', start), wrapped.size());
		const std::string line = wrapped.substr(start, end - start);
		EXPECT_LE(8 * textColumns(line), width) << line;
		start = end + 1;
	}
}

std::string without(std::string text, const std::string &characters)
{
	text.erase(std::remove_if(text.begin(), text.end(),
	                          [&](char c) { return characters.find(c) != characters.npos; }),
	           text.end());
	return text;
}

TEST(WrapText, leaves_short_lines_and_line_ends_as_they_are)
{
	EXPECT_EQ(wrapText("", 300, 20), "");
	EXPECT_EQ(wrapText("Kill 77 pid?", 300, 20), "Kill 77 pid?");
	EXPECT_EQ(wrapText("one\ntwo\n\nfour", 300, 20), "one\ntwo\n\nfour");
	EXPECT_EQ(wrapText("  indented", 300, 20), "  indented");
}

TEST(WrapText, breaks_at_blanks)
{
	const std::string text = "Delete the whole log of the last scan of all the channels that there are?";
	const std::string wrapped = wrapText(text, 200, 20);
	expectFits(wrapped, 200);
	EXPECT_NE(wrapped, text);
	std::string joined = wrapped;
	std::replace(joined.begin(), joined.end(), '\n', ' ');
	EXPECT_EQ(joined, text);
}

TEST(WrapText, makes_no_line_of_blanks_beyond_the_edge)
{
	EXPECT_EQ(wrapText("word" + std::string(200, ' '), 100, 20), "word");
	EXPECT_EQ(wrapText("word" + std::string(200, ' ') + "next", 100, 20), "word\nnext");
}

TEST(WrapText, breaks_a_long_word_within)
{
	const std::string word(300, 'w');
	const std::string wrapped = wrapText("a " + word + " b", 200, 20);
	expectFits(wrapped, 200);
	EXPECT_EQ(without(wrapped, " \n"), "a" + word + "b");
}

TEST(WrapText, keeps_marks_with_their_letters)
{
	std::string word;
	for (int i = 0; i < 100; ++i)
		word += "e\xCC\x81";
	const std::string wrapped = wrapText(word, 100, 20);
	expectFits(wrapped, 100);
	EXPECT_EQ(without(wrapped, "\n"), word);
	EXPECT_EQ(wrapped.find("\n\xCC"), wrapped.npos);
}

TEST(WrapText, breaks_right_to_left_text_in_its_order_of_reading)
{
	const std::string text = "هل تريد حذف سجل البحث كله عن القنوات من هذا الجهاز الآن أم لا؟";
	const std::string wrapped = wrapText(text, 200, 20);
	expectFits(wrapped, 200);
	std::string joined = wrapped;
	std::replace(joined.begin(), joined.end(), '\n', ' ');
	EXPECT_EQ(joined, text);
}

TEST(WrapText, gives_a_line_two_columns_when_there_is_no_room)
{
	for (int width : {0, -5, 1, 7})
		EXPECT_EQ(wrapText("abc d", width, 20), "ab\nc\nd") << width;
}

TEST(WrapText, counts_on_larger_letters_in_higher_rows)
{
	EXPECT_EQ(wrapText("one two", 80, 20), "one two");
	EXPECT_EQ(wrapText("one two", 80, 40), "one\ntwo");
	EXPECT_EQ(wrapText("one two", 56, 10), "one two") << "no narrower than on a terminal";
}

TEST(WrapText, takes_any_bytes)
{
	std::mt19937 random(2);
	std::uniform_int_distribution<int> byte(0, 255), length(0, 120), width(-10, 300), row(-5, 60);
	for (int i = 0; i < 200; ++i) {
		std::string bytes;
		for (int n = length(random); n > 0; --n)
			bytes += static_cast<char>(byte(random));
		const std::string wrapped = wrapText(bytes, width(random), row(random));
		for (const char c : wrapped)
			ASSERT_TRUE(c == '\n' || static_cast<unsigned char>(c) >= 0x20);
	}
	EXPECT_NE(wrapText(std::string(100000, 'x'), 400, 20), "");
}

TEST(TextRows, breaks_after_a_blank_or_within_a_word_that_has_no_room)
{
	using Rows = std::vector<std::string>;
	EXPECT_EQ(textRows("", 5), Rows{""});
	EXPECT_EQ(textRows("abcde", 5), Rows{"abcde"});
	EXPECT_EQ(textRows("abc def gh", 5), (Rows{"abc ", "def ", "gh"}));
	EXPECT_EQ(textRows("ab cd ef", 5), (Rows{"ab cd", "ef"})) << "a blank that has no room is left out";
	EXPECT_EQ(textRows("abcdefghijkl", 5), (Rows{"abcde", "fghij", "kl"}));
	EXPECT_EQ(textRows("a bcdefghi", 5), (Rows{"a ", "bcdef", "ghi"}));
	EXPECT_EQ(textRows("日本語", 5), (Rows{"日本", "語"}));
	EXPECT_EQ(textRows("abcde\xCC\x81z", 5), (Rows{"abcde\xCC\x81", "z"})) << "a mark stays with its letter";
}

} // namespace visible_text_test
