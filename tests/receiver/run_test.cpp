// receiver/run with stand-ins for QEMU and for the tools that make the box.

#include "support.h"

#include <gtest/gtest.h>

#include <csignal>

namespace
{

using support::Lines;

class Run : public testing::Test
{
protected:
	Run()
	{
		for (const char *name : {"tools/packages", "tools/sysroot", "tools/build", "receiver/make"})
			script(name, "echo \"${0##*/} $*\" >>\"$log\"\n");
		copy("tests/receiver/stand_in_qemu", "receiver/qemu");
		copy("receiver/run", "receiver/run");
	}

	void copy(const std::string &from, const std::string &to)
	{
		folder.write(to, support::readFile(support::sourcePath(from)), true);
	}

	void script(const std::string &name, const std::string &words)
	{
		folder.write(name, "#!/bin/bash\nlog='" + folder / "log" + "'\n" + words, true);
	}

	support::Outcome run(support::Command options, const support::Environment &display = {})
	{
		options.insert(options.begin(), folder / "receiver/run");
		support::Environment environment = {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}};
		for (const auto &[name, value] : display)
			environment[name] = value;
		return support::run(options, environment);
	}

	Lines log() const { return support::lines(support::readFile(folder / "log")); }

	support::TempFolder folder;
};

TEST_F(Run, makes_what_is_missing_and_presses_keys_and_keeps_pictures)
{
	const std::string pictures = folder / "pictures";
	const support::Outcome outcome = run({"--keys", "down ok exit red 1", "--pictures", pictures});
	EXPECT_EQ(outcome.status, 0) << outcome.err;
	const auto picture = [&](const std::string &name) {
		return "screendump " + pictures + '/' + name + ".png";
	};
	const Lines expected = {"packages receiver",
	                        "sysroot --if-missing mipsel",
	                        "build mipsel deskhost vexlomenu network",
	                        "make ",
	                        "qemu -display none",
	                        "qmp_capabilities ",
	                        picture("00-start"),
	                        "send-key down",
	                        picture("01-down"),
	                        "send-key ret",
	                        picture("02-ok"),
	                        "send-key esc",
	                        picture("03-exit"),
	                        "send-key f1",
	                        picture("04-red"),
	                        "send-key 1",
	                        picture("05-1"),
	                        "send-key power"};
	EXPECT_EQ(log(), expected);
}

TEST_F(Run, shows_a_window_where_a_display_is_until_it_is_closed)
{
	script("receiver/qemu", "echo \"qemu ${*:2}\" >>\"$log\"\n");
	EXPECT_EQ(run({}, {{"DISPLAY", ":7"}}).status, 0);
	EXPECT_EQ(log().back(), "qemu -display gtk");
	script("receiver/qemu", "exit 3\n");
	EXPECT_EQ(run({}, {{"WAYLAND_DISPLAY", "w"}}).status, 3);
}

TEST_F(Run, says_where_its_screen_is_to_be_seen)
{
	support::Child child;
	child.start({folder / "receiver/run", "--vnc"}, {}, 2);
	std::string line;
	while ((line = child.line()).find("VNC") == line.npos && line != "(nothing)") {
	}
	EXPECT_EQ(line, "==> the screen: 127.0.0.1:5907, by any VNC viewer");
	child.signal(SIGTERM);
	EXPECT_EQ(child.exitStatus(), 128 + SIGTERM);
}

TEST_F(Run, refuses_what_it_does_not_know_before_anything_is_made)
{
	const struct
	{
		support::Command options;
		std::string error;
	} wrong[] = {
		{{},
	     "there is no display to open a window on: --pictures DIR keeps what the box shows, "
	     "--vnc shows it on the loopback"},
		{{"--lang", "de"}, "the receiver knows --keys, --pictures and --vnc, not '--lang'"},
		{{"--keys"}, "--keys wants a value"},
		{{"--vnc", "--keys=down dwn"},
	     "unknown key 'dwn'; the keys are up down left right pageup pagedown home end ok exit red green "
	     "yellow "
	     "blue 0-9"},
	};
	for (const auto &each : wrong) {
		const support::Outcome outcome = run(each.options);
		EXPECT_EQ(outcome.status, 2);
		EXPECT_EQ(outcome.err, "receiver/run: " + each.error + "\n");
	}
	for (const char *other : {"--root=/", "--receiver"}) {
		const support::Outcome outcome = support::run({support::sourcePath("run"), "--sample", other});
		EXPECT_EQ(outcome.status, 2);
		EXPECT_NE(outcome.err.find("; give one of the two\n"), outcome.err.npos) << outcome.err;
	}
	EXPECT_FALSE(support::exists(folder / "log"));
}

} // namespace
