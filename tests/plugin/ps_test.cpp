// The process screen, by keys, on a receiver's output and on real processes.

#include "description.h"
#include "desk.h"
#include "inside.h"
#include "own_processes.h"
#include "support.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>

using namespace support;

namespace ps_test
{

const OwnProcesses ownProcesses;

const char *const list = "eListBox<eListBoxEntryText>";

const std::string twoProcesses = "  PID USER COMMAND\n"
								 "    1 root init\n"
								 "  123 root telnetd\n";

TEST(Ps, lists_the_processes_under_their_heading)
{
	ReceiverFolder receiver;
	receiver.ps(twoProcesses);
	const DeskRun run = runDesk(receiver.path(), "ok exit exit", {"--lang", "de"});
	EXPECT_EQ(run.window(1)["title"], "Info") << "whatever the language";
	EXPECT_EQ(run.window(1)["client"], Json({110, 63, 500, 450}));
	EXPECT_EQ(run.widget(1, "eLabel")["text"], "  PID USER COMMAND\n");
	EXPECT_EQ(run.widget(1, list)["rows"], Json({"    1 root init\n", "  123 root telnetd\n"}));
	EXPECT_EQ(run.widget(1, list)["focus"], true);
	EXPECT_FALSE(support::exists(receiver / "var/tmp/ps.tmp"));
}

TEST(Ps, asks_in_a_box_above_itself)
{
	ReceiverFolder receiver;
	receiver.ps(twoProcesses);
	const DeskRun run = runDesk(receiver.path(), "ok down ok");
	ASSERT_EQ(run.dump[3]["windows"].size(), 2u);
	EXPECT_EQ(run.dump[3]["windows"][0]["class"], "ePsDialog");
	const Json &box = run.window(3);
	EXPECT_EQ(box["class"], "eMessageBox");
	EXPECT_EQ(box["title"], "kill pid");
	EXPECT_EQ(run.widget(3, "eLabel")["text"], "Kill 123 pid?");
	EXPECT_EQ(run.widget(3, "eButton", 0)["text"], "Yes");
	EXPECT_EQ(run.widget(3, "eButton", 0)["focus"], true) << "yes is the default answer";
	EXPECT_EQ(run.widget(3, "eButton", 1)["text"], "No");
	EXPECT_EQ(run.dump[3]["windows"][0]["widgets"][0]["focus"], false) << "only one widget has the focus";
}

void expectSpared(const std::string &keys)
{
	ReceiverFolder receiver;
	receiver.ps(twoProcesses);
	const DeskRun run = runDesk(receiver.path(), "ok down ok " + keys + " exit exit");
	const size_t after = 3 + static_cast<size_t>(std::count(keys.begin(), keys.end(), ' ')) + 1;
	EXPECT_EQ(run.window(after)["class"], "ePsDialog") << "it stays open";
	EXPECT_EQ(run.widget(after, list)["focus"], true);
	EXPECT_EQ(run.widget(after, list)["current"], 1);
}

TEST(Ps, stays_as_it_was_after_no)
{
	expectSpared("right ok");
}

TEST(Ps, stays_as_it_was_when_the_box_is_left)
{
	expectSpared("exit");
}

TEST(Ps, offers_nothing_when_there_is_only_a_heading)
{
	ReceiverFolder receiver;
	receiver.ps("  PID USER COMMAND\n");
	const DeskRun run = runDesk(receiver.path(), "ok ok down up pageup pagedown home end ok exit exit");
	EXPECT_EQ(run.widget(2, list)["count"], 0);
	EXPECT_EQ(run.widget(2, list)["current"], -1);
	EXPECT_EQ(run.window(9)["class"], "ePsDialog") << "there is nothing to choose";
	EXPECT_EQ(run.window(10)["class"], "eVexloMenu");
	EXPECT_EQ(run.outcome.status, 0);
}

/// The temporary file is a link into a missing folder: the command cannot write, and fopen fails.
TEST(Ps, closes_a_stream_that_never_opened_and_removes_the_file_all_the_same)
{
	ReceiverFolder receiver;
	receiver.ps(twoProcesses);
	receiver.write("var/tmp/.keep", "");
	ASSERT_EQ(symlink("/var/tmp/no-such-folder/ps.tmp", (receiver / "var/tmp/ps.tmp").c_str()), 0);
	const DeskRun run = runDesk(receiver.path(), "ok exit exit");
	EXPECT_EQ(run.traceBetween(R"(system("ps >/var/tmp/ps.tmp"))", "eWindow#1.setFocus(eListBoxBase#2)"),
	          (Lines{
				  R"(system("ps >/var/tmp/ps.tmp"))",
				  R"(eDebug("[write ps info]"))",
				  R"(fopen("/var/tmp/ps.tmp", "r") = null)",
				  "fclose(null) = -1",
				  R"(remove("/var/tmp/ps.tmp"))",
				  R"(eLabel#1 = eLabel(eWindow#1, 0, 0, "eLabel"))",
				  R"(eLabel#1.setText(""))",
				  "eLabel#1.move(5, 5)",
				  "eLabel#1.resize(500, 20)",
				  "eWindow#1.setFocus(eListBoxBase#2)",
			  }));
	EXPECT_FALSE(support::exists(receiver / "var/tmp/ps.tmp")) << "even the link is gone";
	EXPECT_EQ(run.outcome.status, 0);
}

TEST(Ps, draws_whatever_bytes_a_process_name_holds)
{
	std::string bytes = "PID\n";
	bytes += "7 \x1b[2J\x1b]0;title\x07 %s%n \xff\xfe\xc3( \xed\xa0\x80 \xe2\x80\xae reversed\r\n";
	bytes += std::string("8 a\0b\n", 6);
	for (int i = 1; i < 256; ++i)
		if (i != '\n')
			bytes += static_cast<char>(i);
	bytes += '\n';
	for (const int length : {1022, 1023, 2000, 5000})
		bytes += "9 " + std::string(static_cast<size_t>(length) - 2, 'x') + '\n';
	ReceiverFolder receiver;
	receiver.ps(bytes);
	support::TempFolder pictures;
	const DeskRun run =
		runDesk(receiver.path(), "ok down pagedown exit exit", {"--pictures", pictures.path()});
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
	// fgets reads 1022 characters and a line end in two pieces, also 1023; 2000 in two, 5000 in five.
	EXPECT_EQ(run.widget(1, list)["count"], 3 + 2 + 2 + 2 + 5);
	EXPECT_EQ(run.widget(1, list)["rows"][1], "8 a") << "up to the first NUL";
	EXPECT_TRUE(support::exists(pictures / "03-pagedown.png"));
}

TEST(Ps, scrolls_through_ten_thousand_processes)
{
	std::string output = "PID\n";
	for (int i = 1; i <= 10000; ++i)
		output += std::to_string(i) + " sleep\n";
	ReceiverFolder receiver;
	receiver.ps(output);
	const DeskRun run = runDesk(receiver.path(), "ok end home pagedown up down up up exit exit");
	EXPECT_EQ(run.widget(1, list)["count"], 10000);
	EXPECT_EQ(run.widget(1, list)["rows"].size(), 20u);
	EXPECT_EQ(run.widget(2, list)["current"], 9999);
	EXPECT_EQ(run.widget(2, list)["rows"].back(), "10000 sleep\n");
	EXPECT_EQ(run.widget(3, list)["current"], 0);
	EXPECT_EQ(run.widget(4, list)["current"], 20);
	EXPECT_EQ(run.widget(4, list)["rows"][0], "21 sleep\n");
}

struct Sleeper : support::Child
{
	Sleeper() { start({"sleep", "600"}); }
};

constexpr int killed = 128 + SIGKILL;

/// A ps that prints only the lines of `pids` from the real table.
void onlyThese(const ReceiverFolder &receiver, const std::vector<pid_t> &pids)
{
	std::string wanted;
	for (const pid_t pid : pids)
		wanted += (wanted.empty() ? "" : ",") + std::to_string(pid);
	receiver.write("bin/ps", "#!/bin/sh\nexec /bin/ps -o pid,user,args -p " + wanted + "\n", true);
}

TEST(Ps, kills_the_chosen_process_and_no_other)
{
	Sleeper first, second, third;
	ReceiverFolder receiver;
	onlyThese(receiver, {first.pid(), second.pid(), third.pid()});
	const std::string path = (receiver / "bin") + ":/usr/bin:/bin";
	const DeskRun run = runDesk("", "ok down ok ok exit", {"--as-is"}, {{"PATH", path}});
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
	EXPECT_EQ(run.widget(3, "eLabel")["text"], "Kill " + std::to_string(second.pid()) + " pid?");
	EXPECT_EQ(run.window(4)["class"], "eVexloMenu");
	EXPECT_EQ(second.exitStatus(), killed);
	EXPECT_TRUE(first.lives());
	EXPECT_TRUE(third.lives());
}

TEST(Ps, spares_the_chosen_process_on_no)
{
	Sleeper sleeper;
	ReceiverFolder receiver;
	onlyThese(receiver, {sleeper.pid()});
	const std::string path = (receiver / "bin") + ":/usr/bin:/bin";
	const DeskRun run = runDesk("", "ok ok right ok exit exit", {"--as-is"}, {{"PATH", path}});
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
	EXPECT_EQ(run.window(4)["class"], "ePsDialog");
	EXPECT_TRUE(sleeper.lives());
}

TEST(Ps, signals_nobody_with_a_root)
{
	Sleeper sleeper;
	ReceiverFolder receiver;
	receiver.ps("  PID USER COMMAND\n" + std::to_string(sleeper.pid()) + " root sleep\n");
	const DeskRun run = runDesk(receiver.path(), "ok ok ok exit");
	const std::string command = "kill -9 " + std::to_string(sleeper.pid());
	EXPECT_NE(std::find(run.trace.begin(), run.trace.end(), "system(\"" + command + "\")"), run.trace.end());
	EXPECT_NE(run.outcome.err.find(command + " (reported only"), std::string::npos) << run.outcome.err;
	EXPECT_TRUE(sleeper.lives());
}

/// Selects one row, and answers yes only to the expected question.
class CarefulViewer : public support::Viewer
{
public:
	CarefulViewer(int toRow, std::string question) : row(toRow), expected(std::move(question)) {}

	std::optional<desk::Key> next() override
	{
		const Json window = Json::parse(desk::describe(desk::Desk::get().windows())).back();
		if (window.at("class") == "eMessageBox")
			return answer(window.at("widgets").at(0).at("text"));
		if (leaves)
			return desk::Key::exit;
		if (window.at("class") == "eVexloMenu")
			return desk::Key::ok;
		for (const Json &widget : window.at("widgets"))
			if (widget.at("class") == list && widget.at("current") < row)
				return desk::Key::down;
		leaves = true;
		return desk::Key::ok;
	}

	std::vector<std::string> questions;

private:
	desk::Key answer(const std::string &question)
	{
		leaves = true;
		questions.push_back(question);
		return questions == std::vector<std::string>{expected} ? desk::Key::ok : desk::Key::exit;
	}

	const int row;
	const std::string expected;
	bool leaves = false;
};

/// Kills a process of the test's in the list of all processes of its namespace. The list is printed once, before, so
/// that other processes cannot move a line.
void killInRealList(const std::vector<std::string> &program)
{
	Sleeper sleeper, bystander;
	const std::string output = support::run(program).out;
	const Lines processes = support::lines(output);
	int row = 0;
	size_t at = 1;
	for (; at < processes.size() && std::atoi(processes[at].c_str()) != sleeper.pid(); ++at)
		row += 1 + static_cast<int>(processes[at].size()) / 1022; // long lines take several rows
	ASSERT_LT(at, processes.size()) << output;

	ReceiverFolder commands;
	commands.ps(output);
	const std::string path = std::getenv("PATH");
	setenv("PATH", ((commands / "bin") + ":/usr/bin:/bin").c_str(), 1);
	const std::string question = "Kill " + std::to_string(sleeper.pid()) + " pid?";
	CarefulViewer viewer(row, question);
	EXPECT_EQ(support::runInside(viewer, support::pluginPath()), -1);
	setenv("PATH", path.c_str(), 1);
	EXPECT_EQ(viewer.questions, Lines{question});
	EXPECT_EQ(sleeper.exitStatus(), killed);
	EXPECT_TRUE(bystander.lives());
}

TEST(Ps, kills_in_the_list_of_the_full_ps)
{
	killInRealList({"ps", "-e"});
}

TEST(Ps, kills_in_the_list_of_busybox)
{
	killInRealList({"busybox", "ps"});
}

} // namespace ps_test
