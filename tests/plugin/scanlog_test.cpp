// The scan log screen, by keys.

#include "support.h"

#include <gtest/gtest.h>

using namespace support;

namespace scanlog_test
{

const char *const list = "eListBox<eListBoxEntryText>";
const std::string keys = "down down ok "; // the third key opens the screen
constexpr size_t opened = 3;

TEST(ScanLog, lists_numbered_lines_with_the_list_in_focus)
{
	ReceiverFolder receiver;
	const std::string full(1022, 'x'); // the longest line that is read in one piece
	receiver.scanLog("a\r\n" + full + "\nb");
	const DeskRun run = runDesk(receiver.path(), keys);
	EXPECT_EQ(run.window(opened)["class"], "eScanLogDialog");
	EXPECT_EQ(run.window(opened)["client"], Json({60, 63, 600, 470}));
	EXPECT_EQ(run.widget(opened, list)["rows"], Json({"0 a\r\n", "1 " + full, "2 \n", "3 b"}));
	EXPECT_EQ(run.widget(opened, list)["focus"], true);
	EXPECT_EQ(run.widget(opened, "eButton")["shortcut"], "red");
	EXPECT_EQ(run.widget(opened, "eLabel")["text"], "size of /var/scaning.log : 1027 bytes");
	EXPECT_EQ(run.widget(opened, "eLabel")["rect"], Json({180, 430, 600, 20})) << "past the client area";
}

TEST(ScanLog, does_nothing_when_a_line_is_chosen)
{
	ReceiverFolder receiver;
	receiver.scanLog("a\nb\n");
	const DeskRun run = runDesk(receiver.path(), keys + "ok down ok");
	EXPECT_EQ(run.window(opened + 3)["class"], "eScanLogDialog");
	EXPECT_EQ(run.widget(opened + 3, list)["current"], 1);
}

TEST(ScanLog, asks_and_deletes_on_yes)
{
	ReceiverFolder receiver;
	receiver.scanLog("a\n");
	const DeskRun run = runDesk(receiver.path(), keys + "red ok ok exit exit");
	ASSERT_EQ(run.dump[opened + 1]["windows"].size(), 2u);
	EXPECT_EQ(run.window(opened + 1)["title"], "Warning");
	EXPECT_EQ(run.widget(opened + 1, "eLabel")["text"], "Delete /var/scaning.log ?");
	EXPECT_FALSE(support::exists(receiver / "var/scaning.log"));
	EXPECT_EQ(run.window(opened + 2)["class"], "eVexloMenu");
	EXPECT_EQ(run.widget(opened + 3, "eLabel")["text"], "file \"/var/scaning.log\" not found");
	EXPECT_EQ(run.widget(opened + 3, list)["count"], 0);
}

void expectKept(const std::string &answer)
{
	ReceiverFolder receiver;
	receiver.scanLog("a\n");
	const DeskRun run = runDesk(receiver.path(), keys + "red " + answer);
	EXPECT_EQ(run.dump.back()["windows"].back()["class"], "eScanLogDialog");
	EXPECT_EQ(run.widget(run.dump.size() - 1, list)["count"], 1);
	EXPECT_EQ(support::readFile(receiver / "var/scaning.log"), "a\n");
}

TEST(ScanLog, keeps_the_log_on_no)
{
	expectKept("right ok");
}

TEST(ScanLog, keeps_the_log_when_the_box_is_left)
{
	expectKept("exit");
}

TEST(ScanLog, asks_also_from_the_button_itself)
{
	ReceiverFolder receiver;
	receiver.scanLog("a\n");
	const DeskRun run = runDesk(receiver.path(), keys + "right ok");
	EXPECT_EQ(run.widget(opened + 1, "eButton")["focus"], true);
	EXPECT_EQ(run.window(opened + 2)["class"], "eMessageBox");
}

TEST(ScanLog, asks_without_a_log_and_closes_without_a_word)
{
	ReceiverFolder receiver;
	const DeskRun run = runDesk(receiver.path(), keys + "red ok exit");
	EXPECT_EQ(run.window(opened + 1)["class"], "eMessageBox");
	EXPECT_EQ(run.window(opened + 2)["class"], "eVexloMenu");
	EXPECT_EQ(run.outcome.status, 0);
}

TEST(ScanLog, closes_also_when_the_log_cannot_be_deleted)
{
	ReceiverFolder receiver;
	receiver.write("var/scaning.log/inside", "");
	const DeskRun run = runDesk(receiver.path(), keys + "red ok exit");
	EXPECT_EQ(run.widget(opened, "eLabel")["text"].get<std::string>().rfind("size of /var/scaning.log : ", 0),
	          0u)
		<< "a folder opens, and reads nothing";
	EXPECT_EQ(run.widget(opened, list)["count"], 0);
	EXPECT_EQ(run.window(opened + 2)["class"], "eVexloMenu");
	EXPECT_TRUE(support::exists(receiver / "var/scaning.log/inside"));
}

TEST(ScanLog, draws_every_byte_value)
{
	std::string bytes;
	for (int round = 0; round < 4; ++round)
		for (int i = 0; i < 256; ++i)
			bytes += static_cast<char>(i);
	ReceiverFolder receiver;
	receiver.scanLog(bytes);
	support::TempFolder pictures;
	const DeskRun run = runDesk(receiver.path(), keys + "exit exit", {"--pictures", pictures.path()});
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
	EXPECT_GT(run.widget(opened, list)["count"], 3);
	EXPECT_TRUE(support::exists(pictures / "03-ok.png"));
}

TEST(ScanLog, does_not_mind_a_log_that_changes_while_it_is_shown)
{
	ReceiverFolder receiver;
	receiver.scanLog("a\n");
	// The scan log screen runs no command, so the process screen's ps deletes the log.
	receiver.write("bin/ps", "#!/bin/sh\nrm -f '" + (receiver / "var/scaning.log") + "'\necho PID\n", true);
	const DeskRun run = runDesk(receiver.path(), keys + "exit up up ok exit down down ok");
	EXPECT_EQ(run.widget(opened, list)["count"], 1);
	EXPECT_EQ(run.dump.back()["windows"].back()["class"], "eScanLogDialog");
	EXPECT_EQ(run.widget(run.dump.size() - 1, "eLabel")["text"], "file \"/var/scaning.log\" not found");
}

} // namespace scanlog_test
