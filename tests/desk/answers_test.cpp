// What the screens make of the answers that hosts give: some hosts return other numbers than this one.
// The toolkit and the receiver's files are part of this program, as they are of the desk host.

#include "desk.h"
#include "files.h"
#include "inside.h"
#include "support.h"
#include "trace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

using desk::Desk;
using desk::Key;
using support::ReceiverFolder;

namespace
{

int returned;

/// Presses keys with every question answered by `answer`; the trace's lines.
std::vector<std::string> runAnswering(const ReceiverFolder &receiver, int answer, const std::string &keys)
{
	std::string error;
	EXPECT_TRUE(desk::Files::get().setRoot(receiver.path(), error)) << error;
	std::vector<std::string> lines;
	desk::Trace::get().start([&](const std::string &line) { lines.push_back(line); });
	Desk::get().habits.answer = answer;
	returned = support::runInside(keys);
	Desk::get().habits.answer.reset();
	desk::Trace::get().stop();
	return lines;
}

bool has(const std::vector<std::string> &lines, const std::string &line)
{
	return std::find(lines.begin(), lines.end(), line) != lines.end();
}

class Answer : public ::testing::TestWithParam<int>
{
};

TEST_P(Answer, kills_unless_it_is_no_or_none)
{
	ReceiverFolder receiver;
	receiver.ps("PID\n123 telnetd\n");
	const auto trace = runAnswering(receiver, GetParam(), "ok ok");
	const bool consent = GetParam() != -1 && GetParam() != 8;
	EXPECT_EQ(has(trace, R"(system("kill -9 123"))"), consent);
	EXPECT_EQ(has(trace, R"(eDebug("-----kill pid  - 123-----"))"), consent);
	// It closes itself after a kill, and is left by the viewer otherwise.
	EXPECT_EQ(has(trace, "eWindow#1.accept()"), consent);
	EXPECT_EQ(has(trace, "eWindow#1.reject()"), !consent);
	EXPECT_TRUE(has(trace, "eMessageBox#1.hide()")) << "in every case";
}

TEST_P(Answer, deletes_only_when_it_is_a_plain_yes)
{
	ReceiverFolder receiver;
	receiver.scanLog("a\n");
	const auto trace = runAnswering(receiver, GetParam(), "down down ok red");
	const bool consent = GetParam() == 4;
	EXPECT_EQ(has(trace, R"(remove("/var/scaning.log"))"), consent);
	EXPECT_EQ(has(trace, "eWindow#1.accept()"), consent);
	EXPECT_EQ(support::exists(receiver / "var/scaning.log"), !consent);
	EXPECT_TRUE(has(trace, "eMessageBox#1.hide()")) << "in every case";
}

TEST(Result, is_what_the_menus_run_returned)
{
	ReceiverFolder receiver;
	for (const int result : {-1, 0, 1, 8, 1234567, -1234567}) {
		Desk::get().habits.left = result;
		const auto trace = runAnswering(receiver, 4, "exit");
		EXPECT_EQ(returned, result);
		EXPECT_TRUE(has(trace, "eSetupWindow#1.exec() = " + std::to_string(result)));
	}
	Desk::get().habits.left = -1;
}

TEST(Result, does_not_depend_on_what_a_screen_returned)
{
	ReceiverFolder receiver;
	receiver.df("heading\n");
	Desk::get().habits.left = 5;
	const auto trace = runAnswering(receiver, 4, "4 ok exit");
	EXPECT_TRUE(has(trace, "eWindow#1.exec() = 0"));
	EXPECT_EQ(returned, 5);
	Desk::get().habits.left = -1;
}

INSTANTIATE_TEST_SUITE_P(OfHosts, Answer, ::testing::Values(4, 8, -1, 0, 1, 2, 5, 12, 64, 76, -2, 1000000),
                         [](const auto &entry) {
							 return (entry.param < 0 ? "minus_" : "") + std::to_string(std::abs(entry.param));
						 });

} // namespace
