// The service menu and its entry point, by keys.

#include "support.h"

#include <gtest/gtest.h>

using namespace support;

namespace menu_test
{

TEST(Menu, stands_at_its_place_with_ten_rows_and_400_pixels)
{
	ReceiverFolder receiver;
	const DeskRun run = runDesk(receiver.path(), "");
	const Json &window = run.window(0);
	EXPECT_EQ(window["class"], "eVexloMenu");
	EXPECT_EQ(window["title"], "Vexlo service menu");
	EXPECT_EQ(window["client"][0], 170);
	EXPECT_EQ(window["client"][1], 145);
	EXPECT_EQ(window["client"][2], 400);
	const Json &list = run.widget(0, "eListBox<eListBoxEntryMenu>");
	EXPECT_EQ(list["rect"], Json({0, 0, 400, 200}));
	EXPECT_EQ(list["focus"], true);
	EXPECT_EQ(run.outcome.err, "");
}

TEST(Menu, holds_four_entries_with_their_numbered_help)
{
	ReceiverFolder receiver;
	const DeskRun run = runDesk(receiver.path(), "down down down down up");
	const char *list = "eListBox<eListBoxEntryMenu>";
	EXPECT_EQ(run.widget(0, list)["rows"], Json({"process info", "memory info", "scan log", "system info"}));
	EXPECT_EQ(run.widget(0, list)["count"], 4);
	const Lines help = {"(1) show current processes in memory",
	                    "(2) show current used and free memory",
	                    "(3) show scan log",
	                    "(4) show system info",
	                    "(1) show current processes in memory",
	                    "(4) show system info"};
	ASSERT_EQ(run.dump.size(), help.size());
	for (size_t i = 0; i < help.size(); ++i)
		EXPECT_EQ(run.widget(i, list)["help"], help[i]) << "after " << run.dump[i]["after"];
}

TEST(Menu, opens_the_screen_of_the_chosen_entry_and_no_other)
{
	ReceiverFolder receiver;
	receiver.ps("PID\n");
	receiver.df("Filesystem\n");
	const Lines screens = {"ePsDialog", "eMemInfoDialog", "eScanLogDialog", "eSysInfDialog"};
	std::string keys;
	for (size_t i = 0; i < screens.size(); ++i) {
		const DeskRun run = runDesk(receiver.path(), keys + "ok exit exit");
		ASSERT_EQ(run.dump.size(), i + 4);
		EXPECT_EQ(run.dump[i + 1]["windows"].size(), 1u) << "the menu is hidden";
		EXPECT_EQ(run.window(i + 1)["class"], screens[i]);
		EXPECT_EQ(run.window(i + 2)["class"], "eVexloMenu");
		EXPECT_EQ(run.widget(i + 2, "eListBox<eListBoxEntryMenu>")["count"], 4) << "it keeps its list";
		EXPECT_EQ(run.widget(i + 2, "eListBox<eListBoxEntryMenu>")["current"], i);
		EXPECT_EQ(run.dump[i + 3]["windows"].size(), 0u);
		keys += "down ";
	}
}

TEST(Menu, opens_the_entry_of_a_digit)
{
	ReceiverFolder receiver;
	receiver.ps("PID\n");
	receiver.df("Filesystem\n");
	const DeskRun run = runDesk(receiver.path(), "2 exit 4 exit 5 9 0 exit");
	EXPECT_EQ(run.window(1)["class"], "eMemInfoDialog");
	EXPECT_EQ(run.window(3)["class"], "eSysInfDialog");
	for (const size_t i : {4u, 5u, 6u, 7u})
		EXPECT_EQ(run.window(i)["class"], "eVexloMenu");
}

TEST(Menu, is_shown_again_after_a_screen_that_was_accepted)
{
	ReceiverFolder receiver;
	receiver.df("Filesystem\n");
	const DeskRun run = runDesk(receiver.path(), "up ok green exit");
	EXPECT_EQ(run.window(2)["class"], "eSysInfDialog");
	EXPECT_EQ(run.window(3)["class"], "eVexloMenu");
	EXPECT_EQ(run.outcome.out, "plugin_exec returned -1: the viewer left the menu\n");
}

} // namespace menu_test
