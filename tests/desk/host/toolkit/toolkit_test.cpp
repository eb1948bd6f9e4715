// Plugins that use more of the toolkit than the service menu, and plugins with mistakes.

#include "support.h"

#include <gtest/gtest.h>

using namespace support;

namespace toolkit_test
{

TEST(Toolkit, survives_a_plugin_that_does_more_than_it_must)
{
	const Lines options = {"--plugin", testPlugin("widgets.so.0")};
	// Down twice, delete the third entry; up wraps from the first; page and end; leave.
	DeskRun run = runDesk("", "down down ok home up pageup pagedown end exit", options);
	const char *list = "eListBox<eListBoxEntryText>";
	EXPECT_EQ(run.widget(0, list)["rows"], Json({"one", "two", "three", "four", "five"}));
	EXPECT_EQ(run.widget(2, "eLabel")["text"], "three") << "the selection reports that it moves";
	EXPECT_EQ(run.widget(3, list)["rows"], Json({"one", "two", "four", "five", "six"}));
	EXPECT_EQ(run.widget(5, list)["current"], 5) << "up from the first entry is the last one";
	EXPECT_EQ(run.widget(6, list)["current"], 0);
	EXPECT_EQ(run.widget(7, list)["current"], 5);
	EXPECT_EQ(run.outcome.out, "plugin_exec returned 5\n") << "the first end of a run is its end";
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;

	// A question with one answer; a slot deletes its label while the signal runs.
	run = runDesk("", "yellow exit right ok ok left exit", options);
	ASSERT_EQ(run.dump[1]["windows"].size(), 2u);
	EXPECT_EQ(run.window(1)["widgets"].size(), 2u) << "the question and its one answer";
	EXPECT_EQ(run.widget(1, "eButton")["focus"], true);
	EXPECT_EQ(run.widget(2, "eLabel")["text"], "gone");
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
}

TEST(Toolkit, keeps_questions_on_the_screen_whatever_the_font_size)
{
	ReceiverFolder receiver;
	receiver.scanLog("a\n");
	const std::string skin = support::readFile(support::sourcePath("desk/skins/default.toml"));
	const size_t from = skin.find("fontsize = 20");
	ASSERT_NE(from, skin.npos) << "the default skin has no fontsize to change";
	for (const int fontSize : {1, 60, 200}) {
		std::string changed = skin;
		changed.replace(from, 13, "fontsize = " + std::to_string(fontSize));
		const DeskRun run =
			runDesk(receiver.path(), "3 red", {"--skin", receiver.write("skin.toml", changed)});
		const Json &client = run.window(2)["client"];
		EXPECT_GE(client[1], 0) << fontSize;
		EXPECT_LE(client[1].get<int>() + client[3].get<int>(), 576) << fontSize;
	}
}

TEST(Toolkit, draws_what_is_farther_away_than_numbers_reach)
{
	const TempFolder folder;
	const DeskRun run =
		runDesk("", "ok down", {"--plugin", testPlugin("far.so.0"), "--pictures", folder / "pictures"});
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
	EXPECT_EQ(run.outcome.out, "plugin_exec returned 4\n");
	const Json &client = run.window(0)["client"]; // the question's client area
	EXPECT_GE(client[1], 0);
	EXPECT_LE(client[1].get<int>() + client[3].get<int>(), 576);
	EXPECT_EQ(run.widget(0, "eLabel")["text"].get<std::string>().size(), 250000u);
}

TEST(Toolkit, survives_what_is_destroyed_while_it_is_in_use)
{
	const Lines options = {"--plugin", testPlugin("lifetimes.so.0")};
	const auto focused = [](const Json &window) {
		int count = 0;
		for (const Json &widget : window["widgets"])
			count += widget["focus"] == true;
		return count;
	};

	DeskRun run = runDesk("", "exit exit", options);
	EXPECT_EQ(run.dump[0]["windows"][0]["widgets"].size(), 6u);
	EXPECT_EQ(run.outcome.out, "plugin_exec returned -1: the viewer left the menu\n")
		<< "the list has gone while it was left";
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;

	// A widget two levels down gets the focus, and is deleted with its parents.
	run = runDesk("", "ok red down exit", options);
	EXPECT_EQ(focused(run.window(1)), 0) << "it is deeper than the description goes";
	EXPECT_EQ(focused(run.window(2)), 1);
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;

	run = runDesk("", "yellow exit", options);
	EXPECT_EQ(focused(run.window(1)), 1) << "not on what is hidden";

	run = runDesk("", "green", options);
	EXPECT_EQ(run.outcome.out, "plugin_exec returned 77\n") << "the window has gone while it ran";
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
}

TEST(Toolkit, knows_which_entries_are_left)
{
	// Leave the list. "2" moves to an entry that its handler removes, so it is not confirmed. "2" again confirms the
	// entry that moved up, "1" the first one. The last "2" deletes the menu during the move.
	const DeskRun run = runDesk("", "exit 2 2 1 2", {"--plugin", testPlugin("departures.so.0")});
	const Json page = run.widget(0, "eListBox<eListBoxEntryText>");
	EXPECT_EQ(page["rows"], Json({"pair", "partner", "current"}));
	EXPECT_EQ(page["current"], 2);
	EXPECT_EQ(run.outcome.out, "plugin_exec returned 21\n");
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
}

TEST(Toolkit, reports_the_entry_that_becomes_current_when_one_is_taken_out)
{
	const DeskRun run = runDesk("", "ok home ok exit", {"--plugin", testPlugin("widgets.so.0")});
	EXPECT_EQ(run.widget(1, "eLabel")["text"], "two");
	EXPECT_EQ(run.widget(3, "eLabel")["text"], "three");
}

TEST(Toolkit, notices_once_what_a_plugin_can_hardly_mean)
{
	const support::TempFolder folder;
	const std::string plugin = testPlugin("mistakes.so.0");
	const DeskRun run = runDesk("", "down down exit exit", {"--plugin", plugin, "--debug", folder / "debug"});
	const Lines expected = {
		R"(eLabel#1: setShortcutPixmap("orange"): no colour key; the names are red, green, yellow and blue)",
		R"(eButton#3: setShortcut("purple"): no colour key; the names are red, green, yellow and blue)",
		R"(eLabel#4: the skin has no decoration "eFrame"; it has eLabel, eButton and eListBox)",
		R"(eWindow#1: exec() without show(): nobody sees it; call show() before: "Mistakes")",
		R"(eButton#2: "first" has the key "green" already, which presses only that; give it another one)",
		R"(eLabel#1: its text is cut off, because there is room for 11 characters only: "a text that is too long")",
		R"(eLabel#2: it has no size and is not seen; call resize(): "without a size")",
		R"(eListBoxBase#1: the key of an entry is no eString made with new, as the list box would delete: "number")",
		R"(eWindow#2: the window is still shown after plugin_exec has returned; hide() it, or end its life: "left")"};
	Lines said = support::lines(run.outcome.err);
	for (std::string &line : said)
		line.erase(0, line.rfind("deskhost: mistakes.so.0: ", 0) == 0 ? 25 : 0);
	EXPECT_EQ(said, expected);
	const Lines debug = support::lines(support::readFile(folder / "debug"));
	for (const std::string &line : support::lines(run.outcome.err))
		EXPECT_EQ(std::count(debug.begin(), debug.end(), line), 1) << line;
	EXPECT_EQ(run.outcome.status, 0) << "they are no errors";
	EXPECT_EQ(run.dump.size(), 5u);

	const DeskRun strict = runDesk("", "down down exit exit", {"--plugin", plugin, "--strict"});
	EXPECT_EQ(strict.outcome.status, 1);
	EXPECT_EQ(support::lines(strict.outcome.err).back(),
	          "deskhost: what was noticed about the plugin is an error with --strict; see above");
}

TEST(Toolkit, debugs_keys_and_calls_in_order_with_what_is_noted)
{
	const support::TempFolder folder;
	ReceiverFolder receiver;
	receiver.ps("  PID\n");
	const DeskRun run = runDesk(receiver.path(), "down up ok exit exit", {"--debug", folder / "debug"});
	Lines expected = run.trace;
	// A debug line has its place in the order of calls, and a key follows the call that waits for it.
	Lines debug = support::lines(support::readFile(folder / "debug"));
	const auto at = [&](const std::string &line) {
		return std::find(debug.begin(), debug.end(), line) - debug.begin();
	};
	EXPECT_LT(at("eSetupWindow#1.exec()"), at("key ok"));
	EXPECT_LT(at("key ok"), at("eSetupWindow#1.hide()"));
	EXPECT_LT(at("eSetupWindow#1.hide()"), at("key exit"));
	EXPECT_EQ(std::count(debug.begin(), debug.end(), "key exit"), 2);
	// A signal comes before the calls that it causes.
	const auto after = [&](const std::string &line) { return debug.at(static_cast<size_t>(at(line)) + 1); };
	EXPECT_EQ(after("key up"), "eListBoxBase#1.selchanged(eListBoxEntry#1)");
	EXPECT_EQ(after("key ok"), "eListBoxBase#1.selected(eListBoxEntry#1)");
	EXPECT_EQ(std::count(debug.begin(), debug.end(), "eListBoxBase#1.selected(null)"), 1);
	for (const std::string &line : run.trace)
		EXPECT_EQ(line.find(".sel"), line.npos) << "it is no call: " << line;
	const auto isElsewhere = [](const std::string &line) { return line.rfind("eDebug(", 0) == 0; };
	const auto isNoCall = [&](const std::string &line) {
		return std::find(expected.begin(), expected.end(), line) == expected.end();
	};
	debug.erase(std::remove_if(debug.begin(), debug.end(), isNoCall), debug.end());
	expected.erase(std::remove_if(expected.begin(), expected.end(), isElsewhere), expected.end());
	EXPECT_EQ(debug, expected) << "no call is left out";
	EXPECT_EQ(run.outcome.err.find("key ok"), std::string::npos) << "standard error has none of it";
}

TEST(Toolkit, notices_nothing_about_the_service_menu)
{
	Lines languages = support::lines(support::readFile(support::sourcePath("po/LINGUAS")));
	languages.push_back("en");
	for (const std::string &language : languages) {
		const support::TempFolder folder;
		std::filesystem::copy(support::sourcePath("samples/receiver"), folder / "receiver",
		                      std::filesystem::copy_options::recursive);
		const DeskRun run =
			runDesk(folder / "receiver", "1 down ok left ok exit 2 exit 3 red left ok exit 4 down exit exit",
		            {"--lang", language, "--strict"});
		EXPECT_EQ(run.outcome.status, 0) << language << run.outcome.err;
		EXPECT_EQ(run.outcome.err.find("vexlomenu.so.0: "), std::string::npos) << run.outcome.err;
	}
}

TEST(Toolkit, empties_a_list_entry_by_entry)
{
	const DeskRun run =
		runDesk("", "ok ok ok ok ok ok ok ok down up end exit", {"--plugin", testPlugin("widgets.so.0")});
	EXPECT_EQ(run.widget(7, "eListBox<eListBoxEntryText>")["count"], 0);
	EXPECT_EQ(run.widget(7, "eListBox<eListBoxEntryText>")["current"], -1);
	EXPECT_EQ(run.widget(7, "eLabel")["text"], "none");
	EXPECT_EQ(run.outcome.out, "plugin_exec returned 5\n");
}

} // namespace toolkit_test
