// Windows that change while they run, beyond what the service menu does.

#include "support.h"

#include <gtest/gtest.h>

#include <algorithm>

using support::DeskRun;
using support::Json;

namespace running_test
{

const char *const list = "eListBox<eListBoxEntryText>";

DeskRun running(const std::string &keys)
{
	const DeskRun run = support::runDesk("", keys, {"--plugin", support::testPlugin("running.so.0")});
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
	return run;
}

TEST(Running, shows_new_texts_and_places_at_once)
{
	const DeskRun run = running("red red exit");
	EXPECT_EQ(run.window(0)["title"], "Page");
	EXPECT_EQ(run.window(1)["title"], "renamed");
	EXPECT_EQ(run.window(0)["client"], Json({100, 80, 500, 400}));
	EXPECT_EQ(run.window(1)["client"], Json({60, 40, 500, 400}));
	EXPECT_EQ(run.widget(1, "eButton")["text"], "again");
	EXPECT_EQ(run.widget(1, "eButton")["rect"], Json({200, 160, 200, 60}));
	EXPECT_EQ(run.window(2), run.window(1)) << "the key is bound no more";
}

TEST(Running, binds_all_four_colours)
{
	const DeskRun run = running("");
	const char *const keys[] = {"red", "green", "yellow", "blue"};
	for (size_t i = 0; i < 4; ++i)
		EXPECT_EQ(run.widget(0, "eButton", i)["shortcut"], keys[i]);
}

TEST(Running, moves_the_focus_from_what_is_hidden_and_shows_it_again)
{
	const DeskRun run = running("green down ok green exit");
	EXPECT_EQ(run.widget(0, list)["focus"], true);
	EXPECT_EQ(run.window(1)["widgets"].size(), 5u) << "without the list";
	EXPECT_EQ(run.widget(1, "eButton", 0)["focus"], true);
	EXPECT_EQ(run.window(3)["title"], "renamed") << "ok presses what has the focus now";
	EXPECT_EQ(run.window(4)["widgets"].size(), 6u);
	EXPECT_EQ(run.widget(4, list)["current"], 0) << "a hidden list takes no keys";
	EXPECT_EQ(run.widget(4, "eButton", 0)["focus"], true) << "what is shown does not take the focus";
}

TEST(Running, reports_every_move_and_choice)
{
	const DeskRun run = running("down end end up ok exit");
	const char *const texts[] = {"", "two", "three", "three", "two", "chosen two"};
	for (size_t i = 0; i < 6; ++i)
		EXPECT_EQ(run.widget(i, "eLabel")["text"], texts[i]) << i;
	EXPECT_EQ(run.outcome.out, "plugin_exec returned -1: the viewer left the menu\n");
}

TEST(Running, takes_entries_out_and_puts_them_back)
{
	const DeskRun run = running("down blue blue up up blue exit");
	EXPECT_EQ(run.widget(2, list)["rows"], Json({"one", "three"}));
	EXPECT_EQ(run.widget(2, "eLabel")["text"], "three") << "the one that is current now";
	EXPECT_EQ(run.widget(2, list)["help"], "three");
	EXPECT_EQ(run.widget(3, list)["rows"], Json({"two", "one", "three"}));
	EXPECT_EQ(run.widget(3, list)["current"], 0);
	EXPECT_EQ(run.widget(3, "eLabel")["text"], "three") << "put back without a report";
	EXPECT_EQ(run.widget(6, list)["rows"], Json({"two", "three"}));
	EXPECT_EQ(
		std::count(run.trace.begin(), run.trace.end(), "eListBoxBase#1.append(eListBoxEntry#4, true, true)"),
		1)
		<< "an entry that comes back is a new one to the trace";
}

TEST(Running, goes_on_with_a_list_that_has_become_empty)
{
	const DeskRun run = running("down red blue ok up pagedown exit");
	for (size_t i = 3; i < 7; ++i) {
		EXPECT_EQ(run.widget(i, list)["rows"], Json::array()) << i;
		EXPECT_EQ(run.widget(i, "eLabel")["text"], "none") << i;
	}
	EXPECT_EQ(run.outcome.out, "plugin_exec returned -1: the viewer left the menu\n");
}

TEST(Running, asks_while_a_question_waits)
{
	const DeskRun run = running("yellow exit right ok exit ok yellow ok exit");
	EXPECT_EQ(run.widget(1, "eButton", 1)["focus"], true) << "no is the default answer";
	ASSERT_EQ(run.dump[2]["windows"].size(), 3u);
	EXPECT_EQ(run.window(2)["title"], "two");
	ASSERT_EQ(run.dump[4]["windows"].size(), 2u) << "not left: the first question still waits";
	EXPECT_EQ(run.window(4)["title"], "one");
	EXPECT_EQ(run.widget(4, "eButton", 1)["focus"], true);
	EXPECT_EQ(run.widget(6, "eLabel")["text"], "answer -1");
	EXPECT_EQ(run.widget(6, list)["focus"], true);
	EXPECT_EQ(run.widget(8, "eLabel")["text"], "answer 8");
}

TEST(Running, disposes_of_everything)
{
	// A sanitizer ends the run with another status on a leak or a second deletion.
	running("down blue exit");
	running("green yellow exit ok exit");
}

} // namespace running_test
