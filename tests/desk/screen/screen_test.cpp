#include "note_log.h"
#include "screen.h"
#include "temp_folder.h"
#include "terminal_screen.h"
#include "window_screen.h"

#include <clocale>
#include <gtest/gtest.h>

#include <cstdio>

namespace
{

using namespace desk;

TEST(NoScreen, shows_nothing_and_has_no_keys)
{
	const auto screen = makeNoScreen();
	EXPECT_EQ(screen->canvas(), nullptr);
	screen->present(desk::wholeScreen);
	EXPECT_EQ(screen->waitKey(), std::nullopt);
	EXPECT_EQ(screen->waitKey(), std::nullopt);
}

TEST(Notes, go_to_standard_error_a_line_each)
{
	const auto screen = makeNoScreen();
	testing::internal::CaptureStdout();
	testing::internal::CaptureStderr();
	screen->note("[write ps info]");
	screen->note("a line with its end\n");
	screen->note("");
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "[write ps info]\na line with its end\n\n");
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

/// The locale's character set, until the end of the scope.
struct CharacterSet
{
	explicit CharacterSet(const char *locale) { std::setlocale(LC_CTYPE, locale); }
	~CharacterSet() { std::setlocale(LC_CTYPE, "C"); }
};

TEST(Notes, obey_no_controls)
{
	const CharacterSet utf8("C.UTF-8");
	const auto screen = makeNoScreen();
	testing::internal::CaptureStderr();
	screen->note("a \x1b[2J name \xff");
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "a \xE2\x90\x9B[2J name \xEF\xBF\xBD\n");
}

TEST(Notes, are_ascii_where_the_locale_has_no_more)
{
	const CharacterSet ascii("C");
	testing::internal::CaptureStderr();
	makeNoScreen()->note("a \x1b[2J name \xff \xC2\x9B"
	                     "31m");
	for (const char c : testing::internal::GetCapturedStderr())
		EXPECT_TRUE(c == '\n' || (c >= ' ' && c <= '~')) << static_cast<int>(c);
}

TEST(Notes, the_last_thousand_are_kept_to_look_back_at)
{
	const CharacterSet utf8("C.UTF-8");
	const auto screen = makeNoScreen();
	testing::internal::CaptureStderr();
	for (int i = 0; i < 1500; ++i)
		screen->note("note " + std::to_string(i));
	screen->note("a \x1b[2J name");
	screen->note(std::string(4095, 'x') + "\xC3\xA4 and so on");
	testing::internal::GetCapturedStderr();

	EXPECT_EQ(NoteLog::get().last(3).front(), "note 1499");
	const std::vector<std::string> lines = NoteLog::get().last();
	ASSERT_EQ(lines.size(), 1000u);
	EXPECT_EQ(lines.front(), "note 502");
	EXPECT_EQ(lines[997], "note 1499");
	EXPECT_EQ(lines[998].find('\x1b'), std::string::npos);
	EXPECT_EQ(lines[999], std::string(4095, 'x')) << "a character is not cut in two";
}

TEST(Notes, are_broken_into_rows_of_which_the_last_are_shown)
{
	const auto screen = makeNoScreen();
	testing::internal::CaptureStderr();
	screen->note("first");
	screen->note("deskhost: a line that is longer than a row");
	screen->notify("deskhost: another");
	screen->notify("");
	EXPECT_EQ(testing::internal::GetCapturedStderr(),
	          "first\ndeskhost: a line that is longer than a row\ndeskhost: another\n");
	const std::vector<std::string> rows = {"a row", "deskhost: another"};
	EXPECT_EQ(NoteLog::get().lastRows(2, 20), rows);
	EXPECT_EQ(NoteLog::get().lastRows(3, 20).front(), "that is longer than ");
}

TEST(Notes, go_to_a_file_as_well_line_by_line)
{
	const support::TempFolder folder;
	const std::string path = folder / "notes";
	std::string error;
	ASSERT_TRUE(NoteLog::get().open(path, error));
	testing::internal::CaptureStderr();
	makeNoScreen()->note("one");
	EXPECT_EQ(support::readFile(path), "one\n") << "while it is still open";
	EXPECT_TRUE(NoteLog::get().close());
	makeNoScreen()->note("two");
	EXPECT_EQ(support::readFile(path), "one\n");
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "one\ntwo\n");

	EXPECT_FALSE(NoteLog::get().open("/nonexistent/notes", error));
	EXPECT_EQ(error, "cannot write debug lines to '/nonexistent/notes': No such file or directory; "
	                 "name a file that can be written");
	testing::internal::CaptureStderr();
	ASSERT_TRUE(NoteLog::get().open("/dev/full", error));
	makeNoScreen()->note("three");
	EXPECT_FALSE(NoteLog::get().close());
	testing::internal::GetCapturedStderr();
}

} // namespace
