// Without --root: this computer as a receiver, or with --as-is.

#include "reach.h"

#include <gtest/gtest.h>

namespace receiver_test
{

using support::DeskRun;
using support::TempFolder;

TEST(ThisComputer, has_the_commands_of_a_receiver)
{
	const std::string listed = reach("run", "ps").outcome.err;
	EXPECT_TRUE(has(listed, "USER")) << listed;
	EXPECT_FALSE(has(listed, "TTY")) << listed;
	EXPECT_TRUE(has(reach("run", "df -h").outcome.err, "Available")) << "GNU's says Avail";
	EXPECT_TRUE(has(reach("run", "kill -9 0x").outcome.err, "invalid number '0x'"));
}

TEST(ThisComputer, has_its_own_commands_as_it_is)
{
	EXPECT_TRUE(has(reach("run", "ps", {"--as-is"}).outcome.err, "TTY"));
	EXPECT_FALSE(has(reach("run", "df -h", {"--as-is"}).outcome.err, "Available"));
}

TEST(ThisComputer, has_a_memory_summary_in_the_older_layout)
{
	EXPECT_TRUE(has(reach("read", "/proc/meminfo").outcome.err, "fopen:         total:    used:"));
	EXPECT_TRUE(has(reach("read", "/proc/meminfo", {"--as-is"}).outcome.err, "fopen: MemTotal:"));
	const DeskRun run = support::runDesk("", "2");
	const auto names = support::lines(run.widget(1, "eLabel")["text"]);
	EXPECT_EQ(names.size(), 14u);
	EXPECT_EQ(names.front(), "MemTotal:  ");
	EXPECT_EQ(reach("read", "/proc/meminfo").trace.front(), R"(fopen("/proc/meminfo", "r") = stream)");
}

TEST(ThisComputer, says_that_busybox_is_missing_and_does_without)
{
	TempFolder folder;
	folder.write("ps", "#!/bin/sh\necho another ps\n", true);
	const std::vector<std::string> options = {"--plugin", REACHES_OUT};
	const DeskRun run =
		support::runDesk("", "", options, {{"REACH", "run"}, {"ON", "ps"}, {"PATH", folder.path()}});
	EXPECT_TRUE(has(run.outcome.err, "busybox is not installed")) << run.outcome.err;
	EXPECT_TRUE(has(run.outcome.err, "another ps\n")) << run.outcome.err;
	EXPECT_EQ(run.outcome.status, 0);
	EXPECT_FALSE(has(reach("run", "ps").outcome.err, "not installed"));
}

} // namespace receiver_test
