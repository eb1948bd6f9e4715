// The system info screen, by keys.

#include "support.h"

#include <gtest/gtest.h>

using namespace support;

namespace sysinf_test
{

constexpr size_t opened = 4; // the key number: after "down down down ok"
const std::string keys = "down down down ok ";

const std::string onePartition = "dev:    size   erasesize  name\n"
								 "mtd0: 00020000 00004000 \"boot loader\"\n";
const std::string threeMounts = "Filesystem                Size      Used Available Use% Mounted on\n"
								"/dev/root                 7.8M      3.1M      4.7M  40% /\n"
								"tmpfs                    30.2M      4.0K     30.2M   0% /tmp\n"
								"/dev/sda1               149.0G    112.6G     36.4G  76% /media/hdd\n";

TEST(SysInf, overlaps_and_overhangs_as_laid_out)
{
	ReceiverFolder receiver;
	receiver.mtd(onePartition);
	receiver.df(threeMounts);
	const DeskRun run = runDesk(receiver.path(), keys);
	EXPECT_EQ(run.window(opened)["client"], Json({60, 70, 600, 450}));
	const auto rect = [&](size_t nth) { return run.widget(opened, "eLabel", nth)["rect"]; };
	EXPECT_EQ(rect(1), Json({5, 25, 70, 40}));
	EXPECT_EQ(rect(2), Json({70, 25, 100, 40}));
	EXPECT_EQ(rect(4), Json({300, 25, 350, 40}));
	EXPECT_EQ(rect(5), Json({5, 60, 240, 100}));
	EXPECT_EQ(rect(6), Json({5, 85, 270, 100}));
	EXPECT_EQ(rect(7), Json({280, 85, 500, 100}));

	const DeskRun empty = runDesk(ReceiverFolder().path(), keys);
	EXPECT_EQ(empty.widget(opened, "eLabel", 5)["rect"], Json({5, 40, 240, 40}));
}

TEST(SysInf, gives_the_button_the_focus_and_the_green_key)
{
	ReceiverFolder receiver;
	receiver.df(threeMounts);
	const DeskRun run = runDesk(receiver.path(), keys);
	const Json &button = run.widget(opened, "eButton");
	EXPECT_EQ(button["focus"], true);
	EXPECT_EQ(button["shortcut"], "green");
	EXPECT_EQ(button["text"], "OK");
	EXPECT_EQ(button["rect"], Json({10, 400, 160, 40}));
}

TEST(SysInf, does_not_break_with_forty_mounts_and_bad_bytes)
{
	ReceiverFolder receiver;
	receiver.mtd("heading\n" + repeat("mtd1: 80000000 00020000 \"\xff\xfe\x1b[2J\"\n", 30));
	receiver.df("heading\n" + repeat("/dev/x\xff 1G 1G 1G 1% /m\x1b\n", 40) + std::string("a\0b\n", 4));
	support::TempFolder pictures;
	const DeskRun run = runDesk(receiver.path(), keys + "ok exit", {"--pictures", pictures.path()});
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
	EXPECT_EQ(run.widget(opened, "eLabel", 7)["rect"], Json({280, 20 * 31 + 45, 500, 20 * 43}));
	EXPECT_EQ(run.window(opened + 1)["class"], "eVexloMenu");
}

TEST(SysInf, shows_this_computers_mounts_without_a_root)
{
	const DeskRun run = runDesk("", keys + "exit exit", {"--as-is"});
	const Lines shown = support::lines(run.widget(opened, "eLabel", 7)["text"]);
	const Lines printed = support::lines(support::run({"df", "-h"}).out);
	EXPECT_EQ(shown.size(), printed.size()) << "a row for every line";
}

} // namespace sysinf_test
