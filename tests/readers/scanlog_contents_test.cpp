#include "fake_platform.h"
#include "generator.h"
#include "models.h"
#include "scanlog_contents.h"
#include "streams.h"
#include "temp_folder.h"

#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace scanlog_contents_test
{

using support::exists;
using support::TempFolder;
using namespace std::string_literals;
using Strings = std::vector<std::string>;

ScanLogContents parse(const std::string &bytes)
{
	return parseScanLog(streamOf(bytes).get(), "/var/scaning.log");
}

template <class Contents> Strings texts(const Contents &contents)
{
	Strings result;
	for (const ScanLogEntry &entry : contents.entries)
		result.push_back(entry.text);
	return result;
}

template <class Contents> Strings lines(const Contents &contents)
{
	Strings result;
	for (const ScanLogEntry &entry : contents.entries)
		result.push_back(entry.line);
	return result;
}

/// `length` different characters, so that a shift by one shows; no marker is among them.
std::string ruler(std::size_t length)
{
	std::string text;
	for (std::size_t at = 0; at < length; ++at)
		text += static_cast<char>('0' + at % 71);
	return text;
}

/// A marker line of `length` characters without its line end.
std::string marker(std::size_t length)
{
	return "start at" + ruler(length).substr(8);
}

TEST(ScanLog, an_empty_file_gives_no_entries_and_the_size_0)
{
	const ScanLogContents contents = parse("");
	EXPECT_TRUE(contents.entries.empty());
	EXPECT_EQ(contents.summary, "size of /var/scaning.log : 0 bytes");
	EXPECT_TRUE(contents.found);
}

TEST(ScanLog, lines_are_numbered_from_0_and_keep_their_ends)
{
	const ScanLogContents contents = parse("a\nb\r\n\nd");
	EXPECT_EQ(texts(contents), Strings({"0 a\n", "1 b\r\n", "2 \n", "3 d"}));
	EXPECT_EQ(lines(contents), Strings({"a\n", "b\r\n", "\n", "d"}));
	EXPECT_EQ(contents.summary, "size of /var/scaning.log : 7 bytes");
}

TEST(ScanLog, one_byte_is_a_line)
{
	EXPECT_EQ(texts(parse("x")), Strings({"0 x"}));
	EXPECT_EQ(texts(parse("\n")), Strings({"0 \n"}));
}

TEST(ScanLog, a_marker_line_of_100_characters_shows_its_characters_1_to_46_and_46_to_91)
{
	const std::string line = marker(100);
	const ScanLogContents contents = parse("0\n1\n2\n3\n4\n5\n6\n" + line + "\nnext\n");
	ASSERT_EQ(contents.entries.size(), 10u);
	EXPECT_EQ(texts(contents)[7], "7 " + line.substr(1, 46));
	EXPECT_EQ(lines(contents)[7], line + "\n");
	EXPECT_EQ(texts(contents)[8], "7 " + line.substr(46, 46));
	EXPECT_EQ(lines(contents)[8], line + "\n");
	EXPECT_EQ(texts(contents)[9], "8 next\n");
}

TEST(ScanLog, the_marker_is_found_anywhere_in_the_line)
{
	EXPECT_EQ(texts(parse("we restart at dawn\n")), Strings({"0 e restart at dawn\n", "0 "}));
	EXPECT_EQ(parse("x start at").entries.size(), 2u);
	EXPECT_EQ(parse(ruler(1000) + "start at\n").entries.size(), 2u);
}

TEST(ScanLog, only_the_exact_words_are_the_marker)
{
	EXPECT_EQ(texts(parse("Start at\nSTART AT\nstart  at\nstart\tat\nstart a\nstar at\n")).size(), 6u);
	EXPECT_EQ(parse("start at").entries.size(), 2u);
}

TEST(ScanLog, two_marker_lines_in_a_row_give_their_own_pieces)
{
	const std::string first = marker(100);
	const std::string second = "xstart at" + ruler(60);
	EXPECT_EQ(texts(parse(first + "\n" + second + "\n")),
	          Strings({"0 " + first.substr(1, 46), "0 " + first.substr(46, 46), "1 " + second.substr(1, 46),
	                   "1 " + (second + "\n").substr(46, 46)}));
}

TEST(ScanLog, a_marker_line_of_47_characters_with_its_end_has_the_end_alone_in_its_second_piece)
{
	const std::string line = marker(46) + "\n";
	EXPECT_EQ(texts(parse(ruler(200) + "\n" + line)),
	          Strings({"0 " + ruler(200) + "\n", "1 " + line.substr(1), "1 \n"}));
}

TEST(ScanLog, a_marker_line_of_46_characters_with_its_end_has_an_empty_second_piece)
{
	const std::string line = marker(45) + "\n";
	EXPECT_EQ(texts(parse(ruler(200) + "\n" + line)),
	          Strings({"0 " + ruler(200) + "\n", "1 " + line.substr(1), "1 "}));
}

TEST(ScanLog, a_shorter_marker_line_shows_what_a_longer_line_left_behind)
{
	const std::string longer = ruler(200);
	// Line and line end fill bytes 0 to 44, the terminator is byte 45.
	const std::string line = marker(44) + "\n";
	EXPECT_EQ(texts(parse(longer + "\n" + line)),
	          Strings({"0 " + longer + "\n", "1 " + line.substr(1), "1 " + longer.substr(46, 46)}));
}

TEST(ScanLog, what_was_left_behind_ends_at_the_longer_lines_own_end)
{
	const std::string longer = ruler(60) + "\n";
	EXPECT_EQ(texts(parse(longer + "start at\n")),
	          Strings({"0 " + longer, "1 tart at\n", "1 " + longer.substr(46)}));
	const std::string last = ruler(46) + "\n";
	EXPECT_EQ(texts(parse(last + "start at\n"))[2], "1 \n");
	EXPECT_EQ(texts(parse(ruler(45) + "\n" + "start at\n"))[2], "1 ");
}

TEST(ScanLog, a_short_marker_line_first_in_the_file_has_an_empty_second_piece)
{
	EXPECT_EQ(texts(parse("start at\n" + ruler(200) + "\n")),
	          Strings({"0 tart at\n", "0 ", "1 " + ruler(200) + "\n"}));
}

TEST(ScanLog, a_short_marker_line_shows_the_later_of_two_long_lines_up_to_its_end)
{
	const std::string longest = std::string(30, 'a') + ruler(170) + "\n";
	const std::string shorter = std::string(30, 'b') + ruler(30) + "\n";
	EXPECT_EQ(texts(parse(longest + shorter + "start at\n"))[3], "2 " + shorter.substr(46));
	// A line shorter than 46 leaves the earlier line's text there.
	EXPECT_EQ(texts(parse(longest + "short\n" + "start at\n"))[3], "2 " + longest.substr(46, 46));
	EXPECT_EQ(texts(parse(shorter + longest + "start at\n"))[3], "2 " + longest.substr(46, 46));
}

TEST(ScanLog, a_piece_of_a_long_line_is_left_behind_too)
{
	const std::string longLine = ruler(1500) + "\n";
	EXPECT_EQ(texts(parse(longLine + "start at\n"))[3], "2 " + longLine.substr(1022 + 46, 46));
	const std::string withShortRest = ruler(1030) + "\n";
	EXPECT_EQ(texts(parse(withShortRest + "start at\n"))[3], "2 " + withShortRest.substr(46, 46));
}

TEST(ScanLog, every_reading_starts_with_a_clean_buffer)
{
	parse(ruler(1000) + "\n");
	EXPECT_EQ(texts(parse("start at\n")), Strings({"0 tart at\n", "0 "}));
}

TEST(ScanLog, a_nul_byte_ends_a_line_and_hides_a_marker_behind_it)
{
	const ScanLogContents contents = parse("ab\0 start at\ncd\n"s);
	EXPECT_EQ(texts(contents), Strings({"0 ab", "1 cd\n"}));
	EXPECT_EQ(lines(contents), Strings({"ab", "cd\n"}));
}

TEST(ScanLog, a_nul_byte_in_a_marker_line_ends_its_first_piece_and_not_its_second)
{
	const std::string hidden = "start at" + std::string(1, '\0') + ruler(91) + "\n";
	const ScanLogContents contents = parse(hidden);
	EXPECT_EQ(texts(contents), Strings({"0 tart at", "0 " + hidden.substr(46, 46)}));
	EXPECT_EQ(lines(contents), Strings({"start at", "start at"}));
}

TEST(ScanLog, a_nul_byte_in_a_longer_line_ends_what_it_left_behind)
{
	std::string longer = ruler(200);
	longer[60] = '\0';
	EXPECT_EQ(texts(parse(longer + "\nstart at\n"))[2], "1 " + ruler(200).substr(46, 14));
}

TEST(ScanLog, a_line_of_1021_characters_and_its_end_is_one_line)
{
	EXPECT_EQ(texts(parse(ruler(1021) + "\n")), Strings({"0 " + ruler(1021) + "\n"}));
}

TEST(ScanLog, a_line_of_1022_characters_has_its_end_in_a_line_of_its_own)
{
	EXPECT_EQ(texts(parse(ruler(1022) + "\nb\n")), Strings({"0 " + ruler(1022), "1 \n", "2 b\n"}));
}

TEST(ScanLog, a_long_line_is_numbered_in_parts)
{
	EXPECT_EQ(texts(parse(ruler(1023) + "\n")),
	          Strings({"0 " + ruler(1022), "1 " + ruler(1023).substr(1022) + "\n"}));
	const std::string line = ruler(5000);
	EXPECT_EQ(texts(parse(line)), Strings({"0 " + line.substr(0, 1022), "1 " + line.substr(1022, 1022),
	                                       "2 " + line.substr(2044, 1022), "3 " + line.substr(3066, 1022),
	                                       "4 " + line.substr(4088)}));
}

TEST(ScanLog, a_marker_that_is_cut_is_not_found_and_each_part_is_checked_by_itself)
{
	EXPECT_EQ(texts(parse(ruler(1018) + "start at\n")), Strings({"0 " + ruler(1018) + "star", "1 t at\n"}));
	EXPECT_EQ(parse(ruler(1014) + "start at\n").entries.size(), 3u);
	EXPECT_EQ(parse(ruler(1015) + "start at\n").entries.size(), 2u);
	EXPECT_EQ(texts(parse(ruler(1022) + "start at\n"))[1], "1 tart at\n");
}

TEST(ScanLog, percent_signs_and_every_other_byte_stay_as_they_are)
{
	std::string line = "%s%n%d%%";
	for (int byte = 1; byte < 256; ++byte) {
		if (byte != '\n')
			line += static_cast<char>(byte);
	}
	EXPECT_EQ(texts(parse(line + "\n")), Strings({"0 " + line + "\n"}));
	EXPECT_EQ(texts(parse("%s%n start at %d %%\n")), Strings({"0 s%n start at %d %%\n", "0 "}));
}

TEST(ScanLog, neither_the_entries_nor_the_summary_are_looked_up)
{
	FakePlatform platform;
	platform.catalogueIsNull = true;
	EXPECT_EQ(texts(parse("a\nstart at\n")), Strings({"0 a\n", "1 tart at\n", "1 "}));
	EXPECT_TRUE(platform.lookUps.empty());
}

TEST(ScanLog, a_read_error_keeps_the_lines_before_it)
{
	const ScanLogContents contents = parseScanLog(failingStream("a\nb\nhalf").get(), "/log");
	EXPECT_EQ(texts(contents), Strings({"0 a\n", "1 b\n"}));
	EXPECT_TRUE(contents.found);
	EXPECT_EQ(contents.summary, "size of /log : -1 bytes");
}

TEST(ScanLog, many_lines_are_kept_in_their_order)
{
	std::string bytes;
	Strings expected;
	for (int number = 0; number < 100000; ++number) {
		const std::string line = ruler(static_cast<std::size_t>(number % 101)) + "\n";
		bytes += line;
		expected.push_back(std::to_string(number) + " " + line);
	}
	const ScanLogContents contents = parse(bytes);
	EXPECT_EQ(contents.entries.size(), 100000u);
	EXPECT_EQ(texts(contents), expected);
	EXPECT_EQ(contents.summary, "size of /var/scaning.log : " + std::to_string(bytes.size()) + " bytes");
}

TEST(ScanLog, fixtures_become_their_entries)
{
	const Strings names = fixturesIn("scanlog");
	EXPECT_GE(names.size(), 3u);
	for (const std::string &name : names) {
		SCOPED_TRACE(name);
		std::string entries;
		for (const std::string &text : texts(parse(fixture(name))))
			entries += text + '\0';
		EXPECT_EQ(entries, fixture(name + ".entries"));
	}
}

TEST(ScanLog, generated_logs_read_as_the_model_reads_them)
{
	Generator generator(4101,
	                    {"start at", "restart at 11778 MHz", "Start at", "star", "t at", "transponder", "%s"},
	                    {44, 90, 1022, 2044});
	std::size_t entries = 0;
	std::size_t pieces = 0;
	for (int round = 0; round < 15000; ++round) {
		const std::string bytes = generator.file();
		const ScanLogContents contents = parse(bytes);
		const ModelScanLog expected = modelScanLog(bytes, "/var/scaning.log");
		ASSERT_EQ(textOf(contents), textOf(expected)) << round << ": " << shown(bytes);
		entries += contents.entries.size();
		for (const ScanLogEntry &entry : contents.entries)
			pieces += entry.line.find("start at") != entry.line.npos;
	}
	EXPECT_GT(entries, 150000u);
	EXPECT_GT(pieces, 50000u);
}

TEST(FileSize, is_the_position_of_the_end_and_the_position_stays)
{
	const TempFolder folder;
	const std::string path = folder.write("file", ruler(5120));
	const Stream stream(fopen(path.c_str(), "r"));
	ASSERT_NE(stream, nullptr);
	EXPECT_EQ(filesize(stream.get()), 5120);
	EXPECT_EQ(ftell(stream.get()), 0);
	EXPECT_EQ(fseek(stream.get(), 100, SEEK_SET), 0);
	EXPECT_EQ(filesize(stream.get()), 5120);
	EXPECT_EQ(ftell(stream.get()), 100);
	EXPECT_EQ(fgetc(stream.get()), ruler(101)[100]);
}

TEST(FileSize, may_be_as_large_as_a_long)
{
	const long large = byLong(5L * 1024 * 1024 * (sizeof(long) == 8 ? 1024 : 1), 0x7fffffffL);
	const TempFolder folder;
	const std::string path = folder.write("file", "");
	ASSERT_EQ(truncate(path.c_str(), large), 0) << "it has no byte on the disk";
	const Stream stream(fopen(path.c_str(), "r"));
	ASSERT_NE(stream, nullptr);
	EXPECT_EQ(filesize(stream.get()), large);
	ASSERT_EQ(fseek(stream.get(), large - 3, SEEK_SET), 0);
	EXPECT_EQ(filesize(stream.get()), large);
	EXPECT_EQ(ftell(stream.get()), large - 3);
	EXPECT_EQ(parseScanLog(stream.get(), "log").summary, "size of log : " + std::to_string(large) + " bytes");
}

TEST(ScanLog, the_size_is_what_it_is_after_the_reading)
{
	const ScanLogContents contents = parseScanLog(growingStream("a\n", "b\n").get(), "log");
	EXPECT_EQ(texts(contents), Strings({"0 a\n", "1 b\n"}));
	EXPECT_EQ(contents.summary, "size of log : 4 bytes");
}

TEST(FileSize, of_a_stream_without_a_position_is_minus_one)
{
	int ends[2];
	ASSERT_EQ(pipe(ends), 0);
	const Stream stream(fdopen(ends[0], "r"));
	EXPECT_EQ(filesize(stream.get()), -1);
	close(ends[1]);
}

TEST(ReadScanLog, opens_reads_closes_and_says_so_in_this_order)
{
	const TempFolder folder;
	const std::string path = folder.write("file", ruler(5119) + "\n");
	FakePlatform platform;
	const ScanLogContents contents = readScanLog(path.c_str());
	EXPECT_EQ(platform.calls,
	          Strings({"fopen(\"" + path + "\", \"r\")", "fclose(stream)", "eDebug(\"close file\")"}));
	EXPECT_EQ(contents.summary, "size of " + path + " : 5120 bytes");
	EXPECT_TRUE(contents.found);
	EXPECT_EQ(contents.entries.size(), 6u);
	EXPECT_TRUE(exists(path));
}

TEST(ReadScanLog, a_missing_file_is_named_in_the_summary_and_in_the_debug_output)
{
	FakePlatform platform;
	const ScanLogContents contents = readScanLog("/nonexistent/100%d.log");
	EXPECT_EQ(platform.calls, Strings({"fopen(\"/nonexistent/100%d.log\", \"r\")",
	                                   "eDebug(\"file \"/nonexistent/100%d.log\" not found\")"}));
	EXPECT_EQ(platform.debugFormats, Strings({"file \"%s\" not found"}));
	EXPECT_EQ(contents.summary, "file \"/nonexistent/100%d.log\" not found");
	EXPECT_FALSE(contents.found);
	EXPECT_TRUE(contents.entries.empty());
}

TEST(ReadScanLog, a_file_without_rights_reads_as_missing)
{
	const TempFolder folder;
	const std::string path = folder.write("file", "a\n");
	ASSERT_EQ(chmod(path.c_str(), 0), 0);
	const bool privileged = geteuid() == 0;
	if (privileged) {
		ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
		ASSERT_EQ(seteuid(65534), 0);
	}
	const ScanLogContents contents = readScanLog(path.c_str());
	if (privileged) {
		ASSERT_EQ(seteuid(0), 0);
	}
	EXPECT_EQ(contents.summary, "file \"" + path + "\" not found");
	EXPECT_FALSE(contents.found);
}

TEST(ReadScanLog, a_folder_in_its_place_opens_and_reads_nothing)
{
	const TempFolder folder;
	const Stream stream(fopen(folder.path().c_str(), "r"));
	ASSERT_NE(stream, nullptr);
	FakePlatform platform;
	const ScanLogContents contents = readScanLog(folder.path().c_str());
	EXPECT_TRUE(contents.found);
	EXPECT_TRUE(contents.entries.empty());
	EXPECT_EQ(contents.summary,
	          "size of " + folder.path() + " : " + std::to_string(filesize(stream.get())) + " bytes");
	EXPECT_EQ(platform.calls.back(), "eDebug(\"close file\")");
}

TEST(ReadScanLog, a_long_path_is_named_whole)
{
	const std::string path = "/" + std::string(1000, 'p');
	EXPECT_EQ(readScanLog(path.c_str()).summary, "file \"" + path + "\" not found");
	EXPECT_EQ(parseScanLog(failingStream("").get(), path.c_str()).summary, "size of " + path + " : -1 bytes");
	for (const std::size_t length : {236u, 237u, 238u, 239u, 240u, 241u}) {
		const std::string edge(length, 'p');
		EXPECT_EQ(readScanLog(edge.c_str()).summary, "file \"" + edge + "\" not found");
	}
}

} // namespace scanlog_contents_test
