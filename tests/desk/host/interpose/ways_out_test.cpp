// A plugin and its commands try to leave --root in every known way; this computer's files and processes must not
// change. As the superuser and as another user, with and without the kernel's permission for a sandbox.

#include "reach.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

namespace ways_out_test
{

namespace fs = std::filesystem;
using support::Command;
using support::readFile;
using support::ReceiverFolder;

const char outside[] = "/var/tmp/kept"; // on this computer, outside of the root

/// Prefix of a command for which the kernel permits no sandbox.
const Command withoutSandbox = {"unshare", "--map-root-user", "sh", "-c",
                                "echo 0 >/proc/sys/user/max_mnt_namespaces; exec \"$0\" \"$@\""};

struct Way
{
	const char *name;
	const char *how, *on; ///< see reaches_out.cpp; BYSTANDER becomes a process id
	bool isKnown;         ///< stopped without a sandbox as well
	std::string ps = "";  ///< the receiver's command ps
};

const std::vector<Way> ways = {
	{"a signal", "signal", "BYSTANDER", true},
	{"a signal from a thread", "thread", "BYSTANDER", true},
	{"a signal from a handler", "handler", "BYSTANDER", true},
	{"a signal when it is unloaded", "destructor", "BYSTANDER", true},
	{"a signal from painting", "painting", "BYSTANDER", true},
	{"a signal to a group", "killpg", "BYSTANDER", false},
	{"a signal with a value", "sigqueue", "BYSTANDER", false},
	{"a signal by the kernel's number", "syscall", "BYSTANDER", false},
	{"a command", "run", "kill -9 BYSTANDER", true},
	{"a command from a thread", "thread run", "kill -9 BYSTANDER", true},
	{"a pipe", "pipe", "kill -9 BYSTANDER", true},
	{"a command in disguise", "run", "k=ki; ${k}ll -9 BYSTANDER", false},
	{"a child's child", "spawn", "sh -c 'kill -9 BYSTANDER'", false},
	{"a script", "run", "ps", true, "kill -9 BYSTANDER\n"},
	{"a script that ends its group", "run", "ps", true, "trap 'kill -9 0' EXIT\n"},
	{"a command that ends its group in disguise", "run", "k=ki; ${k}ll -9 0", true},
	{"a script of a script", "run", "run-ps", true, "kill -9 BYSTANDER\n"},
	{"a script to a file", "run", "ps", false, "echo lost >/var/tmp/kept\n"},
	{"a relative name", "chdir", "scaning.log", false},
	{"renaming", "rename", "/var/tmp/kept", false},
	{"truncating", "truncate", "/var/tmp/kept", false},
	{"unlinking in a folder", "unlinkat", "/var/tmp/kept", false},
	{"reopening", "freopen", "/var/tmp/kept", false},
	{"opening", "open", "/var/tmp/kept", false},
	{"opening a file that is served", "write", "/var/scaning.log", true},
	{"removing a file that is served", "remove", "/var/scaning.log", true},
	{"the host's other half", "run", "k=ki; for n in 1 2 3 4 5 6 7 8 9; do ${k}ll -9 $n; done", false},
};

std::string replaced(std::string text, const std::string &number)
{
	const std::string word = "BYSTANDER";
	if (const size_t at = text.find(word); at != text.npos)
		text.replace(at, word.size(), number);
	return text;
}

class WaysOut : public testing::TestWithParam<bool>
{
protected:
	/// Prefix that runs a command as another user.
	static Command asUser()
	{
		return GetParam() ? Command{"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"}
		                  : Command();
	}

	void SetUp() override
	{
		if (GetParam() && geteuid() != 0)
			GTEST_SKIP() << "this is another user already";
		Command enters = asUser();
		enters.insert(enters.end(), {"test", "-x", support::deskhostPath()});
		if (support::run(enters).status != 0)
			GTEST_SKIP() << "another user may not enter the folder of this build; put it elsewhere";
	}

	/// Tries one way. `before`: prefix of the desk host's command.
	void go(const Way &way, const Command &before)
	{
		ReceiverFolder receiver;
		receiver.scanLog("a log\n");
		support::writeFile(outside, "kept");
		fs::permissions(outside, fs::perms(0666));
		const bool hadLog = support::exists("/var/scaning.log");

		Command command = asUser();
		const Command sleeper = {"setsid", "sleep", "1000"}; // its own process group
		command.insert(command.end(), sleeper.begin(), sleeper.end());
		support::Child bystander;
		bystander.start(command);
		const std::string number = std::to_string(bystander.pid());
		receiver.write("bin/run-ps", "#!/bin/sh\n" + std::string(receiver / "bin/ps") + '\n', true);
		if (!way.ps.empty())
			receiver.write("bin/ps", "#!/bin/sh\n" + replaced(way.ps, number), true);
		support::run({"chmod", "-R", "a+rwX", receiver.path()});

		command = asUser();
		command.insert(command.end(), before.begin(), before.end());
		const Command host = {support::deskhostPath(), "--screen", "none", "--plugin", REACHES_OUT, "--root",
		                      receiver.path()};
		command.insert(command.end(), host.begin(), host.end());
		outcome = support::run(command, {{"REACH", way.how}, {"ON", replaced(way.on, number)}});
		EXPECT_TRUE(bystander.lives()) << way.name << '\n' << outcome.err;
		EXPECT_EQ(readFile(outside), "kept") << way.name << '\n' << outcome.err;
		EXPECT_EQ(support::exists("/var/scaning.log"), hadLog) << way.name;
		EXPECT_LE(outcome.status, 1) << "the desk host lives on: " << way.name << '\n' << outcome.err;
		removed = !support::exists(receiver / "var/scaning.log");
	}

	support::Outcome outcome;
	bool removed = false; ///< whether the receiver's log was deleted
};

TEST_P(WaysOut, lead_nowhere)
{
	for (const Way &way : ways) {
		go(way, {});
		EXPECT_EQ(outcome.err.find("no sandbox"), outcome.err.npos) << outcome.err;
		EXPECT_EQ(removed, std::string(way.how) == "chdir" || std::string(way.how) == "remove") << way.name;
	}
}

TEST_P(WaysOut, lead_nowhere_by_known_calls_where_there_is_no_sandbox)
{
	for (const Way &way : ways) {
		if (!way.isKnown)
			continue;
		go(way, withoutSandbox);
		EXPECT_NE(outcome.err.find("deskhost: --root is no sandbox here"), outcome.err.npos) << outcome.err;
		EXPECT_EQ(removed, std::string(way.how) == "remove") << way.name;
	}
}

TEST_P(WaysOut, are_not_opened_by_few_descriptors)
{
	for (const Way &way : ways) {
		const std::string how = way.how;
		if (how != "remove" && how != "write" && way.name != std::string("a script"))
			continue;
		for (const char *most : {"6", "9", "12", "64"})
			go(way, {"sh", "-c", "ulimit -n \"$0\"; exec \"$@\"", most});
	}
}

TEST_P(WaysOut, are_not_opened_by_standard_error)
{
	support::TempFolder folder;
	const std::string errors = folder.write("errors", "yesterday's\n");
	support::run({"chmod", "-R", "a+rwX", folder.path()});
	for (const Way &way : {Way{"truncating", "truncate", "/proc/self/fd/2", false},
	                       Way{"opening", "open", "/proc/self/fd/2", false},
	                       Way{"a command", "run", "p=$PPID; : >/proc/$p/fd/2; : >/proc/self/fd/2", false}}) {
		go(way, {"sh", "-c", "exec \"$@\" 2>>\"$0\"", errors});
		EXPECT_EQ(readFile(errors).find("yesterday's\n"), 0u) << way.name;
		EXPECT_NE(
			readFile(errors).find(std::string(way.how == std::string("run") ? "system" : way.how) + ": "),
			std::string::npos)
			<< readFile(errors);
	}
}

TEST_P(WaysOut, are_no_links_to_programs)
{
	for (const bool isSandbox : {true, false}) {
		support::TempFolder folder;
		ReceiverFolder receiver;
		receiver.write("bin/busybox", "#!/bin/sh\necho theirs\n", true);
		receiver.write("bin/by-script", "#!/bin/sh\n" + std::string(receiver / "bin/ps") + '\n', true);
		for (const char *target : {"/bin/busybox", "busybox"}) {
			fs::remove(receiver / "bin/ps");
			fs::create_symlink(target, receiver / "bin/ps");
			support::run({"chmod", "-R", "a+rwX", receiver.path()});
			Command command = asUser();
			if (!isSandbox)
				command.insert(command.end(), withoutSandbox.begin(), withoutSandbox.end());
			command.insert(command.end(), {support::deskhostPath(), "--screen", "none", "--plugin",
			                               REACHES_OUT, "--root", receiver.path()});
			const bool isRun = isSandbox || *target != '/';
			for (const char *on : {"ps", "by-script"}) {
				outcome = support::run(command, {{"REACH", "pipe"}, {"ON", on}});
				EXPECT_EQ(outcome.err.find("popen: theirs") != outcome.err.npos, isRun) << outcome.err;
				EXPECT_EQ(outcome.err.find("make it a relative link: " + std::string(on)) != outcome.err.npos,
				          !isRun)
					<< outcome.err;
			}
		}
	}
}

TEST_P(WaysOut, are_not_held_open_by_an_endless_command)
{
	ReceiverFolder receiver;
	receiver.write("bin/ps", "#!/bin/sh\nwhile :; do echo more; done\n", true);
	support::run({"chmod", "-R", "a+rwX", receiver.path()});
	Command command = asUser();
	command.insert(command.end(), {"timeout", "20", support::deskhostPath(), "--screen", "none", "--plugin",
	                               REACHES_OUT, "--root", receiver.path()});
	outcome = support::run(command, {{"REACH", "pipe"}, {"ON", "ps"}});
	EXPECT_EQ(outcome.status, 0) << outcome.err;
	EXPECT_NE(outcome.err.find("popen: more"), outcome.err.npos) << outcome.err;
}

INSTANTIATE_TEST_SUITE_P(As, WaysOut, testing::Bool(),
                         [](const auto &entry) { return entry.param ? "another_user" : "this_user"; });

} // namespace ways_out_test
