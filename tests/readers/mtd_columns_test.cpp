#include "fake_platform.h"
#include "generator.h"
#include "models.h"
#include "mtd_columns.h"
#include "streams.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace mtd_columns_test
{

using namespace std::string_literals;
using Strings = std::vector<std::string>;

MtdColumns parse(const std::string &bytes)
{
	return parseMtdColumns(streamOf(bytes).get());
}

std::string joined(const MtdColumns &columns)
{
	return columns.dev + "|" + columns.size + "|" + columns.erasesize + "|" + columns.name + "|" +
	       std::to_string(columns.rows);
}

/// The text of each column that `line` gives, as the only partition of a file.
Strings row(const std::string &line)
{
	const MtdColumns columns = parse("heading\n" + line);
	EXPECT_EQ(columns.rows, 2) << shown(line);
	return {columns.dev.substr(5), columns.size.substr(5), columns.erasesize.substr(10),
	        columns.name.substr(5)};
}

const Strings blankRow = {"mtd0:\n", "00000000\n", "00000000\n", "  \n"};

TEST(Mtd, an_empty_file_gives_the_headings_alone)
{
	EXPECT_EQ(joined(parse("")), "dev:\n|size\n|erasesize\n|name\n|1");
}

TEST(Mtd, a_heading_alone_gives_the_headings_alone)
{
	EXPECT_EQ(joined(parse("dev:    size   erasesize  name\n")), "dev:\n|size\n|erasesize\n|name\n|1");
	EXPECT_EQ(joined(parse("dev:    size")), "dev:\n|size\n|erasesize\n|name\n|1");
}

TEST(Mtd, every_line_after_the_heading_makes_one_line_per_column)
{
	const MtdColumns columns = parse("dev:    size   erasesize  name\n"
	                                 "mtd0: 00020000 00004000 \"boot loader\"\n"
	                                 "mtd1: 00600000 00020000 \"root fs\"\n");
	EXPECT_EQ(columns.dev, "dev:\nmtd0:\nmtd1:\n");
	EXPECT_EQ(columns.size, "size\n00020000\n00600000\n");
	EXPECT_EQ(columns.erasesize, "erasesize\n00004000\n00020000\n");
	EXPECT_EQ(columns.name, "name\n\"boot loader\" \n\"root fs\" \n");
	EXPECT_EQ(columns.rows, 3);
}

TEST(Mtd, the_first_line_is_discarded_whatever_it_holds)
{
	const MtdColumns columns = parse("mtd0: 00020000 00004000 \"boot\"\nmtd1: 00600000 00020000 \"root\"\n");
	EXPECT_EQ(columns.dev, "dev:\nmtd1:\n");
	EXPECT_EQ(columns.rows, 2);
}

TEST(Mtd, a_last_line_without_an_end_is_shown)
{
	EXPECT_EQ(row("mtd3: 00020000 00004000 \"boot\""),
	          Strings({"mtd3:\n", "00020000\n", "00004000\n", "\"boot\"  \n"}));
}

TEST(Mtd, a_name_of_one_or_two_words_gets_trailing_blanks)
{
	EXPECT_EQ(row("mtd0: 1 2 \"kernel\"\n")[3], "\"kernel\"  \n");
	EXPECT_EQ(row("mtd0: 1 2 \"root fs\"\n")[3], "\"root fs\" \n");
	EXPECT_EQ(row("mtd0: 1 2\n")[3], "  \n");
}

TEST(Mtd, a_name_of_three_or_more_words_shows_its_first_three)
{
	EXPECT_EQ(row("mtd0: 1 2 \"a b c\"\n")[3], "\"a b c\"\n");
	EXPECT_EQ(row("mtd0: 1 2 \"a  b\tc d\"\n")[3], "\"a b c\n");
	EXPECT_EQ(row("mtd0: 1 2 \"a b c d e\"\n")[3], "\"a b c\n");
}

TEST(Mtd, sizes_have_eight_digits_always)
{
	EXPECT_EQ(row("mtd12: 4000 200 \"x\"\n"), Strings({"mtd12:\n", "00004000\n", "00000200\n", "\"x\"  \n"}));
	EXPECT_EQ(row("mtd0: ABCDEF ff \"x\"\n")[1], "00abcdef\n");
}

TEST(Mtd, a_size_of_0_x_80000000_or_more_is_printed_back_unchanged)
{
	EXPECT_EQ(row("mtd0: 80000000 ffffffff \"x\"\n"),
	          Strings({"mtd0:\n", "80000000\n", "ffffffff\n", "\"x\"  \n"}));
}

TEST(Mtd, numbers_beyond_32_bits_lose_their_upper_part_where_a_long_holds_it)
{
	EXPECT_EQ(row("mtd4294967298: 180000000 fffffffffffffffff \"x\"\n"),
	          byLong(Strings({"mtd2:\n", "80000000\n", "ffffffff\n", "\"x\"  \n"}),
	                 Strings({"mtd2147483647:\n", "ffffffff\n", "ffffffff\n", "\"x\"  \n"})));
}

TEST(Mtd, a_line_that_is_no_partition_makes_a_blank_row)
{
	EXPECT_EQ(row("\n"), blankRow);
	EXPECT_EQ(row("   \n"), blankRow);
	EXPECT_EQ(row("nonsense 1 2 3\n"), blankRow);
	EXPECT_EQ(row(" mtd5: 1 2 \"x\"\n"), blankRow);
	EXPECT_EQ(row("MTD5: 1 2 \"x\"\n"), blankRow);
	EXPECT_EQ(row("mtd: 1 2 \"x\"\n"), blankRow);
	EXPECT_EQ(row("\0mtd5: 1 2\n"s), blankRow);
}

TEST(Mtd, a_line_that_matches_in_part_shows_that_part)
{
	EXPECT_EQ(row("mtd5\n"), Strings({"mtd5:\n", "00000000\n", "00000000\n", "  \n"}));
	EXPECT_EQ(row("mtd5 : 1 2\n"), Strings({"mtd5:\n", "00000000\n", "00000000\n", "  \n"}));
	EXPECT_EQ(row("mtd5: 10 x\n"), Strings({"mtd5:\n", "00000010\n", "00000000\n", "  \n"}));
	EXPECT_EQ(row("mtd5: zz 10\n"), Strings({"mtd5:\n", "00000000\n", "00000000\n", "  \n"}));
	EXPECT_EQ(row("mtd 5:1 2x\n"), Strings({"mtd5:\n", "00000001\n", "00000002\n", "x  \n"}));
}

TEST(Mtd, nothing_of_a_line_shows_in_the_next)
{
	const MtdColumns columns = parse("heading\nmtd7: 11 22 a b c\nx\nmtd8: 33\nmtd9: 44 55 d\n");
	EXPECT_EQ(columns.dev, "dev:\nmtd7:\nmtd0:\nmtd8:\nmtd9:\n");
	EXPECT_EQ(columns.size, "size\n00000011\n00000000\n00000033\n00000044\n");
	EXPECT_EQ(columns.erasesize, "erasesize\n00000022\n00000000\n00000000\n00000055\n");
	EXPECT_EQ(columns.name, "name\na b c\n  \n  \nd  \n");
}

TEST(Mtd, signs_and_prefixes_are_read_as_the_c_library_reads_them)
{
	EXPECT_EQ(row("mtd-8: -1 +2 \"x\"\n"), Strings({"mtd-8:\n", "ffffffff\n", "00000002\n", "\"x\"  \n"}));
	EXPECT_EQ(row("mtd+8:0x20\t0X40 x\n"), Strings({"mtd8:\n", "00000020\n", "00000040\n", "x  \n"}));
}

TEST(Mtd, a_long_word_is_neither_cut_nor_split)
{
	for (const std::size_t length : {49u, 50u, 60u, 300u, 960u}) {
		const std::string word(length, 'w');
		EXPECT_EQ(row("mtd1: 00000010 00000020 " + word + " b c\n")[3], word + " b c\n");
		EXPECT_EQ(row("mtd1: 00000010 00000020 a " + word + " c\n")[3], "a " + word + " c\n");
		EXPECT_EQ(row("mtd1: 00000010 00000020 a b " + word + "\n")[3], "a b " + word + "\n");
	}
}

TEST(Mtd, a_line_of_over_1022_characters_makes_further_rows)
{
	const std::string start = "mtd1: 10 20 ";
	const std::string name(1022 - start.size(), 'n');
	MtdColumns columns = parse("heading\n" + start + name + "\n");
	EXPECT_EQ(columns.rows, 3);
	EXPECT_EQ(columns.name, "name\n" + name + "  \n  \n");
	columns = parse("heading\n" + start + name.substr(1) + "\n");
	EXPECT_EQ(columns.rows, 2);
	columns = parse("heading\n" + start + name + "mtd2: 30 40 x\n");
	EXPECT_EQ(columns.dev, "dev:\nmtd1:\nmtd2:\n");
	EXPECT_EQ(parse("heading\n" + std::string(5000, 'x') + "\n").rows, 6);
	EXPECT_EQ(parse(std::string(2000, 'h') + "\n").rows, 2);
}

TEST(Mtd, a_line_ends_at_a_nul_byte)
{
	EXPECT_EQ(row("mtd1: 10 20 \"a\0b\" c\n"s), Strings({"mtd1:\n", "00000010\n", "00000020\n", "\"a  \n"}));
}

TEST(Mtd, every_other_byte_and_the_percent_sign_stay_in_a_name)
{
	for (int byte = 1; byte < 256; ++byte) {
		if (byte == ' ' || (byte >= '\t' && byte <= '\r'))
			continue;
		const std::string word = "%s%n%d" + std::string(1, static_cast<char>(byte));
		EXPECT_EQ(row("mtd1: 10 20 " + word + "\r\n")[3], word + "  \n");
	}
}

TEST(Mtd, a_read_error_keeps_the_rows_before_it)
{
	EXPECT_EQ(joined(parseMtdColumns(failingStream("heading\nmtd1: 1 2 x\n").get())),
	          "dev:\nmtd1:\n|size\n00000001\n|erasesize\n00000002\n|name\nx  \n|2");
	EXPECT_EQ(parseMtdColumns(failingStream("").get()).rows, 1);
}

TEST(Mtd, a_heading_that_cannot_be_read_makes_no_difference)
{
	EXPECT_EQ(parseMtdColumns(failingStream("mtd1: 1 2 x\n", true).get()).dev, "dev:\nmtd1:\n");
}

TEST(Mtd, fixtures_become_their_columns)
{
	const Strings names = fixturesIn("mtd");
	EXPECT_GE(names.size(), 7u);
	for (const std::string &name : names) {
		SCOPED_TRACE(name);
		const MtdColumns columns = parse(fixture(name));
		const std::string dev = fixture(name + ".dev");
		EXPECT_EQ(columns.dev, dev);
		EXPECT_EQ(columns.size, fixture(name + ".size"));
		EXPECT_EQ(columns.erasesize, fixture(name + ".erasesize"));
		EXPECT_EQ(columns.name, fixture(name + ".name"));
		EXPECT_EQ(columns.rows, std::count(dev.begin(), dev.end(), '\n'));
	}
}

TEST(Mtd, generated_files_read_as_the_model_reads_them)
{
	Generator generator(5101,
	                    {"mtd", "mtd0:", "mtd7: ", "\nmtd1: 00020000 00004000 ", "\nmtd9: 10 20 \"", "\nmtd",
	                     "00020000", "\"root", "fs\""},
	                    {1022, 2044});
	int rows = 0;
	for (int round = 0; round < 12000; ++round) {
		const std::string bytes = generator.file();
		const MtdColumns columns = parse(bytes);
		ASSERT_EQ(textOf(columns), textOf(modelMtd(bytes))) << round << ": " << shown(bytes);
		rows += columns.rows;
	}
	EXPECT_GT(rows, 100000);
}

TEST(ReadMtdColumns, opens_reads_and_closes)
{
	const std::string bytes = fixture("mtd/receiver.txt");
	FakePlatform platform;
	platform.answerOpening("/proc/mtd", streamOf(bytes).release());
	EXPECT_EQ(readMtdColumns().rows, 6);
	EXPECT_EQ(platform.calls, Strings({"fopen(\"/proc/mtd\", \"r\")", "fclose(stream)"}));
}

TEST(ReadMtdColumns, a_file_that_does_not_open_gives_the_headings_alone)
{
	FakePlatform platform;
	platform.failOpening("/proc/mtd");
	EXPECT_EQ(joined(readMtdColumns()), "dev:\n|size\n|erasesize\n|name\n|1");
	EXPECT_EQ(platform.calls, Strings({"fopen(\"/proc/mtd\", \"r\")"}));
}

TEST(ReadMtdColumns, a_folder_in_its_place_gives_the_headings_alone)
{
	FILE *const folder = fopen("/proc", "r");
	ASSERT_NE(folder, nullptr);
	FakePlatform platform;
	platform.answerOpening("/proc/mtd", folder);
	EXPECT_EQ(joined(readMtdColumns()), "dev:\n|size\n|erasesize\n|name\n|1");
}

} // namespace mtd_columns_test
