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
	receiver.scanLog("a\nb");
	const DeskRun run = runDesk(receiver.path(), keys);
	EXPECT_EQ(run.window(opened)["class"], "eScanLogDialog");
	EXPECT_EQ(run.window(opened)["client"], Json({60, 63, 600, 470}));
	EXPECT_EQ(run.widget(opened, list)["rows"], Json({"0 a\n", "1 b"}));
	EXPECT_EQ(run.widget(opened, list)["focus"], true);
	EXPECT_EQ(run.widget(opened, "eButton")["shortcut"], "red");
	EXPECT_EQ(run.widget(opened, "eLabel")["rect"], Json({180, 430, 600, 20})) << "past the client area";
}

TEST(ScanLog, splits_marker_lines)
{
	const std::string line = "0123456789 start at 01234567890123456789012345678901234567890123456789"
							 "abcdefghijklmnopqrstuvwxyzABCDE";
	ASSERT_EQ(line.size(), 101u);
	ReceiverFolder receiver;
	receiver.scanLog(line + "\n");
	const DeskRun run = runDesk(receiver.path(), keys);
	EXPECT_EQ(run.widget(opened, list)["rows"],
	          Json({"0 " + line.substr(1, 46), "0 " + line.substr(46, 46)}));
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
	EXPECT_EQ(run.traceBetween("eWindow#1.exec()", "eWindow#1.~eWindow()"),
	          (Lines{
				  "eWindow#1.exec()",
				  R"(eString.sprintf("Delete %s ?") = "Delete /var/scaning.log ?")",
				  R"(eMessageBox#1 = eMessageBox("Delete /var/scaning.log ?", "Warning", 76, 4, 0))",
				  "eMessageBox#1.show()",
				  "eMessageBox#1.exec()",
				  "eMessageBox#1.exec() = 4",
				  R"(eString.sprintf("%s") = "/var/scaning.log")",
				  R"(remove("/var/scaning.log"))",
				  "eWindow#1.accept()",
				  "eMessageBox#1.hide()",
				  "eMessageBox#1.~eMessageBox()",
				  "eWindow#1.exec() = 0",
				  "eWindow#1.hide()",
				  "eSetupWindow#1.show()",
				  "eWindow#1.~eWindow()",
			  }));
	EXPECT_FALSE(support::exists(receiver / "var/scaning.log"));
	EXPECT_EQ(run.window(opened + 2)["class"], "eVexloMenu");
	EXPECT_EQ(run.widget(opened + 3, "eLabel")["text"], "file \"/var/scaning.log\" not found");
	EXPECT_EQ(run.widget(opened + 3, list)["count"], 0);
}

void expectKept(const std::string &answer, const std::string &result)
{
	ReceiverFolder receiver;
	receiver.scanLog("a\n");
	const DeskRun run = runDesk(receiver.path(), keys + "red " + answer);
	EXPECT_EQ(run.traceBetween("eMessageBox#1.exec()", "eMessageBox#1.~eMessageBox()"),
	          (Lines{"eMessageBox#1.exec()", "eMessageBox#1.exec() = " + result, "eMessageBox#1.hide()",
	                 "eMessageBox#1.~eMessageBox()"}));
	EXPECT_EQ(run.dump.back()["windows"].back()["class"], "eScanLogDialog");
	EXPECT_EQ(run.widget(run.dump.size() - 1, list)["count"], 1);
	EXPECT_EQ(support::readFile(receiver / "var/scaning.log"), "a\n");
}

TEST(ScanLog, keeps_the_log_on_no)
{
	expectKept("right ok", "8");
}

TEST(ScanLog, keeps_the_log_when_the_box_is_left)
{
	expectKept("exit", "-1");
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

struct Log
{
	const char *name;
	std::string content;
	Json rows;
};

void PrintTo(const Log &log, std::ostream *out)
{
	*out << log.name;
}

class ScanLogContent : public ::testing::TestWithParam<Log>
{
};

TEST_P(ScanLogContent, is_shown_and_measured)
{
	ReceiverFolder receiver;
	receiver.scanLog(GetParam().content);
	support::TempFolder pictures;
	const DeskRun run = runDesk(receiver.path(), keys, {"--pictures", pictures.path()});
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
	EXPECT_EQ(run.widget(opened, list)["rows"], GetParam().rows);
	EXPECT_EQ(run.widget(opened, "eLabel")["text"],
	          "size of /var/scaning.log : " + std::to_string(GetParam().content.size()) + " bytes");
	EXPECT_TRUE(support::exists(pictures / "03-ok.png"));
}

INSTANTIATE_TEST_SUITE_P(
	Bytes, ScanLogContent,
	::testing::Values(
		Log{"empty", "", Json::array()}, Log{"one_byte", "x", {"0 x"}},
		Log{"crlf", "a\r\nb\r\n", {"0 a\r\n", "1 b\r\n"}},
		Log{"percent", "100 %s %n %d\n", {"0 100 %s %n %d\n"}},
		Log{"nul", std::string("a\0b\nc\n", 6), {"0 a", "1 c\n"}},
		Log{"length_1021", std::string(1020, 'x') + "\n", {"0 " + std::string(1020, 'x') + "\n"}},
		Log{"length_1022", std::string(1022, 'x') + "\n", {"0 " + std::string(1022, 'x'), "1 \n"}},
		Log{"length_1023", std::string(1023, 'x') + "\n", {"0 " + std::string(1022, 'x'), "1 x\n"}},
		Log{"marker_cut",
            std::string(1018, 'x') + "start at\n",
            {"0 " + std::string(1018, 'x') + "star", "1 t at\n"}}),
	[](const auto &entry) { return entry.param.name; });

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
