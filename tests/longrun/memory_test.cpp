#include "support.h"

#include <gtest/gtest.h>

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
