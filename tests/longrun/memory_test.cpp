#include "support.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <random>

namespace
{

TEST(App, says_that_there_is_not_enough_memory)
{
	support::ReceiverFolder receiver;
	receiver.scanLog(support::repeat("\n", 1000000));
	const support::Outcome outcome =
		support::run({"/bin/sh", "-c",
	                  "ulimit -v 200000; exec '" + support::deskhostPath() + "' --screen none --root '" +
	                      receiver.path() + "' --keys 3"});
	EXPECT_EQ(outcome.status, 1);
	EXPECT_NE(outcome.err.find("deskhost: there is not enough memory"), std::string::npos) << outcome.err;
	EXPECT_EQ(outcome.err.find("terminate"), std::string::npos) << outcome.err;
}

TEST(App, says_that_a_command_cannot_be_run)
{
	if (geteuid() != 0)
		GTEST_SKIP() << "it takes a user who has no other processes";
	// The limit counts all processes of the user; another run of this test has another user.
	const std::string user = std::to_string(60000 + std::random_device()() % 5000);
	const support::Outcome outcome =
		support::run({"setpriv", "--reuid=" + user, "--regid=" + user, "--clear-groups", "bash", "-c",
	                  "ulimit -u 2; exec '" + support::deskhostPath() + "' --screen none --keys ok --as-is"});
	EXPECT_EQ(outcome.status, 0) << outcome.err;
	EXPECT_NE(outcome.err.find("deskhost: cannot run 'ps >/var/tmp/ps.tmp': "), std::string::npos)
		<< outcome.err;
}

TEST(App, finds_its_files_without_proc)
{
	if (geteuid() != 0)
		GTEST_SKIP() << "it takes the right to mount";
	const support::Outcome outcome = support::run(
		{"unshare", "--mount", "sh", "-c",
	     "mount -t tmpfs none /proc; exec '" + support::deskhostPath() + "' --screen none --keys exit"});
	EXPECT_EQ(outcome.status, 0) << outcome.err;
	EXPECT_EQ(outcome.out, "plugin_exec returned -1: the viewer left the menu\n");
}

TEST(Through, valgrind)
{
	const support::ReceiverFolder receiver;
	const support::DeskRun run = support::runDesk(
		receiver.path(), "down exit", {"--through", "valgrind -q --error-exitcode=9 --leak-check=full"});
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
	EXPECT_EQ(run.outcome.out, "plugin_exec returned -1: the viewer left the menu\n");
	EXPECT_EQ(run.dump.size(), 3u);
}

} // namespace
