// The recordings of a run: pictures, dump and trace.

#include "support.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace support;

namespace record_test
{

Outcome deskhost(Lines options)
{
	options.insert(options.begin(), deskhostPath());
	return run(options);
}

TEST(Recorder, writes_a_picture_and_a_line_for_the_start_and_every_key)
{
	ReceiverFolder receiver;
	TempFolder pictures;
	const DeskRun run =
		runDesk(receiver.path(), "down\tok\n exit pagedown 7 exit", {"--pictures", pictures / "new/folder"});
	const Lines names = {"start", "down", "ok", "exit", "pagedown", "7", "exit"};
	ASSERT_EQ(run.dump.size(), names.size());
	for (size_t i = 0; i < names.size(); ++i) {
		EXPECT_EQ(run.dump[i]["after"], names[i]);
		const std::string png =
			support::readFile(pictures / ("new/folder/0" + std::to_string(i) + "-" + names[i] + ".png"));
		ASSERT_EQ(png.substr(0, 4), "\x89PNG") << names[i];
		EXPECT_EQ(png.substr(16, 8), std::string("\0\0\x02\xd0\0\0\x02\x40", 8)) << "720 x 576";
	}
	EXPECT_EQ(run.dump.back()["windows"].size(), 0u);
}

TEST(Recorder, removes_the_pictures_of_an_earlier_run_and_nothing_else)
{
	ReceiverFolder receiver;
	TempFolder pictures;
	for (const char *name : {"03-down.png", "104-ok.png", "05-7.png", "06-start.png"})
		pictures.write(name, "old");
	const Lines kept = {"1-ok.png", "07-mine.png", "holiday.png", "08-ok.txt", "09-.png"};
	for (const std::string &name : kept)
		pictures.write(name, "mine");
	EXPECT_EQ(runDesk(receiver.path(), "exit", {"--pictures", pictures.path()}).outcome.status, 0);
	std::set<std::string> left;
	for (const auto &entry : std::filesystem::directory_iterator(pictures.path()))
		left.insert(entry.path().filename());
	std::set<std::string> expected(kept.begin(), kept.end());
	expected.insert({"00-start.png", "01-exit.png"});
	EXPECT_EQ(left, expected);
}

TEST(Recorder, reports_a_picture_that_does_not_fit_and_leaves_no_part_of_it)
{
	TempFolder pictures;
	const Outcome outcome =
		support::run({"/bin/sh", "-c",
	                  "ulimit -f 4; exec '" + support::deskhostPath() +
	                      "' --screen none --keys exit --pictures '" + pictures.path() + "'"});
	EXPECT_EQ(outcome.status, 2);
	EXPECT_NE(outcome.err.find("00-start.png': File too large\n"), std::string::npos) << outcome.err;
	EXPECT_FALSE(support::exists(pictures / "00-start.png"));
}

TEST(Recorder, describes_windows_and_widgets_with_their_fixed_names)
{
	ReceiverFolder receiver;
	receiver.scanLog("a\n");
	const DeskRun run = runDesk(receiver.path(), "3");
	const auto keysOf = [](const Json &object) {
		Lines names;
		for (const auto &item : object.items())
			names.push_back(item.key());
		return names;
	};
	EXPECT_EQ(keysOf(run.dump[1]), (Lines{"after", "windows"}));
	EXPECT_EQ(keysOf(run.window(1)), (Lines{"class", "title", "client", "widgets"}));
	EXPECT_EQ(keysOf(run.widget(1, "eButton")), (Lines{"class", "rect", "text", "focus", "shortcut"}));
	EXPECT_EQ(keysOf(run.widget(1, "eListBox<eListBoxEntryText>")),
	          (Lines{"class", "rect", "text", "focus", "shortcut", "count", "current", "rows", "help"}));
}

TEST(Recorder, reports_a_dump_or_a_trace_that_no_longer_fits)
{
	ReceiverFolder receiver;
	const Outcome outcome = deskhost({"--screen", "none", "--root", receiver.path(), "--dump", "/dev/full"});
	EXPECT_EQ(outcome.status, 2);
	EXPECT_NE(outcome.err.find("/dev/full"), std::string::npos) << outcome.err;
	const Outcome traced = deskhost({"--screen", "none", "--root", receiver.path(), "--trace", "/dev/full"});
	EXPECT_EQ(traced.status, 2);
	EXPECT_NE(traced.err.find("/dev/full"), std::string::npos) << traced.err;
}

TEST(Trace, traces_the_same_keys_on_the_same_root_alike)
{
	ReceiverFolder receiver;
	receiver.ps("PID\n1 init\n2 other\n");
	receiver.df("Filesystem\n/dev/root 1 2 3 4% /\n");
	receiver.scanLog("a\nb\n");
	const std::string keys =
		"ok ok exit exit down ok exit down ok red right ok exit down ok ok up up up ok down ok ok exit";
	const DeskRun first = runDesk(receiver.path(), keys);
	const DeskRun second = runDesk(receiver.path(), keys);
	EXPECT_GT(first.trace.size(), 100u);
	EXPECT_EQ(first.trace, second.trace);
	TempFolder pictures;
	EXPECT_EQ(runDesk(receiver.path(), keys, {"--pictures", pictures.path()}).trace, first.trace);
}

TEST(Trace, names_objects_by_class_and_numbers)
{
	ReceiverFolder receiver;
	const DeskRun run =
		runDesk(receiver.path(), "yellow exit exit", {"--plugin", testPlugin("widgets.so.0")});
	Lines constructions;
	for (const std::string &line : run.trace)
		if (line.find(" = e") != line.npos || line.find('~') != line.npos)
			constructions.push_back(line);
	EXPECT_EQ(constructions, (Lines{
								 "eWindow#1 = eWindow(1)",
								 R"(eListBoxBase#1 = eListBoxBase(eWindow#1, null, 1, 20, "eListBox"))",
								 R"(eButton#1 = eButton(eWindow#1, null, 1, "eButton"))",
								 "eLabel#1 = eLabel(eWindow#1, 0, 0, null)",
								 R"(eMessageBox#1 = eMessageBox("sure?", "really", 8, 4, 0))",
								 "eLabel#1.~eLabel()",
								 R"(eLabel#2 = eLabel(eWindow#1, 0, 0, "noSuchDecoration"))",
								 "eMessageBox#1.~eMessageBox()",
								 "eWindow#1.~eWindow()",
							 }))
		<< "neither what a box is made of nor what goes with its window";
	EXPECT_NE(
		std::find(run.trace.begin(), run.trace.end(), "eListBoxBase#1.append(eListBoxEntry#7, false, false)"),
		run.trace.end());
}

} // namespace record_test
