#include "fake_platform.h"
#include "generator.h"
#include "models.h"
#include "mount_columns.h"
#include "streams.h"
#include "temp_folder.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace mount_columns_test
{

using support::exists;
using support::writeFile;
using namespace std::string_literals;
using Strings = std::vector<std::string>;

const char dfFile[] = "/var/tmp/df.tmp";

std::string blanks(std::size_t count)
{
	return std::string(count, ' ');
}

const std::string deviceHeading = "Filesystem" + blanks(25) + "\n";
const std::string usageHeading = "Size    Used    Avail.  Use% Mounted" + blanks(43) + "\n";

MountColumns parse(const std::string &bytes)
{
	return parseMountColumns(streamOf(bytes).get());
}

void expectColumns(const MountColumns &columns, const std::string &devices, const std::string &usage,
                   int rows)
{
	EXPECT_EQ(columns.filesystem, deviceHeading + devices);
	EXPECT_EQ(columns.usage, usageHeading + usage);
	EXPECT_EQ(columns.rows, rows);
}

/// Device and usage that `line` gives, as the only file system of an output.
Strings row(const std::string &line)
{
	const MountColumns columns = parse("heading\n" + line);
	EXPECT_EQ(columns.rows, 3) << shown(line);
	return {columns.filesystem.substr(deviceHeading.size()), columns.usage.substr(usageHeading.size())};
}

TEST(Mounts, no_output_gives_the_headings_alone)
{
	expectColumns(parse(""), "", "", 2);
}

TEST(Mounts, the_headings_have_35_and_79_characters_and_room_for_one_more_row)
{
	const MountColumns columns = parse("Filesystem Size Used Avail Use% Mounted on\n");
	expectColumns(columns, "", "", 2);
	EXPECT_EQ(columns.filesystem.size(), 36u);
	EXPECT_EQ(columns.usage.size(), 80u);
	EXPECT_EQ(parse("no line end").rows, 2);
}

TEST(Mounts, the_first_line_is_discarded_whatever_it_holds)
{
	const MountColumns columns = parse("/dev/a 1 2 3 4 /a\n/dev/b 5 6 7 8 /b\n");
	EXPECT_EQ(columns.rows, 3);
	EXPECT_EQ(columns.filesystem, deviceHeading + "/dev/b" + blanks(29) + "\n");
}

TEST(Mounts, an_ordinary_line_is_padded_as_the_heading_is)
{
	const Strings columns = row("/dev/root  7.8M  3.1M   4.7M  40% /var\n");
	EXPECT_EQ(columns[0], "/dev/root" + blanks(26) + "\n");
	EXPECT_EQ(columns[1], "7.8M    3.1M    4.7M    40%  /var" + blanks(46) + "\n");
	EXPECT_EQ(columns[1].size(), usageHeading.size());
}

TEST(Mounts, a_last_line_without_an_end_is_shown)
{
	EXPECT_EQ(row("a 1 2 3 4% /b"), row("a 1 2 3 4% /b\n"));
}

TEST(Mounts, carriage_returns_and_tabs_are_blanks)
{
	EXPECT_EQ(row("a\t1\v2\f3 4%\r/b\r\n"), row("a 1 2 3 4% /b\n"));
}

TEST(Mounts, a_line_of_fewer_than_six_fields_leaves_the_rest_blank)
{
	EXPECT_EQ(row("a 1 2\n")[1], "1       2       " + blanks(8) + blanks(5) + blanks(50) + "\n");
	EXPECT_EQ(row("a 1 2 3 4%\n")[1], "1       2       3       4%   " + blanks(50) + "\n");
}

TEST(Mounts, fields_after_the_sixth_are_dropped)
{
	EXPECT_EQ(row("a 1 2 3 4% /media/my disk\n"), row("a 1 2 3 4% /media/my\n"));
}

TEST(Mounts, a_blank_line_is_a_row_of_blanks)
{
	EXPECT_EQ(row("\n"), Strings({blanks(35) + "\n", blanks(79) + "\n"}));
	EXPECT_EQ(row(" \t \n"), Strings({blanks(35) + "\n", blanks(79) + "\n"}));
}

TEST(Mounts, a_line_that_df_breaks_makes_two_rows)
{
	const std::string device = "/dev/disk/by-label/recordings_of_the_living_room";
	const MountColumns columns = parse("heading\n" + device + "\n      37.2G  36.9G  332.0M  99% /hdd\n");
	expectColumns(columns, device + "\n37.2G" + blanks(30) + "\n",
	              blanks(79) + "\n" + "36.9G   332.0M  99%     /hdd " + blanks(50) + "\n", 4);
}

TEST(Mounts, nothing_of_a_line_shows_in_the_next)
{
	const MountColumns columns = parse("heading\na 1 2 3 4% /b\n\nc\n");
	expectColumns(
		columns, "a" + blanks(34) + "\n" + blanks(35) + "\nc" + blanks(34) + "\n",
		"1       2       3       4%   /b" + blanks(48) + "\n" + blanks(79) + "\n" + blanks(79) + "\n", 5);
}

TEST(Mounts, a_long_word_is_shown_whole_and_pushes_the_rest_of_its_line)
{
	EXPECT_EQ(row("a 1023.9G 1000.1G 23.8G 97.68% /b\n")[1],
	          "1023.9G  1000.1G  23.8G   97.68% /b" + blanks(48) + "\n");
	for (const std::size_t length : {49u, 50u, 60u, 200u, 300u, 1000u}) {
		const std::string word(length, 'w');
		EXPECT_EQ(row(word + " 1 2 3 4% /b\n"),
		          Strings({word + "\n", "1       2       3       4%   /b" + blanks(48) + "\n"}));
		const std::string mountPoint = word + blanks(length < 50 ? 50 - length : 0) + "\n";
		EXPECT_EQ(row("a 1 2 3 4% " + word + "\n")[1], "1       2       3       4%   " + mountPoint);
		const std::string rest = " 4%   /b" + blanks(48) + "\n";
		EXPECT_EQ(row("a " + word + " 2 3 4% /b\n")[1], word + "  2       3      " + rest);
		EXPECT_EQ(row("a 1 " + word + " 3 4% /b\n")[1], "1       " + word + "  3      " + rest);
		EXPECT_EQ(row("a 1 2 " + word + " 4% /b\n")[1], "1       2       " + word + " " + rest);
		EXPECT_EQ(row("a 1 2 3 " + word + " /b\n")[1],
		          "1       2       3       " + word + " /b" + blanks(48) + "\n");
	}
}

TEST(Mounts, a_line_of_over_1022_characters_makes_further_rows)
{
	const std::string device(1020, 'd');
	EXPECT_EQ(parse("heading\n" + device + "1\n").rows, 3);
	const MountColumns columns = parse("heading\n" + device + " 1\n");
	expectColumns(columns, device + "\n" + blanks(35) + "\n", "1" + blanks(78) + "\n" + blanks(79) + "\n", 4);
	EXPECT_EQ(parse("heading\n" + std::string(5000, 'x') + "\n").rows, 7);
	EXPECT_EQ(parse(std::string(2000, 'h') + "\n").rows, 3);
}

TEST(Mounts, a_line_ends_at_a_nul_byte)
{
	EXPECT_EQ(row("a 1\0 2 3 4% /b\n"s), row("a 1\n"));
	EXPECT_EQ(row("\0a 1 2 3 4% /b\n"s), row("\n"));
}

TEST(Mounts, every_other_byte_and_the_percent_sign_stay_in_a_field)
{
	for (int byte = 1; byte < 256; ++byte) {
		if (byte == ' ' || (byte >= '\t' && byte <= '\r'))
			continue;
		const std::string word = "%s%n" + std::string(1, static_cast<char>(byte));
		const Strings columns = row(word + " " + word + " 2 3 4% " + word + "\n");
		EXPECT_EQ(columns[0], word + blanks(30) + "\n");
		EXPECT_EQ(columns[1], word + "   2       3       4%   " + word + blanks(45) + "\n");
	}
}

TEST(Mounts, forty_mounts_are_forty_rows)
{
	std::string bytes = "heading\n";
	for (int mount = 0; mount < 40; ++mount)
		bytes += "tmpfs 12G 0 12G 0% /mnt/" + std::to_string(mount) + "\n";
	const MountColumns columns = parse(bytes);
	EXPECT_EQ(columns.rows, 42);
	EXPECT_EQ(columns.filesystem.size(), 41u * 36);
	EXPECT_EQ(columns.usage.size(), 41u * 80);
}

TEST(Mounts, a_read_error_keeps_the_rows_before_it)
{
	expectColumns(parseMountColumns(failingStream("heading\na\n").get()), "a" + blanks(34) + "\n",
	              blanks(79) + "\n", 3);
	EXPECT_EQ(parseMountColumns(failingStream("").get()).rows, 2);
}

TEST(Mounts, a_heading_that_cannot_be_read_makes_no_difference)
{
	EXPECT_EQ(parseMountColumns(failingStream("a\n", true).get()).rows, 3);
}

TEST(Mounts, fixtures_become_their_columns)
{
	const Strings names = fixturesIn("df");
	EXPECT_GE(names.size(), 6u);
	for (const std::string &name : names) {
		SCOPED_TRACE(name);
		const MountColumns columns = parse(fixture(name));
		const std::string devices = fixture(name + ".filesystem");
		EXPECT_EQ(columns.filesystem, devices);
		EXPECT_EQ(columns.usage, fixture(name + ".usage"));
		EXPECT_EQ(columns.rows, 1 + std::count(devices.begin(), devices.end(), '\n'));
	}
}

TEST(Mounts, generated_outputs_read_as_the_model_reads_them)
{
	Generator generator(5201, {"/dev/root", "7.8M", "1023.9G", "40%", "/var", "tmpfs", std::string(60, '/')},
	                    {1022, 2044});
	int rows = 0;
	for (int round = 0; round < 12000; ++round) {
		const std::string bytes = generator.file();
		const MountColumns columns = parse(bytes);
		ASSERT_EQ(textOf(columns), textOf(modelMounts(bytes))) << round << ": " << shown(bytes);
		rows += columns.rows;
	}
	EXPECT_GT(rows, 100000);
}

TEST(ReadMountColumns, runs_the_command_reads_closes_and_removes_in_this_order)
{
	FakePlatform platform;
	platform.replaceShell([] { writeFile(dfFile, "heading\na\n"); });
	expectColumns(readMountColumns(), "a" + blanks(34) + "\n", blanks(79) + "\n", 3);
	EXPECT_EQ(platform.calls,
	          Strings({"system(\"df -h >/var/tmp/df.tmp\")", "fopen(\"/var/tmp/df.tmp\", \"r\")",
	                   "fclose(stream)", "remove(\"/var/tmp/df.tmp\")"}));
	EXPECT_FALSE(exists(dfFile));
}

TEST(ReadMountColumns, a_file_that_does_not_open_is_removed_and_nothing_is_closed)
{
	FakePlatform platform;
	platform.replaceShell([] { writeFile(dfFile, "heading\na\n"); });
	platform.failOpening(dfFile);
	expectColumns(readMountColumns(), "", "", 2);
	EXPECT_EQ(platform.calls, Strings({"system(\"df -h >/var/tmp/df.tmp\")",
	                                   "fopen(\"/var/tmp/df.tmp\", \"r\")", "remove(\"/var/tmp/df.tmp\")"}));
	EXPECT_FALSE(exists(dfFile));
}

TEST(ReadMountColumns, a_read_error_still_closes_and_removes)
{
	FakePlatform platform;
	platform.replaceShell();
	platform.answerOpening(dfFile, failingStream("heading\na\n").release());
	EXPECT_EQ(readMountColumns().rows, 3);
	EXPECT_EQ(Strings(platform.calls.begin() + 2, platform.calls.end()),
	          Strings({"fclose(stream)", "remove(\"/var/tmp/df.tmp\")"}));
}

TEST(ReadMountColumns, a_folder_in_place_of_the_file_gives_the_headings_and_is_removed)
{
	ASSERT_EQ(mkdir(dfFile, 0700), 0);
	expectColumns(readMountColumns(), "", "", 2);
	EXPECT_FALSE(exists(dfFile));
}

TEST(ReadMountColumns, the_real_command_lists_what_is_mounted)
{
	writeFile(dfFile, "left over\nfrom before\n");
	const MountColumns columns = readMountColumns();
	EXPECT_GE(columns.rows, 3);
	EXPECT_EQ(columns.rows, 1 + std::count(columns.usage.begin(), columns.usage.end(), '\n'));
	EXPECT_EQ(columns.filesystem.find("from"), std::string::npos);
	EXPECT_NE(columns.usage.find(" /"), std::string::npos) << columns.usage;
	EXPECT_FALSE(exists(dfFile));
}

TEST(ReadMountColumns, a_command_that_does_not_exist_gives_the_headings_alone)
{
	const std::string path = getenv("PATH");
	setenv("PATH", "/nonexistent", 1);
	expectColumns(readMountColumns(), "", "", 2);
	setenv("PATH", path.c_str(), 1);
	EXPECT_FALSE(exists(dfFile));
}

} // namespace mount_columns_test
