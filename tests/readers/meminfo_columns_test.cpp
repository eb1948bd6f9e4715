#include "fake_platform.h"
#include "generator.h"
#include "meminfo_columns.h"
#include "models.h"
#include "streams.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace meminfo_columns_test
{

using namespace std::string_literals;
using Strings = std::vector<std::string>;

/// The reader skips the first eight pieces.
const std::string counted = "a 1\na 2\na 3\na 4\na 5\na 6\na 7\na 8\n";

MemInfoColumns parse(const std::string &bytes)
{
	return parseMemInfo(streamOf(bytes).get());
}

void expectRows(const std::string &bytes, const std::string &names, const std::string &values)
{
	const MemInfoColumns columns = parse(bytes);
	EXPECT_EQ(columns.names, names) << shown(bytes);
	EXPECT_EQ(columns.values, values) << shown(bytes);
}

TEST(MemInfo, an_empty_file_gives_two_empty_columns)
{
	expectRows("", "", "");
}

TEST(MemInfo, the_first_eight_pieces_are_only_counted)
{
	expectRows(counted, "", "");
	expectRows(counted + "b 9\n", "b          \n", "9 KB\n");
	expectRows("one 1\n", "", "");
	expectRows("M", "", "");
	expectRows("\0"s, "", "");
}

TEST(MemInfo, the_older_layouts_table_makes_eight_pieces_and_every_quantity_a_row)
{
	const MemInfoColumns columns = parse(fixture("meminfo/older-layout.txt"));
	EXPECT_EQ(columns.names,
	          "MemTotal:  \nMemFree:   \nMemShared: \nBuffers:   \nCached:    \nSwapCached:\nActive:    \n"
	          "Inactive:  \nHighTotal: \nHighFree:  \nLowTotal:  \nLowFree:   \nSwapTotal: \nSwapFree:  \n");
	EXPECT_EQ(
		columns.values,
		"29544 KB\n512 KB\n0 KB\n1096 KB\n11452 KB\n24 KB\n9272 KB\n6820 KB\n0 KB\n0 KB\n29544 KB\n512 KB\n"
		"65528 KB\n61204 KB\n");
}

TEST(MemInfo, the_later_layout_loses_its_first_eight_quantities)
{
	const MemInfoColumns columns = parse(fixture("meminfo/kernel-6.1-small.txt"));
	EXPECT_EQ(columns.names.substr(0, 30), "Active(anon):\nInactive(anon):\n");
	EXPECT_EQ(columns.values.substr(0, 15), "2100 KB\n184 KB\n");
}

TEST(MemInfo, a_short_name_is_padded_to_eleven_and_a_long_one_is_shown_whole)
{
	expectRows(counted + "MemFree:       512 kB\n", "MemFree:   \n", "512 KB\n");
	expectRows(counted + "SwapCached: 24 kB\n", "SwapCached:\n", "24 KB\n");
	expectRows(counted + "Inactive(file): 24 kB\n", "Inactive(file):\n", "24 KB\n");
}

TEST(MemInfo, a_name_can_fill_its_piece)
{
	const std::string name(29, 'n');
	expectRows(counted + name, name + '\n', "8 KB\n");
	expectRows(counted + name + "tail 77\n", name + "\ntail       \n", "8 KB\n77 KB\n");
}

TEST(MemInfo, a_line_of_28_characters_and_its_end_is_one_piece)
{
	expectRows(counted + "name:         12345678901 kB\nnext 1\n", "name:      \nnext       \n",
	           byLong("-539222987 KB\n1 KB\n", "2147483647 KB\n1 KB\n"));
	expectRows(counted + "name:               12345 kB\nnext 1\n", "name:      \nnext       \n",
	           "12345 KB\n1 KB\n");
}

TEST(MemInfo, a_line_of_29_characters_repeats_its_row_for_its_line_end)
{
	expectRows(counted + "name:                12345 kB\nnext 1\n", "name:      \nname:      \nnext       \n",
	           "12345 KB\n12345 KB\n1 KB\n");
}

TEST(MemInfo, a_blank_piece_repeats_the_row_before_it_and_counts)
{
	expectRows(counted + "\n", "a          \n", "8 KB\n");
	expectRows(counted + "b 9\n\n  \t\n", "b          \nb          \nb          \n", "9 KB\n9 KB\n9 KB\n");
	expectRows("\n\n\n\n\n\n\n\n\n", "           \n", "0 KB\n");
	expectRows("\n\n\n\n\n\n\n\nb 9\n", "b          \n", "9 KB\n");
}

TEST(MemInfo, a_name_without_a_number_shows_the_last_number)
{
	expectRows(counted + "MemShared:\nCached: kB\nBuffers: 3 kB\nHigh: x\n",
	           "MemShared: \nCached:    \nBuffers:   \nHigh:      \n", "8 KB\n8 KB\n3 KB\n3 KB\n");
	expectRows("a\na\na\na\na\na\na\na\nb\n", "b          \n", "0 KB\n");
}

TEST(MemInfo, the_pieces_of_the_table_give_name_and_value_to_a_blank_piece_after_them)
{
	expectRows("a\nb\nc\nd\ne\nf\ng\nSwap: 77\n\n", "Swap:      \n", "77 KB\n");
}

TEST(MemInfo, a_piece_that_does_not_parse_is_neither_counted_nor_shown)
{
	FakePlatform platform;
	platform.unparseable = "odd";
	expectRows("odd 5\n" + counted + "odd 6\nb 9\nodd 7\n", "b          \n", "9 KB\n");
	expectRows("odd 5\na 1\na 2\na 3\na 4\na 5\na 6\na 7\nlast 8\n", "", "");
}

TEST(MemInfo, the_unit_of_the_file_is_not_looked_at)
{
	expectRows(counted + "Pages: 12\nHuge: 3 MB\nTiny: 4kB\nBig: 5 KB 6\n",
	           "Pages:     \nHuge:      \nTiny:      \nBig:       \n", "12 KB\n3 KB\n4 KB\n5 KB\n");
}

TEST(MemInfo, a_value_is_read_as_the_c_library_reads_an_int)
{
	expectRows(counted + "a -5\na +6\na 007\na 2147483648\na 4294967297\na 99999999999999999999\n",
	           "a          \na          \na          \na          \na          \na          \n",
	           byLong("-5 KB\n6 KB\n7 KB\n-2147483648 KB\n1 KB\n-1 KB\n",
	                  "-5 KB\n6 KB\n7 KB\n2147483647 KB\n2147483647 KB\n2147483647 KB\n"));
}

TEST(MemInfo, a_last_line_without_an_end_is_a_row)
{
	expectRows(counted + "last: 5", "last:      \n", "5 KB\n");
}

TEST(MemInfo, carriage_returns_are_blanks)
{
	const MemInfoColumns columns = parse("Total:\r\n" + counted + "b: 9 kB\r\n");
	EXPECT_EQ(columns.names, "a          \nb:         \n");
	EXPECT_EQ(columns.values, "8 KB\n9 KB\n");
}

TEST(MemInfo, a_piece_ends_at_a_nul_byte)
{
	expectRows(counted + "Free:\0 512 kB\n\0 6\nb 9\n"s, "Free:      \nFree:      \nb          \n",
	           "8 KB\n8 KB\n9 KB\n");
}

TEST(MemInfo, every_other_byte_and_the_percent_sign_stay_in_a_name)
{
	std::string bytes = counted;
	std::string names;
	std::string values;
	for (int byte = 1; byte < 256; ++byte) {
		if (byte == ' ' || (byte >= '\t' && byte <= '\r'))
			continue;
		const std::string name = "%s%n" + std::string(1, static_cast<char>(byte)) + "567890%";
		bytes += name + " " + std::to_string(byte) + "\n";
		names += name + "\n";
		values += std::to_string(byte) + " KB\n";
	}
	expectRows(bytes, names, values);
}

TEST(MemInfo, there_is_no_limit_on_the_rows)
{
	std::string bytes = counted;
	for (int row = 0; row < 10000; ++row)
		bytes += "quantity:   1 kB\n";
	EXPECT_EQ(parse(bytes).names.size(), 120000u);
	EXPECT_EQ(parse(bytes).values.size(), 50000u);
}

TEST(MemInfo, a_line_of_5000_characters_is_read_in_pieces)
{
	const MemInfoColumns columns = parse(std::string(5000, 'x') + "\n");
	// 172 full pieces, of which it skips eight, and one of 12 characters.
	EXPECT_EQ(columns.names.size(), 164u * 30 + 13);
	EXPECT_EQ(columns.names.substr(0, 30), std::string(29, 'x') + "\n");
	EXPECT_EQ(columns.values.substr(0, 10), "0 KB\n0 KB\n");
}

TEST(MemInfo, a_read_error_keeps_the_rows_before_it)
{
	const MemInfoColumns columns = parseMemInfo(failingStream(counted + "b 9\nc 10\n").get());
	EXPECT_EQ(columns.names, "b          \nc          \n");
	EXPECT_EQ(columns.values, "9 KB\n10 KB\n");
	EXPECT_EQ(parseMemInfo(failingStream("").get()).names, "");
}

TEST(MemInfo, fixtures_become_their_columns)
{
	const Strings names = fixturesIn("meminfo");
	EXPECT_GE(names.size(), 6u);
	for (const std::string &name : names)
		expectRows(fixture(name), fixture(name + ".names"), fixture(name + ".values"));
}

TEST(MemInfo, generated_files_read_as_the_model_reads_them)
{
	Generator generator(3101,
	                    {"MemTotal:", "SwapCached:", "Inactive(file):", "kB", "29544", "Mem:", "12345678"},
	                    {29, 58, 87});
	std::size_t characters = 0;
	for (int round = 0; round < 12000; ++round) {
		const std::string bytes = generator.file();
		const MemInfoColumns columns = parse(bytes);
		ASSERT_EQ(textOf(columns), textOf(modelMemInfo(bytes))) << round << ": " << shown(bytes);
		characters += columns.names.size();
	}
	EXPECT_GT(characters, 1000000u);
}

TEST(ReadMemInfo, opens_reads_and_closes)
{
	const std::string bytes = counted + "b 9\n";
	FakePlatform platform;
	platform.answerOpening("/proc/meminfo", streamOf(bytes).release());
	const MemInfoColumns columns = readMemInfo();
	EXPECT_EQ(platform.calls, Strings({"fopen(\"/proc/meminfo\", \"r\")", "fclose(stream)"}));
	EXPECT_EQ(columns.names, "b          \n");
	EXPECT_EQ(columns.values, "9 KB\n");
}

TEST(ReadMemInfo, a_file_that_does_not_open_gives_empty_columns_and_closes_nothing)
{
	FakePlatform platform;
	platform.failOpening("/proc/meminfo");
	const MemInfoColumns columns = readMemInfo();
	EXPECT_EQ(platform.calls, Strings({"fopen(\"/proc/meminfo\", \"r\")"}));
	EXPECT_EQ(columns.names, "");
	EXPECT_EQ(columns.values, "");
}

TEST(ReadMemInfo, a_folder_in_its_place_gives_empty_columns)
{
	FILE *const folder = fopen("/proc", "r");
	ASSERT_NE(folder, nullptr);
	FakePlatform platform;
	platform.answerOpening("/proc/meminfo", folder);
	EXPECT_EQ(readMemInfo().names, "");
	EXPECT_EQ(platform.calls, Strings({"fopen(\"/proc/meminfo\", \"r\")", "fclose(stream)"}));
}

TEST(ReadMemInfo, this_machines_file_has_as_many_names_as_values)
{
	const MemInfoColumns columns = readMemInfo();
	const auto lines = [](const std::string &text) { return std::count(text.begin(), text.end(), '\n'); };
	EXPECT_GT(lines(columns.names), 10);
	EXPECT_EQ(lines(columns.names), lines(columns.values));
	EXPECT_NE(columns.names.find("SwapTotal: \n"), std::string::npos);
}

} // namespace meminfo_columns_test
