// However the plugin's half ends, the viewer's half says how, and leaves nothing behind.

#include "support.h"

#include <gtest/gtest.h>

#include <csignal>

using support::Child;
using support::childrenOf;
using support::Command;
using support::DeskRun;
using support::Lines;
using support::runDesk;

namespace ends_test
{

DeskRun misbehaving(const std::string &keys, Lines options = {})
{
	options.insert(options.end(), {"--plugin", support::testPlugin("misbehaves.so.0")});
	return runDesk("", keys, options);
}

bool eventuallyEnds(pid_t process)
{
	return support::eventually([&] { return support::hasEnded(process); });
}

/// Expects exit status 1 and these lines among the messages.
void expectEnd(const DeskRun &run, const Lines &said)
{
	EXPECT_EQ(run.outcome.status, 1);
	EXPECT_EQ(run.outcome.out, "");
	for (const std::string &line : said)
		EXPECT_NE(("\n" + run.outcome.err).find("\ndeskhost: " + line), std::string::npos)
			<< line << " is not in\n"
			<< run.outcome.err;
}

TEST(End, is_told_with_the_last_call_and_the_place_in_the_source)
{
	const DeskRun run = misbehaving("2");
	expectEnd(run, {"the plugin has not run to its end", "It was ended by signal 6, Aborted",
	                "It was dealing with key 2, eListBoxBase#1.selected(eListBoxEntry#2)",
	                R"(Its last call: eSetupWindow#1.setText("about to abort"))"});
	EXPECT_NE(run.outcome.err.find("abort() at misbehaves.cpp:"), std::string::npos) << run.outcome.err;
#if !defined(__SANITIZE_ADDRESS__) // AddressSanitizer handles the crash itself
	expectEnd(misbehaving("1"), {"It was ended by signal 11, Segmentation fault",
	                             R"(Its last call: eSetupWindow#1.setText("about to crash"))"});
	expectEnd(misbehaving("6"), {"It was ended by signal 11, Segmentation fault"});
#endif
}

TEST(End, is_told_without_a_trace_as_with_one)
{
	const auto lastCall = [](const std::string &said) {
		const size_t at = said.find("Its last call: ");
		return at == said.npos ? "none" : said.substr(at, said.find('\n', at) - at);
	};
	const DeskRun traced = misbehaving("2");
	const support::Outcome plain = support::run({support::deskhostPath(), "--screen", "none", "--keys", "2",
	                                             "--plugin", support::testPlugin("misbehaves.so.0")});
	EXPECT_EQ(lastCall(plain.err), lastCall(traced.outcome.err));
	EXPECT_EQ(lastCall(plain.err), "Its last call: " + traced.trace.back());
}

TEST(End, is_not_blamed_on_a_key_of_the_run_before)
{
	const DeskRun run =
		runDesk("", "exit", {"--plugin", support::testPlugin("misbehaves.so.0"), "--plays", "2"},
	            {{"RUNS_BEFORE_ABORT", "1"}});
	EXPECT_EQ(run.outcome.status, 1);
	EXPECT_NE(run.outcome.err.find("It was ended by signal 6"), std::string::npos) << run.outcome.err;
	EXPECT_EQ(run.outcome.err.find("It was dealing with"), std::string::npos) << run.outcome.err;
	EXPECT_NE(run.outcome.err.find("It was in c at misbehaves.cpp:"), std::string::npos) << run.outcome.err;
}

TEST(End, by_exit_is_no_success)
{
	expectEnd(misbehaving("3"), {"It called exit(0) in the middle of its run"});
	expectEnd(misbehaving("4"), {"It called exit(7) in the middle of its run"});
}

TEST(End, by_an_exception_is_told_with_its_text)
{
	expectEnd(misbehaving("5"), {"Nobody caught its exception std::runtime_error: nothing fits"});
}

TEST(End, has_its_whole_stack_among_the_debug_lines)
{
	const support::TempFolder folder;
	misbehaving("2", {"--debug", folder / "debug"});
	const std::string debug = support::readFile(folder / "debug");
	for (const char *function :
	     {"abort() at misbehaves.cpp:", "plugin_exec at misbehaves.cpp:", "deskhost-plugin+0x"})
		EXPECT_NE(debug.find(function), std::string::npos) << function << " is not in\n" << debug;
}

TEST(End, leaves_records_that_are_complete_up_to_there)
{
	const DeskRun run = misbehaving("down up 2 down");
	ASSERT_EQ(run.dump.size(), 3u);
	EXPECT_EQ(run.dump.back()["after"], "up");
	EXPECT_EQ(run.trace.back(), R"(eSetupWindow#1.setText("about to abort"))");
}

TEST(Half, prints_on_standard_error)
{
	const DeskRun run = misbehaving("8 exit");
	EXPECT_EQ(run.outcome.status, 0);
	EXPECT_EQ(run.outcome.out, "plugin_exec returned -1: the viewer left the menu\n");
	EXPECT_NE(run.outcome.err.find("printed by the plugin\n"), std::string::npos);
	EXPECT_NE(run.outcome.err.find("printed by a command\n"), std::string::npos);
}

TEST(Half, is_not_its_copy)
{
	const DeskRun run = misbehaving("9 down exit");
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
	EXPECT_EQ(run.outcome.out, "plugin_exec returned -1: the viewer left the menu\n");
	EXPECT_EQ(run.dump.size(), 4u);
	EXPECT_EQ(run.outcome.err.find("not by the plugin"), std::string::npos) << run.outcome.err;
	const size_t copy = run.outcome.err.find("copy ");
	ASSERT_NE(copy, std::string::npos) << run.outcome.err;
	EXPECT_TRUE(eventuallyEnds(std::stoi(run.outcome.err.substr(copy + 5))));
}

class SessionEnd : public testing::Test
{
protected:
	// A shell may have set them to ignored for a background job.
	SessionEnd()
	{
		for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
			std::signal(signal, SIG_DFL);
	}

	/// Starts a plugin that spins, and waits until it runs.
	void startSpinning()
	{
		support::writeFile(folder / "trace", "");
		host.start({support::deskhostPath(), "--screen", "none", "--keys", "7", "--trace", folder / "trace",
		            "--plugin", support::testPlugin("misbehaves.so.0")});
		ASSERT_TRUE(support::eventually(
			[&] { return support::readFile(folder / "trace").find(".exec()") != std::string::npos; }));
		half = childrenOf(host.pid()).at(0);
	}

	support::TempFolder folder;
	Child host;
	pid_t half = 0;
};

TEST_F(SessionEnd, by_a_signal_ends_a_plugin_that_spins)
{
	for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
		startSpinning();
		host.signal(signal);
		EXPECT_EQ(host.exitStatus(), 128 + signal);
		EXPECT_TRUE(eventuallyEnds(half));
		host.end();
	}
}

TEST_F(SessionEnd, keeps_ignoring_what_was_ignored_when_it_started)
{
	const support::ReceiverFolder receiver;
	receiver.write("bin/ps", "#!/bin/sh\necho started >>\"$0.log\"; exec sleep 1000\n", true);
	host.start({"sh", "-c", "trap '' HUP; exec \"$@\"", "sh", support::deskhostPath(), "--screen", "none",
	            "--root", receiver.path(), "--through", "env", "--keys", "1"}); // env becomes the half
	ASSERT_TRUE(support::eventually([&] { return support::exists(receiver / "bin/ps.log"); }));
	half = childrenOf(host.pid()).at(0);
	host.signal(SIGHUP);
	host.signal(SIGWINCH);
	kill(half, SIGHUP);
	std::this_thread::sleep_for(std::chrono::milliseconds(500));
	EXPECT_TRUE(host.lives());
	host.signal(SIGTERM);
	EXPECT_EQ(host.exitStatus(), 128 + SIGTERM);
}

TEST_F(SessionEnd, comes_with_signals_that_were_blocked_when_it_started)
{
	const Command blocked = {"env", "--block-signal=CHLD", "--block-signal=TERM", "--block-signal=ALRM"};
	Command command = blocked;
	command.insert(command.end(), {"timeout", "-s", "KILL", "60", support::deskhostPath(), "--screen", "none",
	                               "--keys", "exit"});
	EXPECT_EQ(support::run(command).status, 0);
	command = blocked;
	command.insert(command.end(), {support::deskhostPath(), "--screen", "none", "--keys", "7", "--plugin",
	                               support::testPlugin("misbehaves.so.0")});
	host.start(command);
	ASSERT_TRUE(support::eventually([&] { return !childrenOf(host.pid()).empty(); }));
	host.signal(SIGTERM);
	EXPECT_EQ(host.exitStatus(), 128 + SIGTERM);
}

TEST_F(SessionEnd, by_sigkill_leaves_nothing_that_heeds_signals)
{
	const support::ReceiverFolder receiver;
	receiver.write("bin/ps", "#!/bin/sh\necho $$ >\"$0.pid\"; exec sleep 1000\n", true);
	host.start({support::deskhostPath(), "--screen", "none", "--root", receiver.path(), "--keys", "1"});
	ASSERT_TRUE(support::eventually([&] { return support::exists(receiver / "bin/ps.pid"); }));
	half = childrenOf(host.pid()).at(0);
	const pid_t command = childrenOf(half).at(0);
	host.signal(SIGKILL);
	EXPECT_EQ(host.exitStatus(), 128 + SIGKILL);
	EXPECT_TRUE(eventuallyEnds(half));
	EXPECT_TRUE(eventuallyEnds(command));
}

TEST(Through, a_command_that_stands_for_a_shell_elsewhere)
{
	const support::ReceiverFolder receiver;
	receiver.ps("PID\n1 init\n");
	// Like ssh: gives the words to a shell with another folder and environment.
	const std::string elsewhere = receiver.write(
		"elsewhere", "#!/bin/sh\ncd /\nshift\nexec env -i PATH=/usr/bin:/bin sh -c \"$*\"\n", true);
	const DeskRun near = runDesk(receiver.path(), "ok exit exit");
	const DeskRun far = runDesk(receiver.path(), "ok exit exit", {"--through", elsewhere + " root@box"});
	EXPECT_EQ(far.outcome.status, 0) << far.outcome.err;
	EXPECT_EQ(far.outcome.out, near.outcome.out);
	EXPECT_EQ(far.trace, near.trace);
	EXPECT_EQ(far.dump, near.dump);
}

TEST(Through, a_tool_has_its_say_about_a_plugin_that_cannot_be_loaded)
{
	const support::ReceiverFolder receiver;
	const std::string tool = receiver.write(
		"tool", "#!/bin/sh\n\"$@\"\nstatus=$?\nsleep 0.3\necho looked >&2\nexit $status\n", true);
	const std::string plugin = receiver.write("broken.so.0", "no plugin");
	const support::Outcome outcome =
		support::run({support::deskhostPath(), "--screen", "none", "--through", tool, "--plugin", plugin});
	EXPECT_EQ(outcome.status, 1);
	EXPECT_EQ(outcome.err.rfind("deskhost: cannot load the plugin '" + plugin, 0), 0u) << outcome.err;
	EXPECT_NE(outcome.err.find("\nlooked\n"), std::string::npos) << outcome.err;
}

TEST(Through, what_is_no_plugins_half_is_a_clear_end)
{
	for (const char *command :
	     {"cat /dev/zero #", "sh -c 'echo Welcome to the box; cat' #", "true #",
	      R"(sh -c 'tr "\0" "\377" </dev/zero | head -c 100000; cat' #)",
	      R"(sh -c 'printf "\0\0\0\003\202\007\0"; cat' #)"}) { // "returned" before "loaded"
		const support::Outcome outcome =
			support::run({support::deskhostPath(), "--screen", "none", "--through", command});
		EXPECT_EQ(outcome.status, 1) << command;
		EXPECT_EQ(outcome.err.rfind("deskhost: the plugin has not run to its end\n", 0), 0u)
			<< command << ": " << outcome.err;
	}
	const support::Outcome missing =
		support::run({support::deskhostPath(), "--screen", "none", "--through", "no-such-command"});
	EXPECT_EQ(missing.status, 1);
	EXPECT_NE(missing.err.find("with status 127"), std::string::npos) << missing.err;
}

} // namespace ends_test
