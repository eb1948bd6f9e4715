// The desk host with the plugin in a terminal.

#include "support.h"
#include "tmux.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

namespace host_in_terminal_test
{

const std::string helpLine = "Arrows j k move";

std::string host(const std::string &options = {})
{
	return support::deskhostPath() + " --plugin " + support::pluginPath() + " " + options;
}

class HostInTerminal : public testing::Test
{
protected:
	HostInTerminal()
	{
		receiver.ps("  PID USER     COMMAND\n    1 root     init\n   63 root     syslogd\n");
		receiver.df("Filesystem Size Used Available Use% Mounted on\n/dev/root 11.0M 10.6M 400.0k 96% /\n");
		receiver.mtd("dev:    size   erasesize  name\nmtd0: 00040000 00020000 \"boot loader\"\n");
		receiver.meminfo("        total:    used:    free:  shared: buffers:  cached:\n"
		                 "Mem:  63373312 61894656  1478656        0  2785280 29470720\n"
		                 "Swap:        0        0        0\n"
		                 "MemTotal:        61888 kB\nMemFree:          1444 kB\n");
		receiver.scanLog("first line\nsecond line\n");
	}

	/// Starts the desk host and waits for the menu.
	void open(const Tmux &terminal, const std::string &options = {}) const
	{
		terminal.start(host("--root " + receiver.path() + " " + options));
		ASSERT_TRUE(terminal.shows("Vexlo service menu"));
		ASSERT_TRUE(terminal.shows(helpLine));
	}

	support::ReceiverFolder receiver;
};

TEST_F(HostInTerminal, all_four_screens_can_be_read_and_left)
{
	Tmux terminal(80, 24);
	open(terminal);
	EXPECT_TRUE(terminal.shows("(1) show current processes in memory"));

	terminal.press("Enter");
	EXPECT_TRUE(terminal.shows("PID USER     COMMAND"));
	EXPECT_TRUE(terminal.shows("63 root     syslogd"));
	terminal.press("Escape");

	EXPECT_TRUE(terminal.shows("Vexlo service menu"));
	terminal.press("j");
	EXPECT_TRUE(terminal.shows("(2) show current used and free memory"));
	terminal.press("Enter");
	EXPECT_TRUE(terminal.shows("Memory info"));
	EXPECT_TRUE(terminal.shows("MemTotal:          61888 KB"));
	terminal.press("q");

	EXPECT_TRUE(terminal.shows("Vexlo service menu"));
	terminal.press("3");
	EXPECT_TRUE(terminal.shows("1 second line"));
	EXPECT_TRUE(terminal.shows("[R]"));
	terminal.press("q");

	EXPECT_TRUE(terminal.shows("Vexlo service menu"));
	terminal.press("4");
	EXPECT_TRUE(terminal.shows("MTD blocks:"));
	EXPECT_TRUE(terminal.shows("mtd0:   00040000"));
	EXPECT_TRUE(terminal.shows("/dev/root"));
	terminal.press("F2");

	EXPECT_TRUE(terminal.shows("Vexlo service menu"));
	terminal.press("q");
	EXPECT_TRUE(terminal.shows("plugin_exec returned "));
	EXPECT_TRUE(terminal.shows("status=0 $"));
	EXPECT_EQ(terminal.state(), "0 1 0");
}

TEST_F(HostInTerminal, the_sample_receiver_is_shown_as_in_the_readme)
{
	std::string shown;
	for (const std::string &line : support::lines(support::readFile(support::sourcePath("README.md"))))
		if (line.rfind("      ", 0) == 0 || line.rfind("     Arrows", 0) == 0)
			shown += line.substr(4) + '\n';
	ASSERT_EQ(support::lines(shown).size(), 24u);

	support::TempFolder copy;
	std::filesystem::copy(support::sourcePath("samples/receiver"), copy / "receiver",
	                      std::filesystem::copy_options::recursive);
	Tmux terminal(80, 24);
	terminal.start(host("--root " + (copy / "receiver") + " --keys 'down down ok red'"));
	EXPECT_TRUE(terminal.shows("Delete /var/scaning.log ?"));
	EXPECT_TRUE(terminal.shows(helpLine));
	EXPECT_EQ(terminal.screen(), shown);
}

TEST_F(HostInTerminal, exit_ends_a_tool_that_outlives_the_plugin)
{
	const std::string tool = receiver.write("tool", "#!/bin/sh\n\"$@\"\n: >\"$0.waits\"\nsleep 1000\n", true);
	Tmux terminal(80, 24);
	open(terminal, "--through " + tool);
	terminal.press("q");
	ASSERT_TRUE(support::eventually([&] { return support::exists(tool + ".waits"); }));
	terminal.press("q");
	EXPECT_TRUE(terminal.shows("status=1")) << "it would be waited for for a minute";
}

TEST_F(HostInTerminal, a_log_is_deleted_when_the_viewer_says_yes)
{
	Tmux terminal(80, 24);
	open(terminal);
	terminal.press("3");
	ASSERT_TRUE(terminal.shows("0 first line"));
	terminal.press("r");
	ASSERT_TRUE(terminal.shows("Delete /var/scaning.log ?"));
	terminal.press("Escape");
	ASSERT_TRUE(terminal.losesSight("Delete /var/scaning.log ?"));
	EXPECT_TRUE(support::exists(receiver / "var/scaning.log"));
	terminal.press("F1");
	ASSERT_TRUE(terminal.shows("Delete /var/scaning.log ?"));
	terminal.press("Enter");
	ASSERT_TRUE(terminal.shows("Vexlo service menu"));
	EXPECT_FALSE(support::exists(receiver / "var/scaning.log"));
	terminal.press("Enter");
	EXPECT_TRUE(terminal.losesSight("Vexlo service menu"));
	EXPECT_EQ(terminal.screen().find("first line"), std::string::npos);
	terminal.press("C-c");
	ASSERT_TRUE(terminal.shows("status=130 $"));
	EXPECT_EQ(terminal.state(), "0 1 0");
}

TEST_F(HostInTerminal, a_process_is_killed_and_no_other)
{
	Tmux terminal(80, 24);
	terminal.enter("sleep 4321 & echo $! >" + terminal.folder() + "/victim; sleep 4322 & echo $! >" +
	               terminal.folder() + "/bystander; echo rea''dy");
	ASSERT_TRUE(terminal.shows("ready"));
	const std::string victim = support::lines(support::readFile(terminal.folder() + "/victim")).at(0);
	const std::string bystander = support::lines(support::readFile(terminal.folder() + "/bystander")).at(0);
	const auto hasEnded = [](const std::string &process) { return support::hasEnded(std::stoi(process)); };

	terminal.start(host("--as-is")); // shows this computer
	ASSERT_TRUE(terminal.shows("Vexlo service menu"));
	terminal.press("Enter");
	ASSERT_TRUE(terminal.shows(victim));
	const std::vector<std::string> rows = support::lines(terminal.screen());
	size_t first = 0, wanted = 0;
	for (size_t i = 0; i < rows.size(); ++i) {
		if (first == 0 && i > 1 && rows[i].find("sh") != std::string::npos)
			first = i;
		if (rows[i].find(victim) != std::string::npos)
			wanted = i;
	}
	ASSERT_GT(first, 0u);
	ASSERT_GE(wanted, first);
	for (size_t i = first; i < wanted; ++i)
		terminal.press("j");
	terminal.press("Enter");
	ASSERT_TRUE(terminal.shows("Kill " + victim + " pid?"));
	terminal.press("Right");
	terminal.press("Enter"); // no
	ASSERT_TRUE(terminal.losesSight("Kill " + victim + " pid?"));
	EXPECT_FALSE(hasEnded(victim));
	terminal.press("Enter");
	ASSERT_TRUE(terminal.shows("Kill " + victim + " pid?"));
	terminal.press("5");     // ignored, but the next Enter is no repeat
	terminal.press("Enter"); // yes
	ASSERT_TRUE(terminal.shows("Vexlo service menu"));
	EXPECT_TRUE(support::eventually([&] { return hasEnded(victim); }));
	EXPECT_FALSE(hasEnded(bystander));
	terminal.press("q");
	EXPECT_TRUE(terminal.shows("plugin_exec returned "));
}

TEST_F(HostInTerminal, a_question_is_not_answered_by_what_was_pressed_before_it_could_be_seen)
{
	const std::string question = "Kill 1 pid?";
	Tmux terminal(80, 24);
	terminal.start(host("--root " + receiver.path() + " --keys ok"));
	ASSERT_TRUE(terminal.shows("1 root     init"));
	const auto isAsked = [&] { return terminal.screen().find(question) != std::string::npos; };
	terminal.send({'\r', '\r', '\r'});
	EXPECT_TRUE(terminal.shows(question));
	std::this_thread::sleep_for(std::chrono::milliseconds(300));
	EXPECT_TRUE(isAsked()) << "three at once";
	for (int i = 0; i < 30; ++i) {
		terminal.send({'\r'});
		std::this_thread::sleep_for(std::chrono::milliseconds(30));
	}
	EXPECT_TRUE(isAsked()) << "one that is held";
	terminal.press("Escape");
	EXPECT_TRUE(terminal.losesSight(question));

	terminal.send({'\r', '\033', 'O', 'C', '\r'}); // right selects "No"
	EXPECT_TRUE(terminal.shows(question));
	std::this_thread::sleep_for(std::chrono::milliseconds(300));
	EXPECT_TRUE(isAsked()) << "another key";
	std::this_thread::sleep_for(std::chrono::milliseconds(900));
	terminal.press("Enter");
	EXPECT_TRUE(terminal.losesSight(question)) << "pressed once more, by who has seen it";
	EXPECT_TRUE(terminal.shows("Vexlo service menu")) << "yes";
	terminal.press("q");
	EXPECT_TRUE(terminal.shows("reported only"));
}

TEST_F(HostInTerminal, what_watching_comes_to_stands_over_the_picture)
{
	const std::string plugin = receiver / "plugin.so.0";
	const auto compile = [&] {
		std::filesystem::copy_file(support::pluginPath(), plugin,
		                           std::filesystem::copy_options::overwrite_existing);
	};
	compile();
	Tmux terminal(80, 24);
	terminal.start(support::deskhostPath() + " --watch --plugin " + plugin + " --root " + receiver.path());
	ASSERT_TRUE(terminal.shows(helpLine));
	receiver.write("plugin.so.0", "no plugin");
	EXPECT_TRUE(terminal.shows("deskhost: cannot load the plugin"));
	EXPECT_TRUE(terminal.shows("Vexlo service menu"));
	terminal.press("F9");
	EXPECT_TRUE(terminal.shows("The last debug lines"));
	EXPECT_TRUE(terminal.shows("--plugin")) << "the end of a line that is longer than a row";
	terminal.press("F9");
	EXPECT_TRUE(terminal.losesSight("cannot load the plugin"));
	EXPECT_TRUE(terminal.shows(helpLine));
	receiver.write("plugin.so.0", "nor is this");
	EXPECT_TRUE(terminal.shows("deskhost: cannot load the plugin"));
	compile();
	EXPECT_TRUE(terminal.losesSight("cannot load the plugin"));
	EXPECT_TRUE(terminal.shows(helpLine));

	terminal.press("3");
	ASSERT_TRUE(terminal.shows("1 second line"));
	terminal.press("r");
	ASSERT_TRUE(terminal.shows("Delete /var/scaning.log ?"));
	terminal.press("Enter");
	ASSERT_TRUE(terminal.shows("Vexlo service menu"));
	compile();
	EXPECT_TRUE(terminal.shows("not pressed again, because it killed or deleted: ok"));
	ASSERT_TRUE(terminal.shows("Delete /var/scaning.log ?")); // no key is taken before the question is shown
	terminal.press("Down");                                   // moves as usual
	EXPECT_TRUE(terminal.losesSight("not pressed again"));
}

TEST_F(HostInTerminal, commands_reach_no_terminal)
{
	const std::string script = "{ printf 'LO''ST' >/dev/tty; stty -echo </dev/tty; } "
							   "2>/dev/null\nreached=$?\nset -m; sleep 0 & wait\n"
							   "printf '\\033[2J\\033[HOUT OF ORDER\\n' >&2\n"
							   "echo heading\necho \"reached:$reached 1 2 3 4% /\"\n";
	receiver.write("bin/df", "#!/bin/sh\n" + script, true);
	receiver.write("here/busybox", "#!/bin/sh\n" + script, true);
	for (const std::string &start :
	     {host("--root " + receiver.path()), "env PATH=" + receiver.path() + "/here:$PATH " + host("")}) {
		Tmux terminal(80, 24);
		const std::string before = terminal.modes();
		terminal.start(start + " --dump " + terminal.folder() + "/dump");
		ASSERT_TRUE(terminal.shows(helpLine));
		terminal.press("4");
		ASSERT_TRUE(terminal.shows("Mounts:"));
		EXPECT_EQ(terminal.screen().find("LOST"), std::string::npos);
		EXPECT_EQ(terminal.screen().find("OUT OF ORDER"), std::string::npos);
		terminal.press("q");
		ASSERT_TRUE(terminal.shows("(4) show system info"));
		EXPECT_EQ(terminal.screen().find("OUT OF ORDER"), std::string::npos);
		terminal.press("q");
		ASSERT_TRUE(terminal.shows("status=0 $"));
		EXPECT_NE(terminal.screen().find("OUT OF ORDER"), std::string::npos) << "held until then";
		EXPECT_EQ(terminal.screen().find("LOST"), std::string::npos);
		EXPECT_EQ(terminal.modes(), before);
		const std::string dump = support::readFile(terminal.folder() + "/dump");
		EXPECT_NE(dump.find("reached:"), std::string::npos) << "the command has run";
		EXPECT_EQ(dump.find("reached:0"), std::string::npos);
	}
}

TEST_F(HostInTerminal, starting_in_the_background_waits_for_the_foreground_or_the_end)
{
	Tmux terminal(80, 24);
	const std::string background = "clear; " + host("--root " + receiver.path()) + " & wait";
	terminal.enter(background);
	ASSERT_TRUE(terminal.shows("Stopped"));
	terminal.enter("kill %1; kill -CONT %1; while kill -0 $!; do sleep 0.1; done; wait $!; echo ended by $?");
	EXPECT_TRUE(terminal.shows("ended by 143")) << "a person's kill";
	terminal.enter(background);
	ASSERT_TRUE(terminal.shows("Stopped"));
	terminal.enter("fg");
	ASSERT_TRUE(terminal.shows("Vexlo service menu"));
	terminal.press("q");
	EXPECT_TRUE(terminal.shows("status=0 $"));
	EXPECT_EQ(terminal.state(), "0 1 0");
}

} // namespace host_in_terminal_test
