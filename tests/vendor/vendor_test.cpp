// The plugin built for a vendor's headers, signal library and front end makes the same calls as in the desk host.

#include "support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>

using namespace support;

namespace
{

/// Runs the plugin in the vendor's host (host.cpp describes scripts); standard output is the trace.
Outcome runVendor(const ReceiverFolder &receiver, const std::string &script)
{
	return support::run({VENDOR_HOST, VENDOR_PLUGIN, receiver.path(), script});
}

/// Numbers the objects of a trace in order of appearance, because hosts number them differently.
Lines numbered(const Lines &trace)
{
	static const std::regex object("[A-Za-z]*#[0-9]+");
	std::map<std::string, std::string> numbers;
	Lines result;
	for (const std::string &line : trace) {
		std::string text;
		auto rest = line.begin();
		for (std::sregex_iterator match(line.begin(), line.end(), object), end; match != end; ++match) {
			const std::string number = '#' + std::to_string(numbers.size() + 1);
			text += match->prefix().str() + numbers.emplace(match->str(), number).first->second;
			rest = match->suffix().first;
		}
		result.push_back(text.append(rest, line.end()));
	}
	return result;
}

/// A receiver and two more in its folders: `there`, where everything differs, and `nowhere`, which has almost
/// nothing. Their files contain difficult lines: empty, without a number, or ending at a NUL.
struct ThreeReceivers : ReceiverFolder
{
	ThreeReceivers()
	{
		ps("  PID USER COMMAND\n    1 root init\n    0 root [idle]\n kernel\n  -1 all\n" +
		   std::string("\0 7 hidden\n", 11) + "  123 root 100% %s\n");
		df("heading\n/dev/root 7.8M 3.1M 4.7M 40% /\n\n/dev/disk/by-label/media\n   1G 2G 3G 4% /media\n");
		scanLog("a\n\nb start at c\n" + std::string("\0d\n", 3) + "100% %s\ntuner A start at " +
		        support::repeat("0123456789", 9) + "\nstart at\n");
		meminfo(support::repeat("x 1\n", 8) +
		        "MemTotal: 61888 kB\nMemFree: 512 kB\n\nHugePages\nSwapCached: x\n");
		mtd("dev: size erasesize name\nmtd0: 00020000 00004000 \"boot loader\"\n\nmtd7: ffffffff\nrest\n");

		write("there/bin/ps", "#!/bin/sh\necho ' PID  Uid'\necho '  44 0 sh'\necho '  45 0 cron'\n", true);
		write("there/bin/df", "#!/bin/sh\necho H\necho 'tmpfs 1 2 3 4% /tmp'\n", true);
		write("there/elsewhere.log", "start at\nother\n");
		write("there/proc/meminfo", support::repeat("y 2\n", 9) + "Buffers: 7 kB\n");
		write("there/proc/mtd", "heading\nmtd1: 1 2 \"c\"\nmtd2: 3 4 d\n");

		write("nowhere/bin/ps", "#!/bin/sh\necho\necho none\nexit 1\n", true);
		write("nowhere/proc/meminfo", support::repeat("none\n", 9));
		write("nowhere/bin/df", "#!/bin/sh\nexit 1\n", true);
	}
};

/// Names the first line that differs, and writes all lines to the build folder.
void expectSame(const Lines &lines, const Lines &expected, const std::string &file)
{
	const auto [line, wanted] = std::mismatch(lines.begin(), lines.end(), expected.begin(), expected.end());
	if (line == lines.end() && wanted == expected.end())
		return;
	std::string text;
	for (const std::string &each : lines)
		text += each + '\n';
	const std::string path = support::buildPath(file);
	std::filesystem::create_directories(std::filesystem::path(path).parent_path());
	support::writeFile(path, text);
	ADD_FAILURE() << "line " << line - lines.begin() + 1 << " is\n"
				  << (line == lines.end() ? "(the end)" : *line) << "\nand not\n"
				  << (wanted == expected.end() ? "(the end)" : *wanted) << "\nwritten in full: " << path;
}

/// A receiver with data for every screen.
class Vendor : public ::testing::Test
{
protected:
	Vendor()
	{
		receiver.ps("  PID USER COMMAND\n    1 root init\n  123 root telnetd\n");
		receiver.df("heading\n/dev/root 7.8M 3.1M 4.7M 40% /\n");
		receiver.scanLog("a\nb start at c\n");
		receiver.meminfo(support::repeat("x 1\n", 8) + "MemTotal: 61888 kB\nMemFree: 512 kB\n");
		receiver.mtd("dev: size erasesize name\nmtd0: 00020000 00004000 \"boot loader\"\n");
	}

	ReceiverFolder receiver;
};

/// A named script, or a part of one.
struct Script
{
	const char *name, *words;
};

void PrintTo(const Script &script, std::ostream *out)
{
	*out << script.name;
}

class VendorScript : public Vendor, public ::testing::WithParamInterface<Script>
{
};

TEST_P(VendorScript, makes_the_calls_that_it_makes_in_the_desk_host)
{
	const std::string log = support::readFile(receiver / "var/scaning.log");
	const Outcome vendor = runVendor(receiver, GetParam().words);
	receiver.scanLog(log); // a script may delete it
	const DeskRun desk = runDesk(receiver.path(), GetParam().words);
	EXPECT_EQ(vendor.status, 0) << vendor.err;
	EXPECT_EQ(vendor.err, desk.outcome.out.empty() ? "" : "plugin_exec returned -1\n");
	EXPECT_EQ(numbered(support::lines(vendor.out)), numbered(desk.trace));
	EXPECT_GT(desk.trace.size(), 10u);
}

INSTANTIATE_TEST_SUITE_P(
	Keys, VendorScript,
	::testing::Values(Script{"menu", "down down exit"}, Script{"processes", "ok down exit exit"},
                      Script{"kill", "ok down ok ok exit"},
                      Script{"spare", "ok ok right ok ok exit exit exit"},
                      Script{"memory", "down ok exit exit"}, Script{"log", "down down ok exit exit"},
                      Script{"delete_log", "down down ok red ok ok exit exit"},
                      Script{"keep_log", "down down ok red right ok red exit exit exit"},
                      Script{"system", "down down down ok green ok ok ok exit exit"},
                      Script{"all", "ok exit down ok exit down ok exit down ok exit exit"}),
	[](const auto &script) { return script.param.name; });

/// The calls of the plugin in the vendor's host, including look-ups. The first line of a file in plays is the script,
/// the rest is the expected trace.
class VendorPlay : public ::testing::TestWithParam<const char *>
{
};

TEST_P(VendorPlay, is_as_written)
{
	const std::string name = GetParam();
	const Lines play = support::lines(support::readFile(support::sourcePath("tests/vendor/plays/" + name)));
	ASSERT_FALSE(play.empty()) << "there is no play of that name";
	const ThreeReceivers receivers;
	const Outcome outcome = runVendor(receivers, play[0]);
	EXPECT_EQ(outcome.status, 0) << outcome.err;
	Lines played = support::lines(outcome.out);
	played.insert(played.begin(), play[0]);
	expectSame(played, play, "plays/" + name);
}

INSTANTIATE_TEST_SUITE_P(All, VendorPlay,
                         ::testing::Values("menu", "processes", "memory", "log", "system", "unopened",
                                           "broken", "marked", "silent"),
                         [](const auto &play) { return std::string(play.param); });

/// Results that a vendor's message boxes and windows may return.
const int results[] = {4,  8,  -1,  0,   1,   2,   3,       5,          6,          7,   9,
                       12, 16, 64,  72,  76,  77,  127,     128,        255,        256, -2,
                       -4, -8, -76, 260, 264, 512, 1000000, 2147483647, -2147483647};

class VendorResult : public Vendor, public ::testing::WithParamInterface<int>
{
protected:
	/// The calls from the creation to the destruction of a script's only message box, with renumbered objects.
	Lines question(const std::string &script)
	{
		Lines lines;
		for (const std::string &line : support::lines(runVendor(receiver, script).out))
			if (line.find(" = eMessageBox(") != std::string::npos || !lines.empty()) {
				lines.push_back(line);
				if (line.find(".~eMessageBox()") != std::string::npos)
					return numbered(lines);
			}
		return lines;
	}

	const std::string result = std::to_string(GetParam());
};

TEST_P(VendorResult, of_a_question_is_a_kill_unless_it_is_no_or_none)
{
	Lines expected = {R"(#1 = eMessageBox("Kill 1 pid?", "kill pid", 76, 4, 0))", "#1.show()", "#1.exec()",
	                  "#1.exec() = " + result, "#1.hide()"};
	if (GetParam() != 8 && GetParam() != -1)
		expected.insert(expected.end(),
		                {R"(eDebug("-----kill pid  - 1-----"))", R"(system("kill -9 1"))", "#2.accept()"});
	expected.insert(expected.end(), {"#2.setFocus(#3)", "#1.~eMessageBox()"});
	EXPECT_EQ(question("answer=" + result + " ok ok"), expected);
}

TEST_P(VendorResult, of_a_question_is_a_deletion_only_when_it_is_yes)
{
	Lines expected = {R"(#1 = eMessageBox("Delete /var/scaning.log ?", "Warning", 76, 4, 0))", "#1.show()",
	                  "#1.exec()", "#1.exec() = " + result};
	if (GetParam() == 4)
		expected.insert(expected.end(), {R"(eString.sprintf("%s") = "/var/scaning.log")",
		                                 R"(remove("/var/scaning.log"))", "#2.accept()"});
	expected.insert(expected.end(), {"#1.hide()", "#1.~eMessageBox()"});
	EXPECT_EQ(question("answer=" + result + " down down ok red"), expected);
}

TEST_P(VendorResult, of_the_menu_is_the_plugins_and_of_a_screen_is_nobodys)
{
	const Outcome run = runVendor(receiver, "left=" + result + " down ok exit down ok exit exit");
	EXPECT_EQ(run.err, "plugin_exec returned " + result + "\n");
	Lines windows;
	for (const std::string &line : support::lines(run.out))
		if (line.find("show()") != std::string::npos || line.find("hide()") != std::string::npos ||
		    line.find(".exec()") != std::string::npos || line.find(".~") != std::string::npos)
			windows.push_back(line);
	Lines expected = {"#1.show()", "#1.exec()"};
	for (const char *screen : {"#2", "#3"})
		for (const std::string &line :
		     {std::string("#1.hide()"), screen + std::string(".show()"), screen + std::string(".exec()"),
		      screen + (".exec() = " + result), screen + std::string(".hide()"), std::string("#1.show()"),
		      screen + std::string(".~eWindow()")})
			expected.push_back(line);
	expected.insert(expected.end(), {"#1.exec() = " + result, "#1.hide()", "#1.~eSetupWindow()"});
	EXPECT_EQ(numbered(windows), expected);
}

INSTANTIATE_TEST_SUITE_P(OfHosts, VendorResult, ::testing::ValuesIn(results));

const Script conditions[] = {
	{"here", "files=. fontsize=20 lost=0 texts=here: left=-1 log=/var/scaning.log"},
	{"there", "files=there fontsize=31 lost=37 texts=there: left=5 log=/elsewhere.log"},
	{"nowhere", "files=nowhere fontsize=0 lost=450 texts=no left=-1 log=/nowhere.log"},
};

/// Opens every screen and every question twice.
const std::string allScreens = "ok ok exit down ok right ok exit ok ok ok "    // the processes
							   "down ok exit ok exit "                         // the memory
							   "down ok red exit red right ok exit ok red ok " // the log
							   "down ok green ok exit ";                       // the system

/// A pair of conditions: of the first run and of the second.
class VendorAgain : public ::testing::TestWithParam<std::pair<Script, Script>>
{
protected:
	static Lines played(const std::string &script)
	{
		const ThreeReceivers receivers;
		const Outcome outcome = runVendor(receivers, "verbose=1 " + script);
		EXPECT_EQ(outcome.status, 0) << outcome.err;
		return support::lines(outcome.out);
	}

	const std::string before = std::string(GetParam().first.words) + ' ';
	const std::string after = std::string(GetParam().second.words) + ' ';
};

TEST_P(VendorAgain, a_run_is_that_of_a_fresh_process)
{
	const Lines both = played(before + allScreens + "exit again " + after + allScreens + "exit");
	const Lines fresh = played(after + allScreens + "exit");
	ASSERT_GT(both.size(), fresh.size());
	EXPECT_GT(fresh.size(), 300u);
	expectSame(Lines(both.end() - static_cast<std::ptrdiff_t>(fresh.size()), both.end()), fresh,
	           "plays/again");
}

/// The calls between hiding and showing the menu, one list for each screen, with renumbered objects.
std::vector<Lines> openings(const Lines &trace)
{
	std::vector<Lines> result;
	bool open = false;
	for (const std::string &line : trace) {
		if (line == "#1.hide()")
			result.emplace_back();
		open = (open || line == "#1.hide()") && line != "#1.show()";
		if (open)
			result.back().push_back(line);
	}
	for (Lines &lines : result)
		lines = numbered(lines);
	return result;
}

TEST_P(VendorAgain, an_opening_is_that_of_a_fresh_process)
{
	const std::vector<Lines> both =
		openings(played(before + allScreens + "down " + after + allScreens + "exit"));
	const std::vector<Lines> fresh = openings(played(after + allScreens + "exit"));
	ASSERT_EQ(both.size(), 2 * fresh.size() - 1) << "the last one is the menu's own end";
	EXPECT_GE(fresh.size(), 9u);
	for (size_t i = 0; i + 1 < fresh.size(); ++i)
		expectSame(both[both.size() - fresh.size() + i], fresh[i], "plays/again");
}

std::vector<std::pair<Script, Script>> pairs()
{
	std::vector<std::pair<Script, Script>> result;
	for (const Script &before : conditions)
		for (const Script &after : conditions)
			if (&before != &after)
				result.emplace_back(before, after);
	return result;
}

INSTANTIATE_TEST_SUITE_P(Changed, VendorAgain, ::testing::ValuesIn(pairs()), [](const auto &pair) {
	return std::string("from_") + pair.param.first.name + "_to_" + pair.param.second.name;
});

TEST_F(Vendor, has_his_ok_button_connected_to_accept_itself)
{
	const std::string symbols = support::run({"nm", "-C", VENDOR_PLUGIN}).out;
	EXPECT_NE(symbols.find("SigC::ObjectCall0<eWidget>::call("), std::string::npos);
	EXPECT_EQ(symbols.find("SigC::ObjectCall0<eSysInfDialog>::call("), std::string::npos);
}

} // namespace
