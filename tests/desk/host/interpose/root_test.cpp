// With --root, no served path reads, writes or removes anything outside of the folder, and /var/tmp is the folder's
// own.

#include "reach.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>

namespace root_test
{

using support::Command;
using support::DeskRun;
using support::exists;
using support::Lines;
using support::readFile;
using support::ReceiverFolder;
using support::TempFolder;

TEST(Root, reaches_nothing_through_links_that_lead_out)
{
	TempFolder elsewhere;
	const std::string log = elsewhere.write("scaning.log", "kept");
	ReceiverFolder receiver;
	ASSERT_EQ(symlink(elsewhere.path().c_str(), (receiver / "var").c_str()), 0);
	for (const char *how : {"remove", "unlink", "write", "read"}) {
		const DeskRun run = reach(how, "/var/scaning.log", {"--root", receiver.path()});
		EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
		EXPECT_EQ(run.outcome.err.find("kept"), std::string::npos) << run.outcome.err;
		EXPECT_EQ(readFile(log), "kept") << how;
	}
}

TEST(Root, follows_links_inside_itself)
{
	ReceiverFolder receiver;
	receiver.write("data/scaning.log", "inside\n");
	ASSERT_EQ(symlink("/data", (receiver / "var").c_str()), 0) << "as the receiver sees it";
	EXPECT_NE(reach("read", "/var/scaning.log", {"--root", receiver.path()}).outcome.err.find("inside"),
	          std::string::npos);
	reach("remove", "/var/scaning.log", {"--root", receiver.path()});
	EXPECT_FALSE(exists(receiver / "data/scaning.log"));
}

TEST(Root, says_what_it_lacks)
{
	ReceiverFolder receiver;
	const std::string said = reach("read", "/proc/meminfo", {"--root", receiver.path()}).outcome.err;
	EXPECT_NE(
		said.find("deskhost: with --root, /proc/meminfo is the one in that folder, which cannot be read: "
	              "No such file or directory\n"),
		std::string::npos)
		<< said;
}

TEST(Root, serves_a_path_however_it_is_spelled)
{
	ReceiverFolder receiver;
	receiver.meminfo("the receiver's\n");
	for (const char *path : {"/proc/meminfo", "/proc//meminfo", "/proc/./../proc/meminfo"})
		EXPECT_NE(reach("read", path, {"--root", receiver.path()}).outcome.err.find("the receiver's"),
		          std::string::npos)
			<< path;
}

TEST(Root, serves_writing_and_unlinking_as_well)
{
	ReceiverFolder receiver;
	receiver.write("var/.keep", "");
	reach("write", "/var/scaning.log", {"--root", receiver.path()});
	EXPECT_EQ(readFile(receiver / "var/scaning.log"), "written");
	const DeskRun run = reach("unlink", "/var/scaning.log", {"--root", receiver.path()});
	EXPECT_FALSE(exists(receiver / "var/scaning.log"));
	EXPECT_EQ(run.trace.front(), R"(unlink("/var/scaning.log"))");
}

TEST(Root, serves_renaming_and_traces_what_changes_files)
{
	ReceiverFolder receiver;
	receiver.scanLog("old");
	const support::Lines saved = {R"(fopen("/var/scaning.new", "w") = stream)", "fclose(stream) = 0",
	                              R"(rename("/var/scaning.new", "/var/scaning.log"))",
	                              R"(eDebug("rename: 0"))"};
	for (const support::Lines &options : {support::Lines(), {"--through", "env"}}) {
		support::Lines all = {"--root", receiver.path(), "--serve", "/var/scaning.new"};
		all.insert(all.end(), options.begin(), options.end());
		receiver.scanLog("old");
		EXPECT_EQ(reach("rename", "/var/scaning.log", all).trace, saved);
		EXPECT_EQ(readFile(receiver / "var/scaning.log"), "saved");
		EXPECT_FALSE(exists(receiver / "var/scaning.new"));
	}
	const TempFolder folder;
	const support::Lines led = {"--root",    receiver.path(), "--serve", "/var/scaning.new",
	                            "--through", "env",           "--debug", folder / "debug"};
	const std::string leads = "\nled to " + receiver.path() + "/var/scaning.new\nled to ";
	reach("rename", "/var/scaning.log", led);
	EXPECT_NE(readFile(folder / "debug").find(leads + receiver.path() + "/var/scaning.log\n"),
	          std::string::npos);
	DeskRun run = reach("rename", "/var/elsewhere", led);
	const std::string refused = R"(rename("/var/scaning.new", "/var/elsewhere"))"
								"\n";
	EXPECT_EQ(readFile(folder / "debug").find(refused + "led to"), std::string::npos);
	EXPECT_EQ(run.trace.back(), R"(eDebug("rename: -1"))") << "not out of the folder";
	EXPECT_FALSE(exists("/var/elsewhere"));

	run = reach("open", "/var/made", {"--root", receiver.path()});
	EXPECT_EQ(run.trace, support::Lines({R"(open("/var/made", "w"))", R"(eDebug("open: 0"))"}));
	std::error_code failed;
	EXPECT_EQ(std::filesystem::status(receiver / "var/made", failed).permissions() &
	              std::filesystem::perms::owner_all,
	          std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
	run = reach("folders", "/var/folder", {"--root", receiver.path()});
	EXPECT_EQ(run.trace, support::Lines({R"(mkdir("/var/folder"))", R"(rmdir("/var/folder"))",
	                                     R"(eDebug("folders: 0 0 0"))"}));
}

TEST(Root, serves_further_files)
{
	ReceiverFolder receiver;
	receiver.write("etc/hostname", "box\n");
	const DeskRun run =
		reach("read", "/etc/hostname",
	          {"--root", receiver.path(), "--serve", "/etc/issue", "--serve", "/etc/hostname"});
	EXPECT_NE(run.outcome.err.find("fopen: box\n"), std::string::npos) << run.outcome.err;
	EXPECT_NE(reach("read", "/etc/issue", {"--root", receiver.path(), "--serve", "/etc/issue"})
	              .outcome.err.find("fopen: null"),
	          std::string::npos)
		<< "what the folder lacks is missing";
	for (const char *path : {"etc/hostname", "/etc/", "/etc/../etc/hostname", "/"}) {
		const DeskRun refused = reach("read", "/", {"--root", receiver.path(), "--serve", path});
		EXPECT_EQ(refused.outcome.status, 2) << path;
		EXPECT_NE(refused.outcome.err.find(path), std::string::npos) << refused.outcome.err;
	}
	EXPECT_EQ(reach("read", "/", {"--serve", "/etc/hostname"}).outcome.status, 2) << "there is no root";
}

TEST(Root, removes_a_folder_that_stands_in_the_logs_place_when_it_is_empty)
{
	ReceiverFolder receiver;
	receiver.write("var/scaning.log/inside", "");
	EXPECT_NE(reach("remove", "/var/scaning.log", {"--root", receiver.path()}).outcome.err.find("remove: -1"),
	          std::string::npos);
	std::filesystem::remove(receiver / "var/scaning.log/inside");
	reach("remove", "/var/scaning.log", {"--root", receiver.path()});
	EXPECT_FALSE(exists(receiver / "var/scaning.log"));
}

TEST(Root, has_a_var_tmp_of_its_own_for_calls_and_commands)
{
	ReceiverFolder receiver;
	support::writeFile("/var/tmp/ps.tmp", "this computer's\n");
	reach("write", "/var/tmp/one", {"--root", receiver.path()});
	EXPECT_EQ(readFile(receiver / "var/tmp/one"), "written") << "made where it is missing";
	reach("run", "read x </var/tmp/one; echo $x again >/var/tmp/two", {"--root", receiver.path()});
	EXPECT_EQ(reach("read", "/var/tmp/two", {"--root", receiver.path()}).outcome.err,
	          "fopen: written again\n");
	const DeskRun run = reach("remove", "/var/tmp/../tmp/two", {"--root", receiver.path()});
	EXPECT_EQ(run.trace.front(), R"(remove("/var/tmp/../tmp/two"))");
	EXPECT_FALSE(exists(receiver / "var/tmp/two"));
	EXPECT_EQ(reach("read", "/var/tmp/ps.tmp", {"--root", receiver.path()}).outcome.err, "fopen: null\n");
	EXPECT_EQ(readFile("/var/tmp/ps.tmp"), "this computer's\n");
	EXPECT_FALSE(exists("/var/tmp/one"));

	const support::Lines noSandbox = {"--root", receiver.path(), "--through", "env"};
	reach("write", "/var/tmp/three", noSandbox);
	EXPECT_EQ(readFile(receiver / "var/tmp/three"), "written");
	reach("run", "echo by a command >/var/tmp/four", noSandbox);
	EXPECT_EQ(readFile(receiver / "var/tmp/four"), "by a command\n");
	EXPECT_FALSE(exists("/var/tmp/three") || exists("/var/tmp/four"));
}

/// The sandbox covers /var/tmp and thus the path of such a root; its commands still see it as their root.
TEST(Root, may_lie_below_var_tmp)
{
	ReceiverFolder receiver;
	receiver.ps("  PID USER COMMAND\n");
	std::filesystem::copy(receiver.path(), "/var/tmp/box", std::filesystem::copy_options::recursive);
	const DeskRun run = reach("run", "ps >/var/tmp/ps.tmp", {"--root", "/var/tmp/box"});
	EXPECT_EQ(run.outcome.err, "system: 0\n");
	EXPECT_EQ(readFile("/var/tmp/box/var/tmp/ps.tmp"), "  PID USER COMMAND\n");
}

TEST(Root, takes_nothing_of_what_is_recorded_for_the_viewer_into_its_var_tmp)
{
	ReceiverFolder receiver;
	reach("run", "true", {"--root", receiver.path(), "--debug", "/var/tmp/debug"});
	EXPECT_EQ(readFile("/var/tmp/debug"), "system(\"true\")\nsystem: 0\n");
	EXPECT_FALSE(exists(receiver / "var/tmp/debug"));
}

const std::string temporary = "a temporary one takes its place\n";

TEST(Root, has_a_temporary_var_tmp_where_its_own_is_no_folder)
{
	TempFolder elsewhere;
	struct
	{
		const char *reason;
		std::function<void(const ReceiverFolder &)> spoil;
	} const cases[] = {
		{"Not a directory", [](const ReceiverFolder &root) { root.write("var/tmp", "a file"); }},
		{"Not a directory", [](const ReceiverFolder &root) { root.write("var", "a file"); }},
		{"Too many levels of symbolic links",
	     [](const ReceiverFolder &root) {
			 root.write("var/.keep", "");
			 std::filesystem::create_symlink("/var/tmp", root / "var/tmp");
		 }},
		{"File exists",
	     [&](const ReceiverFolder &root) {
			 root.write("var/.keep", "");
			 std::filesystem::create_symlink(elsewhere.path(), root / "var/tmp");
		 }},
		{"No such file or directory",
	     [&](const ReceiverFolder &root) {
			 std::filesystem::create_symlink(elsewhere.path(), root / "var");
		 }},
	};
	TempFolder folderOfTemporary;
	for (const auto &[reason, spoil] : cases) {
		ReceiverFolder receiver;
		spoil(receiver);
		const Lines options = {"--plugin",      REACHES_OUT, "--root",
		                       receiver.path(), "--debug",   "/var/tmp/debug"};
		const DeskRun run =
			support::runDesk("", "", options,
		                     {{"REACH", "run"},
		                      {"ON", "echo mine >/var/tmp/one; read x </var/tmp/one; echo $x"},
		                      {"TMPDIR", folderOfTemporary.path()}});
		EXPECT_EQ(run.outcome.status, 0);
		EXPECT_EQ(run.outcome.err,
		          "deskhost: with --root, /var/tmp is the one in that folder, which is no folder to "
		          "write to (" +
		              std::string(reason) + "); " + temporary + "mine\nsystem: 0\n");
		std::string debug = run.outcome.err;
		debug.insert(debug.find('\n') + 1, run.trace.front() + '\n');
		EXPECT_EQ(readFile("/var/tmp/debug"), debug) << "from the first line on";
		EXPECT_FALSE(exists("/var/tmp/one"));
		EXPECT_TRUE(std::filesystem::is_empty(elsewhere.path()));
		EXPECT_TRUE(std::filesystem::is_empty(folderOfTemporary.path())) << "it goes with the run";
	}
}

TEST(Root, has_a_temporary_var_tmp_where_it_cannot_be_written)
{
	ReceiverFolder receiver;
	receiver.write("bin/ps", "#!/bin/sh\necho list\n", true);
	// Read-only in this mount namespace.
	const Command command = {"unshare",
	                         "--map-root-user",
	                         "--mount",
	                         "sh",
	                         "-c",
	                         "mount --bind -o ro \"$1\" \"$1\" && mount -o remount,bind,ro \"$1\" && "
	                         "exec \"$0\" --screen none --keys 'ok' --dump \"$2\" --root \"$1\"",
	                         support::deskhostPath(),
	                         receiver.path(),
	                         "/var/tmp/dump"};
	const support::Outcome outcome = support::run(command);
	EXPECT_NE(outcome.err.find("(Read-only file system); " + temporary), std::string::npos) << outcome.err;
	EXPECT_NE(readFile("/var/tmp/dump").find(R"("text":"list\n")"), std::string::npos)
		<< readFile("/var/tmp/dump");
	EXPECT_FALSE(exists(receiver / "var"));
}

TEST(Root, says_where_it_is_no_sandbox_and_shares_this_computers_var_tmp_there)
{
	ReceiverFolder receiver;
	receiver.write("bin/ps", "#!/bin/sh\necho list\nls /var/tmp/ps.tmp\n", true);
	const Command command = {"unshare",
	                         "--map-root-user",
	                         "sh",
	                         "-c",
	                         "echo 0 >/proc/sys/user/max_mnt_namespaces; "
	                         "exec \"$0\" --screen none --keys ok --dump /var/tmp/dump --root \"$1\"",
	                         support::deskhostPath(),
	                         receiver.path()};
	const support::Outcome outcome = support::run(command);
	EXPECT_EQ(outcome.status, 0);
	for (const std::string line : {"deskhost: --root is no sandbox here (bwrap: ",
	                               "deskhost: /var/tmp is this computer's, because "}) {
		EXPECT_EQ(outcome.err.find(line), outcome.err.rfind(line)) << "once: " << outcome.err;
		EXPECT_NE(outcome.err.find(line), std::string::npos) << outcome.err;
	}
	EXPECT_NE(readFile("/var/tmp/dump").find(R"("text":"list\n")"), std::string::npos) << "what it listed";
	EXPECT_NE(readFile("/var/tmp/dump").find(R"("rows":["/var/tmp/ps.tmp\n")"), std::string::npos)
		<< readFile("/var/tmp/dump");
}

TEST(Root, is_named_among_the_debug_lines_where_calls_are_led_to_it)
{
	const ReceiverFolder receiver;
	receiver.scanLog("a line\n");
	const TempFolder folder;
	const std::string call = "fopen(\"/var/scaning.log\", \"r\") = stream\n";
	for (const bool isLed : {true, false}) {
		Lines options = {"--debug", folder / "debug"};
		if (isLed)
			options.insert(options.end(), {"--through", "env"});
		const DeskRun run = support::runDesk(receiver.path(), "3 red ok exit", options);
		const std::string debug = readFile(folder / "debug");
		EXPECT_EQ(debug.find(call + "led to " + receiver.path() + "/var/scaning.log\n") != debug.npos, isLed)
			<< debug;
		EXPECT_EQ(std::count(run.trace.begin(), run.trace.end(), "remove(\"/var/scaning.log\")"), 1);
		for (const std::string &line : run.trace)
			EXPECT_EQ(line.find("led to"), line.npos) << line;
	}
}

TEST(Root, has_calls_of_a_plugin_that_is_still_being_loaded)
{
	TempFolder folder;
	const std::string trace = folder.write("trace", "yesterday's\n");
	const std::map<std::string, std::string> early = {{"REACH", "early"}, {"ON", "/var/tmp/nothing"}};
	const support::Command host = {support::deskhostPath(), "--plugin", REACHES_OUT, "--trace", trace};
	support::Command command = host;
	command.insert(command.end(), {"--screen", "framebuffer", "--framebuffer", folder / "missing"});
	EXPECT_EQ(support::run(command, early).status, 2);
	EXPECT_EQ(readFile(trace), "yesterday's\n") << "there is no screen";
	command = host;
	command.insert(command.end(), {"--screen", "none"});
	EXPECT_EQ(support::run(command, early).status, 0);
	EXPECT_EQ(readFile(trace), "remove(\"/var/tmp/nothing\")\n");
}

TEST(Root, shows_each_of_twenty_desk_hosts_at_once_its_own_list)
{
	constexpr int hosts = 20;
	ReceiverFolder receivers[hosts];
	support::Child running[hosts];
	for (int i = 0; i < hosts; ++i) {
		receivers[i].write(
			"bin/ps",
			"#!/bin/sh\necho '  PID USER COMMAND'; /bin/sleep 0.2; echo '    1 root host number " +
				std::to_string(i) + "'\n",
			true);
		running[i].start({support::deskhostPath(), "--screen", "none", "--keys", "ok", "--dump",
		                  receivers[i] / "dump", "--root", receivers[i].path()});
	}
	for (int i = 0; i < hosts; ++i) {
		EXPECT_EQ(running[i].exitStatus(), 0);
		const std::string list = R"("rows":["    1 root host number )" + std::to_string(i) + R"(\n"])";
		EXPECT_NE(readFile(receivers[i] / "dump").find(list), std::string::npos)
			<< readFile(receivers[i] / "dump");
		EXPECT_TRUE(std::filesystem::is_empty(receivers[i] / "var/tmp"));
	}
}

} // namespace root_test
