// The memory screen, by keys.

#include "support.h"

#include <gtest/gtest.h>

using namespace support;

namespace meminfo_test
{

TEST(MemInfo, reaches_five_pixels_below_its_client_area)
{
	ReceiverFolder receiver;
	const DeskRun run = runDesk(receiver.path(), "down ok");
	EXPECT_EQ(run.window(2)["client"], Json({225, 113, 270, 350}));
	EXPECT_EQ(run.widget(2, "eLabel", 0)["rect"], Json({5, 5, 150, 350}));
	EXPECT_EQ(run.widget(2, "eLabel", 1)["rect"], Json({160, 5, 100, 350}));
}

TEST(MemInfo, shows_binary_data_without_harm)
{
	std::string bytes;
	for (int i = 0; i < 4096; ++i)
		bytes += static_cast<char>((i * 151 + i / 256) & 0xff);
	ReceiverFolder receiver;
	receiver.meminfo(bytes);
	support::TempFolder pictures;
	const DeskRun run = runDesk(receiver.path(), "down ok exit exit", {"--pictures", pictures.path()});
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
	EXPECT_EQ(run.window(2)["class"], "eMemInfoDialog");
	EXPECT_TRUE(support::exists(pictures / "02-ok.png"));
}

TEST(MemInfo, shows_this_computers_memory_without_a_root)
{
	const DeskRun run = runDesk("", "down ok exit exit", {"--as-is"});
	const std::string names = run.widget(2, "eLabel", 0)["text"];
	const std::string values = run.widget(2, "eLabel", 1)["text"];
	const std::string kernel = support::readFile("/proc/meminfo");
	size_t pieces = 0; // a piece is at most 29 characters, line end included
	for (const std::string &line : support::lines(kernel))
		pieces += (line.size() + 1 + 28) / 29;
	EXPECT_EQ(support::lines(names).size(), pieces - 8);
	EXPECT_EQ(support::lines(values).size(), pieces - 8);
	const std::string first = support::lines(names).at(0);
	EXPECT_EQ(support::lines(kernel).at(8).rfind(first.substr(0, first.find(' ')), 0), 0u);
}

} // namespace meminfo_test
