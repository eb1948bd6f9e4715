// What commands and signals of a plugin can do, and what the trace shows of them.

#include "reach.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <sstream>

namespace commands_test
{

using support::DeskRun;
using support::ReceiverFolder;
using support::TempFolder;

/// A process of this computer, which must survive.
class Bystander : public support::Child
{
public:
	Bystander() { start({"sleep", "1000"}); }
	std::string number() const { return std::to_string(pid()); }
};

TEST(Commands, signal_nobody_with_a_root)
{
	ReceiverFolder receiver;
	Bystander bystander;
	for (const auto &[how, on] : std::vector<std::pair<std::string, std::string>>{
			 {"run", "kill -9 " + bystander.number()},
			 {"run", "true; exec /bin/kill -9 " + bystander.number()},
			 {"run", "k=ki; ${k}ll -9 " + bystander.number()},
			 {"pipe", "k=ki; ${k}ll -9 " + bystander.number()},
			 {"pipe", "kill -9 " + bystander.number()},
			 {"signal", bystander.number()},
		 }) {
		const DeskRun run = reach(how, on, {"--root", receiver.path()});
		EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
		EXPECT_TRUE(bystander.lives()) << how << ' ' << on;
		if (has(on, "kill") || how == "signal")
			EXPECT_TRUE(has(run.outcome.err, "reported only")) << run.outcome.err;
		else
			EXPECT_TRUE(has(run.outcome.err, "No such process")) << run.outcome.err;
	}
}

TEST(Commands, signal_for_real_without_a_root)
{
	for (const char *how : {"run", "pipe", "signal"}) {
		Bystander bystander;
		const std::string command = std::string(how) == "signal" ? "" : "kill -9 ";
		const DeskRun run = reach(how, command + bystander.number());
		EXPECT_FALSE(has(run.outcome.err, "reported only")) << run.outcome.err;
		EXPECT_EQ(bystander.exitStatus(), 128 + SIGKILL) << how;
	}
}

TEST(Commands, are_those_of_the_root_and_none_else)
{
	ReceiverFolder receiver;
	DeskRun run = reach("run", "ps", {"--root", receiver.path()});
	EXPECT_TRUE(has(run.outcome.err, "ps: ") && has(run.outcome.err, "not found")) << run.outcome.err;
	EXPECT_TRUE(has(run.outcome.err, "those in its bin")) << "why the screen is empty: " << run.outcome.err;
	EXPECT_FALSE(has(run.outcome.err, "PID")) << "no process of this computer: " << run.outcome.err;

	receiver.write("bin/ps", "#!/bin/sh\ncat \"$0.text\"\n");
	receiver.write("bin/ps.text", "the receiver's\n");
	run = reach("run", "ps", {"--root", receiver.path()});
	EXPECT_TRUE(has(run.outcome.err, "ermission denied")) << run.outcome.err;
	EXPECT_TRUE(has(run.outcome.err, "those in its bin")) << run.outcome.err;
	EXPECT_FALSE(has(run.outcome.err, "PID")) << run.outcome.err;

	std::filesystem::permissions(receiver / "bin/ps", std::filesystem::perms::all);
	run = reach("run", "ps", {"--root", receiver.path()});
	EXPECT_TRUE(has(run.outcome.err, "the receiver's\n")) << "scripts find cat: " << run.outcome.err;
	EXPECT_FALSE(has(run.outcome.err, "those in its bin")) << run.outcome.err;
	run = reach("pipe", "ps", {"--root", receiver.path()});
	EXPECT_TRUE(has(run.outcome.err, "popen: the receiver's\n")) << run.outcome.err;
}

TEST(Commands, are_found_in_a_root_with_a_colon_in_its_name)
{
	TempFolder folder;
	folder.write("a:b/bin/ps", "#!/bin/sh\necho the receiver\\'s\n", true);
	const DeskRun run = reach("run", "ps", {"--root", folder / "a:b"});
	EXPECT_TRUE(has(run.outcome.err, "the receiver's\n")) << run.outcome.err;
}

TEST(Commands, are_not_waited_for_when_they_stay_in_the_background)
{
	for (const char *how : {"run", "pipe"}) {
		TempFolder folder;
		const std::string number = folder / "number";
		const DeskRun run = reach(how, "echo begun; exec 1>&2; sleep 1000 & echo $! >'" + number + "'");
		EXPECT_TRUE(has(run.outcome.err, "begun\n")) << run.outcome.err;
		const int sleeper = std::stoi(support::readFile(number));
		EXPECT_EQ(kill(sleeper, SIGKILL), 0) << how << ": it should sleep still";
	}
}

TEST(Commands, show_what_they_print_and_obey_none_of_it)
{
	const DeskRun run =
		reach("run", "printf 'out\\033[2J\\n'; printf 'err\\033]0;x\\007 without an end' >&2");
	EXPECT_TRUE(has(run.outcome.err, "out")) << run.outcome.err;
	EXPECT_TRUE(has(run.outcome.err, "without an end\n")) << run.outcome.err;
	EXPECT_FALSE(has(run.outcome.err, "\033")) << run.outcome.err;
	EXPECT_FALSE(has(run.outcome.out, "out")) << "not among what the desk host answers";
}

TEST(Commands, are_shown_while_they_run)
{
	support::Child host;
	host.start({support::deskhostPath(), "--screen", "none", "--plugin", REACHES_OUT},
	           {{"REACH", "run"}, {"ON", "echo begun >&2; exec sleep 1000"}}, STDERR_FILENO);
	EXPECT_EQ(host.line(), "begun");
}

TEST(Commands, print_lines_of_any_length_and_number)
{
	const DeskRun run =
		reach("run", "head -c 100000000 /dev/zero | tr '\\0' x >&2; echo; yes | head -100000");
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err.substr(0, 1000);
	EXPECT_EQ(run.outcome.err.find(" ...\ny\ny\n"), 4096u);
	EXPECT_TRUE(has(run.outcome.err, "y\nsystem: 0\n")) << "what comes after it comes last";
	EXPECT_LT(run.outcome.err.size(), 250000u);
}

TEST(Commands, keep_their_place_among_the_notes)
{
	const DeskRun run = reach("thread run", "echo out; printf err >&2; echo last >/dev/stderr");
	EXPECT_EQ(run.outcome.err, "out\nerrlast\nsystem: 0\n");
}

TEST(Commands, end_whole_when_a_half_is_killed)
{
	for (const bool viewers : {true, false})
		for (const int signal : {SIGKILL, SIGSEGV}) {
			TempFolder folder;
			support::Child host;
			host.start(
				{support::deskhostPath(), "--screen", "none", "--plugin", REACHES_OUT},
				{{"REACH", "run"},
			     {"ON", "sh -c 'echo $$ >" + folder / "number" + "; exec sleep 1000' | sleep 1000 | cat"}});
			ASSERT_TRUE(support::eventually([&] { return !support::readFile(folder / "number").empty(); }));
			const int sleeper = std::stoi(support::readFile(folder / "number"));
			const pid_t half = support::childrenOf(host.pid()).at(0);
			EXPECT_EQ(kill(viewers ? host.pid() : half, signal), 0);
			host.exitStatus();
			EXPECT_TRUE(support::eventually([&] { return support::hasEnded(sleeper); })) << viewers << signal;
		}
}

TEST(Commands, have_nothing_to_read)
{
	EXPECT_TRUE(has(reach("run", "cat; echo end").outcome.err, "end\n"));
}

TEST(Commands, inherit_no_descriptor)
{
	ReceiverFolder receiver;
	for (const std::string &options : {std::string(), "--root " + receiver.path()}) {
		const support::Outcome outcome =
			support::run({"sh", "-c",
		                  "exec 8</etc/passwd 9</; exec '" + support::deskhostPath() +
		                      "' --screen none --plugin '" + REACHES_OUT + "' " + options},
		                 {{"REACH", "run"}, {"ON", "echo /proc/self/fd/*"}});
		std::istringstream said(outcome.err);
		int count = 0;
		for (std::string word; said >> word;)
			if (const std::string folder = "/proc/self/fd/"; word.rfind(folder, 0) == 0) {
				EXPECT_LE(std::stoi(word.substr(folder.size())), 3) << outcome.err; // 3: the folder itself
				++count;
			}
		EXPECT_GE(count, 3) << outcome.err;
	}
}

TEST(Commands, give_their_status)
{
	EXPECT_TRUE(has(reach("run", "exit 3").outcome.err, "system: 768\n"));
	EXPECT_TRUE(has(reach("pipe", "echo a line; exit 3").outcome.err, "popen: a line\npclose: 768\n"));
	EXPECT_TRUE(has(reach("feed", "read line; echo got $line").outcome.err, "got fed\npclose: 0\n"));
	const DeskRun asked = reach("shell", "");
	EXPECT_TRUE(has(asked.outcome.err, "system: 1\n")) << "there is a shell";
	EXPECT_EQ(asked.trace.front(), "system(null)");
}

TEST(Commands, are_traced_by_their_text_alone)
{
	EXPECT_EQ(
		reach("pipe", "echo a line").trace,
		(std::vector<std::string>{R"(popen("echo a line", "r") = stream)", R"(eDebug("popen: a line\n"))",
	                              "pclose(stream) = 0", R"(eDebug("pclose: 0"))"}));
	EXPECT_EQ(reach("run", "echo a line").trace.size(), 2u) << "nothing of what reading its output takes";
}

} // namespace commands_test
