// The menu in its window, operated by mouse: a click acts like keys of the remote control.

#include "support.h"
#include "window_on_display.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <thread>

namespace host_in_window_test
{

using support::Command;
using support::eventually;
using support::Json;
using Keys = std::vector<std::string>;

class HostInWindow : public WindowOnDisplay
{
protected:
	void SetUp() override
	{
		openDisplay("1000x800x24");
		receiver.ps("  PID  Uid VmSize Stat Command\n" + support::repeat("    1 root 400 S init\n", 40));
		receiver.scanLog(support::repeat("a line\n", 100));
	}

	void start(const Command &options = {}, int output = 1)
	{
		Command command = {support::deskhostPath(), "--screen", "window",       "--root",
		                   receiver.path(),         "--dump",   folder / "dump"};
		command.insert(command.end(), options.begin(), options.end());
		openWindow(command, output);
		ASSERT_TRUE(eventually([&] { return !dump().empty(); }));
	}

	std::vector<Json> dump() const { return support::dumpSoFar(folder / "dump"); }

	/// Clicks, and expects these keys as the new records.
	void clickAndExpect(int x, int y, const Keys &expected, int button = 1)
	{
		click(x, y, button);
		EXPECT_TRUE(eventually([&] { return dump().size() >= seen + expected.size(); }));
		Keys pressed;
		const std::vector<Json> all = dump();
		for (size_t i = seen; i < all.size(); ++i)
			pressed.push_back(all[i]["after"]);
		EXPECT_EQ(pressed, expected) << "after a click at " << x << ", " << y;
		seen = all.size();
	}

	std::string title() const { return dump().back()["windows"].back()["title"]; }

	Json list() const
	{
		const Json top = dump().back()["windows"].back();
		for (const Json &widget : top["widgets"])
			if (widget.contains("rows"))
				return widget;
		return {};
	}

	support::ReceiverFolder receiver;
	support::TempFolder folder;
	size_t seen = 1; // the record of the start
};

TEST_F(HostInWindow, opens_the_entry_that_is_clicked)
{
	start();
	clickAndExpect(250, 156, {"ok"});                 // "process info", the current one
	clickAndExpect(600, 400, {"exit"}, 3);            // the right button
	clickAndExpect(250, 196, {"down", "down", "ok"}); // "scan log"
	EXPECT_EQ(title(), "Info");
	clickAndExpect(600, 400, {"exit"}, 3);
	clickAndExpect(250, 156, {"up", "up", "ok"});
	EXPECT_EQ(list()["count"], 40);
	clickAndExpect(600, 20, {"exit"}, 3);
	click(20, 20);   // the backdrop
	click(250, 300); // below the last entry
	clickAndExpect(250, 216, {"down", "down", "down", "ok"});
}

TEST_F(HostInWindow, is_named_after_the_plugin)
{
	start({"--plugin", support::testPlugin("running.so.0")});
	EXPECT_EQ(caption().rfind("running - ", 0), 0u) << caption();
}

TEST_F(HostInWindow, says_over_the_picture_why_a_watched_plugin_is_not_loaded)
{
	const std::string plugin = folder / "plugin.so.0";
	std::filesystem::copy_file(support::pluginPath(), plugin);
	start({"--watch", "--plugin", plugin});
	ASSERT_TRUE(eventually([&] { return pixel(700, 565) > 1; })) << "the picture is there";
	const unsigned long before = pixel(700, 565);
	const auto isCovered = [&] { return pixel(700, 565) != before; };
	const auto isClear = [&] { return pixel(700, 565) == before; };
	folder.write("plugin.so.0", "no plugin");
	EXPECT_TRUE(eventually(isCovered));
	press({"Down"});
	EXPECT_TRUE(eventually(isClear));
	folder.write("plugin.so.0", "nor is this");
	EXPECT_TRUE(eventually(isCovered));
	std::filesystem::copy_file(support::pluginPath(), plugin,
	                           std::filesystem::copy_options::overwrite_existing);
	EXPECT_TRUE(eventually(isClear));
}

TEST_F(HostInWindow, presses_the_button_and_the_answer_that_are_clicked)
{
	start({"--keys", "down down ok"});
	ASSERT_TRUE(eventually([&] { return dump().size() == 4; }));
	seen = 4;
	clickAndExpect(150, 500, {"red"}); // "delete log"
	EXPECT_EQ(title(), "Warning");
	const Json question = dump().back()["windows"].back();
	const auto middle = [&](const char *text) {
		for (const Json &widget : question["widgets"])
			if (widget["text"] == text)
				return std::pair<int, int>(question["client"][0].get<int>() + widget["rect"][0].get<int>() +
				                               widget["rect"][2].get<int>() / 2,
				                           question["client"][1].get<int>() + widget["rect"][1].get<int>() +
				                               widget["rect"][3].get<int>() / 2);
		return std::pair<int, int>(0, 0);
	};
	const auto [x, y] = middle("No");
	const bool noIsFocused = question["widgets"][2]["focus"];
	clickAndExpect(150, 500, {}); // a widget under the question does not react
	clickAndExpect(x, y, noIsFocused ? Keys{"ok"} : Keys{"right", "ok"});
	EXPECT_EQ(title(), "Info");
	EXPECT_TRUE(support::exists(receiver / "var/scaning.log"));
	clickAndExpect(150, 500, {"red"});
	const auto [yesX, yesY] = middle("Yes");
	clickAndExpect(yesX, yesY, noIsFocused ? Keys{"right", "ok"} : Keys{"ok"});
	EXPECT_TRUE(eventually([&] { return !support::exists(receiver / "var/scaning.log"); }));
}

TEST_F(HostInWindow, asks_before_it_kills_whatever_mouse_and_keyboard_do_at_once)
{
	start({"--keys", "ok"});
	ASSERT_TRUE(eventually([&] { return dump().size() == 2; }));
	const auto mouse = [&](Command words) {
		const Command place = {"mousemove", "--window", std::to_string(window), "280", "321"};
		words.insert(words.begin(), place.begin(), place.end()); // on a row, and on the later "Yes"
		tool(words);
	};
	// Waits, then counts the new records of "ok".
	const auto oks = [&] {
		std::this_thread::sleep_for(std::chrono::milliseconds(700));
		const std::vector<Json> all = dump();
		int count = 0;
		for (; seen < all.size(); ++seen)
			count += all[seen]["after"] == "ok";
		return count;
	};
	const auto isAsked = [&](const char *how) {
		EXPECT_EQ(oks(), 1) << how;
		EXPECT_EQ(title(), "kill pid") << how;
		press({"Escape"});
		EXPECT_EQ(oks(), 0);
		EXPECT_EQ(title(), "Info") << how;
	};
	seen = 2;
	mouse({"click", "--repeat", "2", "--delay", "100", "1"});
	isAsked("a double click");
	mouse({"click", "--repeat", "4", "--delay", "1", "1"});
	isAsked("four clicks");
	tool({"key", "--delay", "1", "Return", "Return", "Return"});
	isAsked("three times at once");
	tool({"key", "--delay", "150", "Return", "Return", "Return"});
	isAsked("three times");
	tool({"keydown", "Return", "sleep", "1.5", "keyup", "Return"});
	isAsked("held");
	mouse({"mousedown", "1", "key", "Return", "sleep", "0.3", "mouseup", "1"});
	isAsked("pressed before and let go after");
	mouse({"click", "1"});
	EXPECT_EQ(oks(), 1);
	mouse({"mousedown", "1", "mousemove_relative", "160", "0", "mouseup", "1"});
	EXPECT_EQ(oks(), 0) << "let go on another answer";
	EXPECT_EQ(title(), "kill pid");
	mouse({"click", "1"});
	EXPECT_EQ(oks(), 1);
	EXPECT_EQ(title(), "Vexlo service menu") << "yes";
}

TEST_F(HostInWindow, pages_where_the_scroll_bar_is_clicked)
{
	start({"--keys", "down down ok"});
	ASSERT_TRUE(eventually([&] { return dump().size() == 4; }));
	seen = 4;
	clickAndExpect(650, 400, {"pagedown"}); // below the thumb
	EXPECT_EQ(list()["rows"].size(), 20u);
	clickAndExpect(650, 80, {"pageup"});
	EXPECT_EQ(list()["current"], 0);
	clickAndExpect(300, 200, {"down"}, 5); // the wheel
	clickAndExpect(300, 200, {"up"}, 4);
}

TEST_F(HostInWindow, ends_at_once_when_it_is_closed_under_many_keys)
{
	// These keys would take very long.
	start({"--keys", support::repeat("down ", 20000), "--plays", "1000000"});
	askToClose();
	EXPECT_EQ(program.line(), "plugin_exec returned -1: the viewer left the menu");
	EXPECT_EQ(program.exitStatus(), 0);
}

TEST_F(HostInWindow, ends_when_it_is_closed_while_a_command_runs)
{
	receiver.write("bin/ps", "#!/bin/sh\nexec sleep 1000\n", true);
	start();
	click(250, 156);
	ASSERT_TRUE(eventually([&] { return dump().size() == 1; }));
	askToClose();
	EXPECT_EQ(program.exitStatus(), 1);
}

TEST_F(HostInWindow, ends_while_the_display_does_not_answer)
{
	start();
	server.signal(SIGSTOP);
	program.signal(SIGTERM);
	EXPECT_EQ(program.exitStatus(), 128 + SIGTERM);
	server.signal(SIGCONT);
}

TEST_F(HostInWindow, ends_while_the_display_does_not_answer_a_picture)
{
	start({"--keys", support::repeat("down ", 20000), "--plays", "1000000"});
	server.signal(SIGSTOP);
	std::this_thread::sleep_for(std::chrono::milliseconds(300)); // until it waits for the display
	program.signal(SIGTERM);
	EXPECT_EQ(program.exitStatus(), 128 + SIGTERM);
	server.signal(SIGCONT);
}

TEST_F(HostInWindow, says_where_it_cannot_save_a_picture)
{
	openWindow(
		{"sh", "-c",
	     "cd /proc; exec '" + support::deskhostPath() + "' --screen window --root '" + receiver.path() + "'"},
		2);
	press({"F12"});
	const std::string line = program.line();
	EXPECT_EQ(line.find("deskhost: cannot write '/proc/deskhost-1.png': "), 0u) << line;
	EXPECT_NE(line.find("; start deskhost in a folder that can be written"), line.npos) << line;
}

TEST_F(HostInWindow, says_that_somebody_has_destroyed_it)
{
	start({}, 2);
	XDestroyWindow(view, window);
	XFlush(view);
	EXPECT_EQ(program.line(), "deskhost: somebody has destroyed the window");
	EXPECT_EQ(program.exitStatus(), 1);
}

/// A display with a pixel format that the host cannot draw.
class HostWithOtherColours : public WindowOnDisplay
{
};

TEST_F(HostWithOtherColours, does_without_and_says_so)
{
	const support::ReceiverFolder receiver;
	for (const char *geometry : {"800x700x8", "800x700x30"}) {
		openDisplay(geometry);
		const support::Outcome outcome = support::run(
			{support::deskhostPath(), "--root", receiver.path(), "--keys", "exit"}, onDisplay(name));
		EXPECT_EQ(outcome.status, 0) << outcome.err;
		EXPECT_EQ(outcome.out, "plugin_exec returned -1: the viewer left the menu\n");
		EXPECT_EQ(outcome.err.find("deskhost: cannot open a window: "), 0u) << outcome.err;
		EXPECT_NE(outcome.err.find("; this is --screen none\n"), outcome.err.npos) << outcome.err;
		closeAll();
	}
}

/// A display without other programs.
class HostAloneOnADisplay : public WindowOnDisplay
{
};

TEST_F(HostAloneOnADisplay, stays_connected_until_its_end)
{
	startDisplay("800x700x24", {"-terminate"}); // ends when its last client leaves
	const support::ReceiverFolder receiver;
	const support::Outcome outcome = support::run(
		{support::deskhostPath(), "--screen", "window", "--root", receiver.path(), "--keys", "exit"},
		onDisplay(name));
	EXPECT_EQ(outcome.status, 0);
	EXPECT_EQ(outcome.out, "plugin_exec returned -1: the viewer left the menu\n");
	EXPECT_EQ(outcome.err, "");
	EXPECT_EQ(server.exitStatus(), 0);
}

TEST(HostWithAStaleDisplay, does_without_and_says_so)
{
	const support::ReceiverFolder receiver;
	for (const char *driver : {"--unset=SDL_VIDEODRIVER", "SDL_VIDEODRIVER="}) {
		const support::Outcome outcome = support::run(
			{"env", driver, support::deskhostPath(), "--root", receiver.path(), "--keys", "exit"},
			onDisplay(":63999"));
		EXPECT_EQ(outcome.status, 0);
		EXPECT_EQ(outcome.out, "plugin_exec returned -1: the viewer left the menu\n");
		EXPECT_EQ(outcome.err.find("deskhost: cannot open a window: display ':63999'"), 0u) << outcome.err;
		EXPECT_NE(outcome.err.find("; this is --screen none\n"), outcome.err.npos) << outcome.err;
	}
}

/// A display that accepts connections and never answers.
struct SilentDisplay
{
	SilentDisplay()
	{
		sockaddr_in address = {};
		address.sin_family = AF_INET;
		address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
		do
			address.sin_port = htons(static_cast<uint16_t>(6000 + ++number));
		while (bind(socket, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 && number < 1000);
		listen(socket, 5);
	}
	~SilentDisplay() { close(socket); }
	SilentDisplay(const SilentDisplay &) = delete;
	SilentDisplay &operator=(const SilentDisplay &) = delete;

	std::string name() const { return "127.0.0.1:" + std::to_string(number); }

	const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
	int number = 200;
};

TEST(HostWithASilentDisplay, does_without_and_says_so)
{
	const SilentDisplay display;
	const support::ReceiverFolder receiver;
	Command command = {support::deskhostPath(), "--root", receiver.path(), "--keys", "exit"};
	support::Outcome outcome = support::run(command, onDisplay(display.name()));
	EXPECT_EQ(outcome.status, 0);
	EXPECT_EQ(outcome.out, "plugin_exec returned -1: the viewer left the menu\n");
	EXPECT_NE(outcome.err.find("the display does not answer"), outcome.err.npos) << outcome.err;

	command.insert(command.end(), {"--screen", "window"});
	outcome = support::run(command, onDisplay(display.name()));
	EXPECT_EQ(outcome.status, 2);
	EXPECT_EQ(outcome.err, "deskhost: cannot open a window: the display does not answer; set DISPLAY or use "
	                       "--screen terminal or --screen none\n");
}

} // namespace host_in_window_test
