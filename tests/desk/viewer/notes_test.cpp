#include "error_of.h"
#include "note_log.h"
#include "temp_folder.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>

namespace notes_test
{

using desk::NoteLog;

/// Sets the locale's character set for a scope.
struct CharacterSet
{
	explicit CharacterSet(const char *locale) { std::setlocale(LC_CTYPE, locale); }
	~CharacterSet() { std::setlocale(LC_CTYPE, "C"); }
};

TEST(Notes, go_to_standard_error_a_line_each)
{
	testing::internal::CaptureStdout();
	testing::internal::CaptureStderr();
	NoteLog log;
	log.add("[write ps info]");
	log.add("a line with its end\n");
	log.add("");
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "[write ps info]\na line with its end\n\n");
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(Notes, obey_no_controls)
{
	const CharacterSet utf8("C.UTF-8");
	testing::internal::CaptureStderr();
	NoteLog().add("a \x1b[2J name \xff");
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "a \xE2\x90\x9B[2J name \xEF\xBF\xBD\n");
}

TEST(Notes, are_ascii_where_the_locale_has_no_more)
{
	const CharacterSet ascii("C");
	testing::internal::CaptureStderr();
	NoteLog().add("a \x1b[2J name \xff \xC2\x9B"
	              "31m");
	for (const char c : testing::internal::GetCapturedStderr())
		EXPECT_TRUE(c == '\n' || (c >= ' ' && c <= '~')) << static_cast<int>(c);
}

TEST(Notes, come_in_pieces)
{
	testing::internal::CaptureStderr();
	NoteLog log;
	log.add("on", 2);
	log.add("e\n\ntw", 5);
	log.add("in between");
	log.add("o", 1);
	log.endLine();
	log.endLine();
	for (int i = 0; i < 5000; ++i)
		log.add("x", 1);
	log.endLine();
	EXPECT_EQ(testing::internal::GetCapturedStderr(),
	          "one\n\nin between\ntwo\n" + std::string(4096, 'x') + " ...\n");
}

TEST(Notes, wait_while_they_are_held_back)
{
	testing::internal::CaptureStderr();
	NoteLog log;
	log.holdBack();
	log.add("one");
	log.add(std::string(5000, 'x'));
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
	testing::internal::CaptureStderr();
	log.release();
	log.add("two");
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "one\n" + std::string(4096, 'x') + " ...\ntwo\n");

	testing::internal::CaptureStderr();
	log.holdBack();
	for (int i = 0; i < 1002; ++i)
		log.add("note");
	log.release();
	EXPECT_EQ(testing::internal::GetCapturedStderr(),
	          "deskhost: earlier lines left out: 2\n" + support::repeat("note\n", 1000));
}

TEST(Notes, the_last_thousand_are_kept_to_look_back_at)
{
	const CharacterSet utf8("C.UTF-8");
	testing::internal::CaptureStderr();
	NoteLog log;
	for (int i = 0; i < 1500; ++i)
		log.add("note " + std::to_string(i));
	log.add("a \x1b[2J name");
	log.add(std::string(4095, 'x') + "\xC3\xA4 and so on");
	testing::internal::GetCapturedStderr();

	EXPECT_EQ(log.last(3).front(), "note 1499");
	const std::vector<std::string> lines = log.last();
	ASSERT_EQ(lines.size(), 1000u);
	EXPECT_EQ(lines.front(), "note 502");
	EXPECT_EQ(lines[997], "note 1499");
	EXPECT_EQ(lines[998].find('\x1b'), std::string::npos);
	EXPECT_EQ(lines[999], std::string(4095, 'x')) << "a character is not cut in two";
}

TEST(Notes, are_broken_into_rows_of_which_the_last_are_shown)
{
	testing::internal::CaptureStderr();
	NoteLog log;
	log.add("first");
	log.add("deskhost: a line that is longer than a row");
	log.add("deskhost: another");
	testing::internal::GetCapturedStderr();
	const std::vector<std::string> rows = {"a row", "deskhost: another"};
	EXPECT_EQ(log.lastRows(2, 20), rows);
	EXPECT_EQ(log.lastRows(3, 20).front(), "that is longer than ");
}

TEST(Notes, go_to_a_file_as_well_line_by_line)
{
	const support::TempFolder folder;
	const std::string path = folder / "notes";
	NoteLog log;
	log.open(path);
	testing::internal::CaptureStderr();
	log.add("one");
	log.addToFile("only there");
	EXPECT_EQ(support::readFile(path), "one\nonly there\n") << "while it is still open";
	EXPECT_TRUE(log.close());
	log.add("two");
	EXPECT_EQ(support::readFile(path), "one\nonly there\n");
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "one\ntwo\n");

	EXPECT_EQ(support::errorOf([&] { log.open("/nonexistent/notes"); }),
	          "cannot write debug lines to '/nonexistent/notes': No such file or directory; "
	          "name a file that can be written");
	testing::internal::CaptureStderr();
	log.open("/dev/full");
	log.add("three");
	EXPECT_FALSE(log.close());
	testing::internal::GetCapturedStderr();
}

} // namespace notes_test
