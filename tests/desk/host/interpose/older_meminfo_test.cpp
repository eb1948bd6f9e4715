// Today's memory summary in the older layout, and how the plugin reads it.

#include "older_meminfo.h"

#include "meminfo_columns.h"
#include "support.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

namespace older_meminfo_test
{

using Stream = std::unique_ptr<FILE, int (*)(FILE *)>;

Stream streamOf(const std::string &text)
{
	FILE *stream = fmemopen(nullptr, text.size() + 1, "w+");
	fputs(text.c_str(), stream);
	rewind(stream);
	return {stream, fclose};
}

std::string older(const std::string &today)
{
	return desk::olderMeminfo(streamOf(today).get());
}

/// A kernel's summary of these quantities, in kB.
std::string summary(unsigned long long total, unsigned long long free, unsigned long long cached,
                    unsigned long long swap)
{
	const auto line = [](const char *name, unsigned long long value) {
		return std::string(name) + ":  " + std::to_string(value) + " kB\n";
	};
	return line("MemTotal", total) + line("MemFree", free) + line("MemAvailable", free) +
	       line("Buffers", (total - free - cached) / 2) + line("Cached", cached) + line("SwapCached", 0) +
	       line("Active", cached) + line("Inactive", 0) + line("SwapTotal", swap) +
	       line("SwapFree", swap / 2) + line("Shmem", cached);
}

TEST(OlderMeminfo, tells_the_same_quantities_in_fixed_columns)
{
	EXPECT_EQ(older("MemTotal:       16303428 kB\n"
	                "MemFree:          512000 kB\n"
	                "MemAvailable:   12000000 kB\n"
	                "Buffers:          204800 kB\n"
	                "Cached:          8192000 kB\n"
	                "SwapCached:           12 kB\n"
	                "Active:          4000000 kB\n"
	                "Inactive:        3000000 kB\n"
	                "Active(anon):    1000000 kB\n"
	                "SwapTotal:       2097148 kB\n"
	                "SwapFree:        2097000 kB\n"
	                "Shmem:            123456 kB\n"
	                "HugePages_Total:       0\n"),
	          "        total:    used:    free:  shared: buffers:  cached:\n"
	          "Mem:  16694710272 16170422272 524288000 126418944 209715200 8388608000\n"
	          "Swap: 2147479552   151552 2147328000\n"
	          "MemTotal:     16303428 kB\n"
	          "MemFree:        512000 kB\n"
	          "MemShared:      123456 kB\n"
	          "Buffers:        204800 kB\n"
	          "Cached:        8192000 kB\n"
	          "SwapCached:         12 kB\n"
	          "Active:        4000000 kB\n"
	          "Inactive:      3000000 kB\n"
	          "HighTotal:           0 kB\n"
	          "HighFree:            0 kB\n"
	          "LowTotal:     16303428 kB\n"
	          "LowFree:        512000 kB\n"
	          "SwapTotal:     2097148 kB\n"
	          "SwapFree:      2097000 kB\n");
}

TEST(OlderMeminfo, tells_what_captured_summaries_tell)
{
	for (const char *name : {"kernel-6.1-small.txt", "kernel-6.18-large.txt"}) {
		const std::string today = support::readFile(support::sourcePath("tests/fixtures/meminfo/") + name);
		const MemInfoColumns columns = parseMemInfo(streamOf(older(today)).get());
		EXPECT_EQ(support::lines(columns.names),
		          (std::vector<std::string>{
					  "MemTotal:  ", "MemFree:   ", "MemShared: ", "Buffers:   ", "Cached:    ",
					  "SwapCached:", "Active:    ", "Inactive:  ", "HighTotal: ", "HighFree:  ",
					  "LowTotal:  ", "LowFree:   ", "SwapTotal: ", "SwapFree:  "}));
		int total = 0;
		ASSERT_EQ(sscanf(today.c_str(), "MemTotal: %d kB", &total), 1);
		EXPECT_EQ(support::lines(columns.values).front(), std::to_string(total) + " KB");
	}
}

TEST(OlderMeminfo, keeps_the_high_and_low_memory_of_a_kernel_that_has_them)
{
	const std::string text = older("MemTotal: 4000000 kB\nHighTotal: 3000000 kB\nLowTotal: 1000000 kB\n");
	EXPECT_NE(text.find("HighTotal:     3000000 kB\n"), std::string::npos) << text;
	EXPECT_NE(text.find("LowTotal:      1000000 kB\n"), std::string::npos) << text;
}

TEST(OlderMeminfo, is_whole_whatever_is_missing)
{
	for (const char *today : {"", "\n\n", "no summary at all\n", "MemTotal:\n", ": 5 kB\n"})
		EXPECT_EQ(support::lines(older(today)).size(), 17u) << today;
}

TEST(OlderMeminfo, shows_fourteen_rows_whatever_the_size_of_the_memory)
{
	constexpr unsigned long long mebibyte = 1024, tebibyte = mebibyte << 20;
	for (unsigned long long total = 8 * mebibyte; total <= 64 * tebibyte; total += total / 3)
		for (const unsigned used : {1u, 10u, 50u, 90u, 99u, 100u})
			for (const unsigned long long swap : {0ULL, mebibyte, total}) {
				const unsigned long long inUse = total / 100 * used;
				const std::string text = older(summary(total, total - inUse, inUse / 10 * 9, swap));
				const MemInfoColumns columns = parseMemInfo(streamOf(text).get());
				const auto names = support::lines(columns.names);
				ASSERT_EQ(names.size(), 14u) << text;
				EXPECT_EQ(names.front(), "MemTotal:  ") << text;
				EXPECT_EQ(names.back(), "SwapFree:  ") << text;
				if (total < 2 * tebibyte) { // the largest that the plugin's numbers hold
					EXPECT_EQ(support::lines(columns.values).front(), std::to_string(total) + " KB");
				}
			}
}

TEST(OlderMeminfo, tells_true_bytes_up_to_a_tebibyte)
{
	constexpr unsigned long long tebibyte = 1ULL << 30; // in kB
	for (const unsigned long long free : {tebibyte / 100, tebibyte / 50, tebibyte / 2, tebibyte / 100 * 99}) {
		const unsigned long long used = tebibyte - free;
		const std::string text = older(summary(tebibyte, free, used / 10 * 9, tebibyte));
		const std::string start = "Mem:  1099511627776 " + std::to_string(used * 1024) + ' ';
		EXPECT_NE(text.find(start), std::string::npos) << text;
	}
}

} // namespace older_meminfo_test
