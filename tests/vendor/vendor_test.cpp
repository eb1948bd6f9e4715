// The plugin's sources in a vendor's environment (his headers, signal library and front end) make the
// same calls as in the desk host.

#include "support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

using namespace support;

namespace
{

/// Runs the plugin in the vendor's host; standard output is its trace.
Outcome runVendor(const ReceiverFolder &receiver, const std::string &keys, const Lines &options = {})
{
	std::vector<std::string> command = {VENDOR_HOST, VENDOR_PLUGIN, receiver.path(), keys};
	command.insert(command.end(), options.begin(), options.end());
	// The vendor frees no keys, and is right: neither side says who does.
	return support::run(command, {{"ASAN_OPTIONS", "detect_leaks=0"}});
}

/// The same with the objects numbered as they appear, however the trace names them.
Lines numbered(const Lines &trace)
{
	std::map<std::string, std::string> numbers;
	Lines result;
	for (const std::string &line : trace) {
		std::string text;
		for (size_t at = 0; at < line.size();) {
			size_t start = at;
			while (start < line.size() && std::isalpha(static_cast<unsigned char>(line[start])))
				++start;
			if (start < line.size() && line[start] == '#' && start + 1 < line.size() &&
			    std::isdigit(static_cast<unsigned char>(line[start + 1]))) {
				size_t end = start + 1;
				while (end < line.size() && std::isdigit(static_cast<unsigned char>(line[end])))
					++end;
				const std::string name = line.substr(at, end - at);
				const std::string number = std::to_string(numbers.size() + 1);
				text += "#" + numbers.emplace(name, number).first->second;
				at = end;
				continue;
			}
			start = std::max(start, at + 1);
			text += line.substr(at, start - at);
			at = start;
		}
		result.push_back(text);
	}
	return result;
}

/// A receiver with something to see on every screen.
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

	static std::string position(const Outcome &outcome, const std::string &operation, const std::string &of)
	{
		// The line of `operation` on the object that was made as `of`.
		for (const std::string &line : support::lines(outcome.out))
			if (line.find(" = " + of) != std::string::npos) {
				const std::string wanted = line.substr(0, line.find(' ')) + "." + operation;
				for (const std::string &call : support::lines(outcome.out))
					if (call.rfind(wanted, 0) == 0)
						return call.substr(call.find('.') + 1);
			}
		return "none";
	}

	ReceiverFolder receiver;
};

struct Script
{
	const char *name, *keys;
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
	const Outcome vendor = runVendor(receiver, GetParam().keys);
	receiver.scanLog(log); // a script may delete it
	const DeskRun desk = runDesk(receiver.path(), GetParam().keys);
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

TEST_F(Vendor, lays_out_by_the_client_height_that_the_host_has_made_of_it)
{
	// 37 pixels less than asked for.
	const Outcome ps = runVendor(receiver, "ok exit exit", {"lost=37"});
	EXPECT_EQ(position(ps, "resize", "eListBoxBase("), "resize(490, 373)");

	const Outcome memory = runVendor(receiver, "down ok exit exit", {"lost=37"});
	EXPECT_EQ(position(memory, "resize", "eLabel("), "resize(150, 313)");
	EXPECT_NE(memory.out.find(".resize(100, 313)"), std::string::npos);

	const Outcome log = runVendor(receiver, "down down ok exit exit", {"lost=37"});
	EXPECT_EQ(position(log, "move", "eButton("), "move(10, 383)");
	EXPECT_EQ(position(log, "resize", "eListBoxBase("), "resize(590, 373)");
	EXPECT_EQ(position(log, "move", "eLabel("), "move(180, 393)");

	const Outcome system = runVendor(receiver, "down down down ok exit exit", {"lost=37"});
	EXPECT_EQ(position(system, "move", "eButton("), "move(10, 363)");
}

TEST_F(Vendor, obeys_the_path_that_the_host_has_set)
{
	const std::string path = receiver.write("elsewhere.log", "one\ntwo\n");
	const Outcome run = runVendor(receiver, "down down ok red ok exit", {"log=" + path});
	EXPECT_NE(run.out.find("fopen(\"" + path + "\", \"r\") = stream"), std::string::npos) << "read";
	EXPECT_NE(run.out.find("setText(\"size of " + path + " : 8 bytes\")"), std::string::npos) << run.out;
	EXPECT_NE(run.out.find("eMessageBox(\"Delete " + path + " ?\""), std::string::npos) << "asked about";
	EXPECT_NE(run.out.find("\nremove(\"" + path + "\")"), std::string::npos) << "deleted";
	EXPECT_FALSE(support::exists(path));
	EXPECT_EQ(run.out.find("scaning.log"), std::string::npos) << "and nothing else is";
	EXPECT_TRUE(support::exists(receiver / "var/scaning.log"));
}

TEST_F(Vendor, takes_his_other_answers_for_a_kill_and_not_for_a_deletion)
{
	for (const char *answer : {"0", "1", "4", "64"}) {
		const std::string option = std::string("answer=") + answer;
		EXPECT_NE(runVendor(receiver, "ok ok exit", {option}).out.find("kill -9 1"), std::string::npos)
			<< answer;
		const bool deletes = std::string(answer) == "4";
		EXPECT_EQ(runVendor(receiver, "down down ok red exit exit", {option}).out.find("\nremove(\"/var/s") !=
		              std::string::npos,
		          deletes)
			<< answer;
	}
	for (const char *answer : {"8", "-1"})
		EXPECT_EQ(
			runVendor(receiver, "ok ok exit exit", {std::string("answer=") + answer}).out.find("kill -9"),
			std::string::npos)
			<< answer;
}

TEST_F(Vendor, gives_every_size_of_font_its_rows)
{
	const Outcome run = runVendor(receiver, "ok exit exit", {"fontsize=31"});
	EXPECT_EQ(position(run, "move", "eListBoxBase("), "move(5, 41)");
	const Outcome none = runVendor(receiver, "ok exit exit", {"fontsize=0"});
	EXPECT_EQ(position(none, "move", "eListBoxBase("), "move(5, 30)");
}

/// The lines from the first one that begins so to the first one after it that begins so.
Lines between(const Outcome &outcome, const std::string &from, const std::string &to)
{
	Lines result;
	for (const std::string &line : support::lines(outcome.out))
		if (!result.empty() || line.rfind(from, 0) == 0) {
			result.push_back(line);
			if (result.size() > 1 && line.rfind(to, 0) == 0)
				return result;
		}
	ADD_FAILURE() << "not from " << from << " to " << to << " in\n" << outcome.out;
	return {};
}

Lines linesThatBegin(const Outcome &outcome, const std::string &begin)
{
	Lines result;
	for (const std::string &line : support::lines(outcome.out))
		if (line.rfind(begin, 0) == 0)
			result.push_back(line);
	return result;
}

TEST_F(Vendor, sees_every_text_looked_up_in_its_order)
{
	const Outcome run = runVendor(receiver, "ok ok exit exit exit", {"verbose=1"});
	EXPECT_EQ(
		linesThatBegin(run, "dcgettext("),
		(Lines{R"(dcgettext(null, "Vexlo service menu", 5))", R"(dcgettext(null, "process info", 5))",
	           R"(dcgettext(null, "show current processes in memory", 5))",
	           R"(dcgettext(null, "memory info", 5))",
	           R"(dcgettext(null, "show current used and free memory", 5))",
	           R"(dcgettext(null, "scan log", 5))", R"(dcgettext(null, "show scan log", 5))",
	           R"(dcgettext(null, "system info", 5))", R"(dcgettext(null, "show system info", 5))",
	           R"(dcgettext(null, "    1 root init\n", 5))", R"(dcgettext(null, "  123 root telnetd\n", 5))",
	           R"(dcgettext(null, "Kill %s pid?", 5))", R"(dcgettext(null, "kill pid", 5))"}));
	const Outcome log = runVendor(receiver, "down down ok red exit exit exit", {"verbose=1"});
	const Lines lookUps = linesThatBegin(log, "dcgettext(");
	ASSERT_EQ(lookUps.size(), 12u);
	EXPECT_EQ(
		Lines(lookUps.begin() + 9, lookUps.end()),
		(Lines{R"(dcgettext(null, "delete log", 5))", R"(dcgettext(null, "Delete /var/scaning.log ?", 5))",
	           R"(dcgettext(null, "Warning", 5))"}));
}

TEST_F(Vendor, sees_a_buttons_text_looked_up_when_it_is_due)
{
	const std::string logKeys = "down down ok exit exit", systemKeys = "down down down ok exit exit";
	for (const auto &[keys, text] : {std::pair(logKeys, "delete log"), std::pair(systemKeys, "OK")}) {
		const std::string trace = runVendor(receiver, keys, {"verbose=1"}).out;
		const size_t lookUp = trace.find("dcgettext(null, \"" + std::string(text) + "\", 5)");
		ASSERT_NE(lookUp, std::string::npos) << trace;
		EXPECT_LT(trace.find(".loadDeco()"), lookUp) << text << ": after everything else of the button";
	}
}

TEST_F(Vendor, may_find_no_text_at_all)
{
	const Outcome run =
		runVendor(receiver, "ok ok exit exit down down ok red exit exit down ok exit exit", {"texts=0"});
	EXPECT_EQ(run.status, 0) << run.err;
	EXPECT_NE(run.out.find("= eSetupWindow(\"\", 10, 400)"), std::string::npos);
	EXPECT_NE(run.out.find("= \"(2) \""), std::string::npos);
	EXPECT_NE(run.out.find("= eMessageBox(\"\", \"\", 76, 4, 0)"), std::string::npos);
}

TEST_F(Vendor, sees_a_question_of_none_where_his_formatting_does_nothing)
{
	const Outcome run = runVendor(receiver, "ok ok exit exit exit", {"format=0"});
	EXPECT_NE(run.out.find("= eMessageBox(\"none\", \"kill pid\", 76, 4, 0)"), std::string::npos) << run.out;
}

TEST_F(Vendor, sees_windows_and_boxes_on_the_stack)
{
	const Outcome run = runVendor(
		receiver, "ok ok exit exit down ok exit down ok red exit exit down ok exit exit", {"verbose=1"});
	EXPECT_EQ(linesThatBegin(run, "it is on the ").size(), 7u) << "the menu, four dialogs, two boxes";
	EXPECT_EQ(linesThatBegin(run, "it is on the heap").size(), 0u);
}

TEST_F(Vendor, sees_what_the_entries_hold)
{
	const auto entries = [&](const std::string &keys, size_t from) {
		const Lines all = linesThatBegin(runVendor(receiver, keys, {"verbose=1"}), "entry ");
		return Lines(all.begin() + static_cast<std::ptrdiff_t>(std::min(from, all.size())), all.end());
	};
	EXPECT_EQ(
		entries("exit", 0),
		(Lines{
			R"(entry "process info", key null, help "(1) show current processes in memory", attribute 3, others 0 0 0)",
			R"(entry "memory info", key null, help "(2) show current used and free memory", attribute 3, others 0 0 0)",
			R"(entry "scan log", key null, help "(3) show scan log", attribute 3, others 0 0 0)",
			R"(entry "system info", key null, help "(4) show system info", attribute 3, others 0 0 0)",
		}));
	EXPECT_EQ(entries("ok exit exit", 4),
	          (Lines{R"(entry "    1 root init\n", key "1", help " ", attribute 3, others 0 0 0)",
	                 R"(entry "  123 root telnetd\n", key "123", help " ", attribute 3, others 0 0 0)"}));
	EXPECT_EQ(entries("down down ok exit exit", 4),
	          (Lines{R"(entry "0 a\n", key "a\n", help " ", attribute 3, others 0 0 0)",
	                 R"(entry "1  start at c\n", key "b start at c\n", help " ", attribute 3, others 0 0 0)",
	                 R"(entry "1 ", key "b start at c\n", help " ", attribute 3, others 0 0 0)"}))
		<< "the key is the whole line";
}

TEST_F(Vendor, sees_the_handler_connected_before_the_list_has_the_focus)
{
	// Two connections for each of the menu's entries, and the dialog's own.
	for (const char *keys : {"ok exit exit", "down down ok exit exit"})
		EXPECT_EQ(linesThatBegin(runVendor(receiver, keys, {"verbose=1"}), "9 slots are connected").size(),
		          1u + (*keys == 'o'))
			<< keys;
}

TEST_F(Vendor, gets_back_what_each_run_of_the_menu_returned)
{
	EXPECT_EQ(runVendor(receiver, "exit exit", {"left=5", "again=7"}).err,
	          "plugin_exec returned 5\nplugin_exec returned 7\n");
}

TEST_F(Vendor, sees_the_menu_again_whatever_a_dialog_returned)
{
	const Outcome run = runVendor(receiver, "down ok exit down down ok exit exit", {"left=5"});
	const Lines shown = linesThatBegin(run, "#1.show()");
	EXPECT_EQ(shown.size(), 3u) << run.out;
	between(run, "#7.exec() = 5", "#1.show()");
}

TEST_F(Vendor, has_his_ok_button_connected_to_accept_itself)
{
	const std::string symbols = support::run({"nm", "-C", VENDOR_PLUGIN}).out;
	EXPECT_NE(symbols.find("SigC::ObjectCall0<eWidget>::call("), std::string::npos);
	EXPECT_EQ(symbols.find("SigC::ObjectCall0<eSysInfDialog>::call("), std::string::npos);
}

} // namespace
