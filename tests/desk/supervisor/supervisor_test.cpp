// What the supervisor passes on between whoever started it and the work, and what it ends. How it gives a terminal
// back is in tests/desk/terminal.

#include "process.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cerrno>
#include <csignal>

namespace
{

using support::Child;
using support::Command;

class Supervisor : public testing::Test
{
protected:
	// A shell's background may ignore them, and the supervisor then does.
	Supervisor()
	{
		for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
			std::signal(signal, SIG_DFL);
	}

	/// Starts it; the process id that it prints.
	std::string start(const Command &command)
	{
		child.start(command);
		return child.line();
	}

	static bool isGone(const std::string &process)
	{
		return kill(std::stoi(process), 0) < 0 && errno == ESRCH;
	}

	void expectEndBy(int signal)
	{
		child.signal(signal);
		EXPECT_EQ(child.exitStatus(), 128 + signal);
	}

	void expectPassedOn(int signal)
	{
		child.signal(signal);
		EXPECT_EQ(child.line(), std::to_string(signal));
	}

	const std::string supervised = SUPERVISED;
	Child child;
};

TEST_F(Supervisor, ends_with_the_status_of_the_work)
{
	for (const int status : {0, 2, 255})
		EXPECT_EQ(support::run({supervised, "exit", std::to_string(status)}).status, status);
}

TEST_F(Supervisor, ends_by_the_signal_that_ended_the_work)
{
	for (const int signal : {SIGKILL, SIGALRM, SIGTERM})
		EXPECT_EQ(support::run({supervised, "raise", std::to_string(signal)}).status, 128 + signal);
}

TEST_F(Supervisor, passes_on_a_signal_that_asks_for_the_end_and_ends_by_it)
{
	for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
		const std::string work = start({supervised, "report"});
		expectPassedOn(signal);
		EXPECT_EQ(child.exitStatus(), 128 + signal) << "although the work's own status is 0";
		EXPECT_TRUE(isGone(work));
		child.end();
	}
}

TEST_F(Supervisor, passes_on_any_other_signal_and_goes_on)
{
	start({supervised, "report"});
	for (const int signal : {SIGUSR1, SIGUSR2, SIGWINCH, SIGALRM})
		expectPassedOn(signal);
	expectEndBy(SIGTERM);
}

TEST_F(Supervisor, keeps_ignoring_what_was_ignored_when_it_started)
{
	start({"sh", "-c", "trap '' HUP; exec \"$0\" report", supervised});
	child.signal(SIGHUP);
	expectPassedOn(SIGUSR1);
	expectEndBy(SIGTERM);
}

TEST_F(Supervisor, kills_work_that_a_signal_does_not_end)
{
	const std::string work = start({supervised, "deaf"});
	expectEndBy(SIGTERM);
	EXPECT_TRUE(isGone(work));
}

TEST_F(Supervisor, ends_the_commands_that_are_left_running)
{
	for (const char *what : {"command", "deaf_command"}) {
		const std::string command = start({supervised, what});
		expectEndBy(SIGTERM);
		EXPECT_TRUE(isGone(command)) << what;
		child.end();
	}
}

TEST_F(Supervisor, leaves_no_work_behind_when_it_is_killed_itself)
{
	start({supervised, "report"});
	child.signal(SIGKILL);
	EXPECT_EQ(child.line(), std::to_string(SIGTERM));
	EXPECT_EQ(child.exitStatus(), 128 + SIGKILL);
}

TEST_F(Supervisor, stops_and_goes_on_with_the_work)
{
	start({supervised, "stop"});
	EXPECT_TRUE(support::eventually([&] {
		siginfo_t state = {};
		return waitid(P_PID, static_cast<id_t>(child.pid()), &state, WSTOPPED | WNOHANG | WNOWAIT) == 0 &&
		       state.si_code == CLD_STOPPED;
	}));
	child.signal(SIGCONT);
	EXPECT_EQ(child.line(), "goes on");
	expectEndBy(SIGTERM);
}

} // namespace
