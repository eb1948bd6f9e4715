// The menu on the virtual receiver: its own processes, flash, mounts, files and screen.

#include "box.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace
{

using support::Json;

/// The topmost window.
const Json &window(const Json &screen)
{
	return screen.at("windows").back();
}

bool shows(const Json &screen, const std::string &text)
{
	return screen.dump().find(text) != std::string::npos;
}

/// Mounts a writable folder of commands over the box's own.
const char ownCommands[] = "mount -t tmpfs none /usr/bin && /bin/busybox --install -s /usr/bin";

/// Saves a command's output for the menu, to give the desk host the same.
std::string kept(const std::string &command)
{
	return "rm /usr/bin/" + command + "; echo '#!/bin/sh' >/usr/bin/" + command + "; echo 'busybox " +
	       command + " \"$@\" | tee /tmp/" + command + "' >>/usr/bin/" + command + "; chmod +x /usr/bin/" +
	       command;
}

/// One run on the box with the screen after each key.
struct Session
{
	Box &box;
	std::string keys;
	std::vector<Json> dump;
	std::vector<Picture> screens;

	const Json &press(const std::string &key)
	{
		keys += (keys.empty() ? "" : " ") + key;
		dump.push_back(box.press(key));
		screens.push_back(box.screen());
		return dump.back();
	}
	const Json &press(std::initializer_list<const char *> several)
	{
		for (const char *key : several)
			press(key);
		return dump.back();
	}
};

class OnTheBoard : public testing::Test
{
protected:
	static void SetUpTestSuite()
	{
		ASSERT_TRUE(support::exists(support::sourcePath("build/receiver/squashfs")))
			<< "there is no receiver to boot: ./test makes it, or receiver/make after a build for MIPS";
		box = new Box;
		start = box->started();
	}
	static void TearDownTestSuite() { delete box; }

	/// Opens and leaves each screen of a fresh menu.
	void allScreensOpen(const std::string &when)
	{
		const char *dialogs[] = {"ePsDialog", "eMemInfoDialog", "eScanLogDialog", "eSysInfDialog"};
		for (size_t i = 0; i < 4; ++i) {
			EXPECT_EQ(window(box->press("ok"))["class"], dialogs[i]) << when;
			EXPECT_EQ(window(box->press("exit"))["class"], "eVexloMenu") << when;
			box->press("down");
		}
	}

	static Box *box;
	static Json start;
};

Box *OnTheBoard::box = nullptr;
Json OnTheBoard::start;

TEST_F(OnTheBoard, shows_and_does_what_the_desk_shows)
{
	box->shell(ownCommands);
	box->shell(kept("ps"));
	box->shell(kept("df"));
	box->shell("cat /proc/meminfo >/tmp/meminfo && mount --bind /tmp/meminfo /proc/meminfo"); // held still
	support::ReceiverFolder receiver;
	receiver.meminfo(box->shell("cat /proc/meminfo"));
	receiver.mtd(box->shell("cat /proc/mtd"));
	receiver.scanLog(box->shell("cat /var/scaning.log"));

	Session session{*box, "", {start}, {box->screen()}};

	EXPECT_EQ(window(session.press("ok"))["class"], "ePsDialog");
	const std::string processes = box->shell("cat /tmp/ps");
	receiver.ps(processes);
	const std::vector<std::string> lines = support::lines(processes);
	size_t victim = 0;
	while (victim < lines.size() && lines[victim].find("/usr/sbin/epgd") == std::string::npos)
		++victim;
	ASSERT_LT(victim, lines.size()) << processes;
	const std::string id = std::to_string(std::stoi(lines[victim]));
	session.press({"end", "pageup", "down", "down", "end"}); // "down" moves the lines
	for (size_t i = victim + 1; i < lines.size(); ++i)
		session.press("up");
	EXPECT_TRUE(shows(session.press("ok"), "Kill " + id + " pid?"));
	EXPECT_EQ(box->shell("test -d /proc/" + id + " && echo there"), "there\n");
	EXPECT_EQ(window(session.press("ok"))["class"], "eVexloMenu");
	EXPECT_EQ(box->shell("test -d /proc/" + id + " || echo gone"), "gone\n");
	EXPECT_EQ(box->shell("busybox ps").find("epgd"), std::string::npos);

	EXPECT_EQ(window(session.press({"down", "ok"}))["class"], "eMemInfoDialog");

	EXPECT_TRUE(shows(session.press({"exit", "down", "ok"}), "tuner A start at 474000 kHz"));
	session.press({"down", "pagedown", "red"});
	EXPECT_EQ(box->shell("test -e /var/scaning.log && echo there"), "there\n");
	session.press("ok");
	EXPECT_EQ(box->shell("test -e /var/scaning.log || echo gone"), "gone\n");

	while (window(session.dump.back())["class"] != "eVexloMenu")
		session.press("exit");
	const Json &flash = session.press({"down", "ok"});
	receiver.df(box->shell("cat /tmp/df"));
	EXPECT_EQ(window(flash)["class"], "eSysInfDialog");
	std::istringstream mtd(box->shell("tail -n +2 /proc/mtd"));
	int partitions = 0;
	for (std::string device, size, erased, name; mtd >> device >> size >> erased && std::getline(mtd, name);
	     ++partitions)
		for (const std::string &field : {device, size, erased})
			EXPECT_TRUE(shows(flash, field)) << field;
	EXPECT_EQ(partitions, 5);
	std::istringstream mount(box->shell("busybox df -h /config | tail -n 1"));
	for (std::string field; mount >> field;)
		EXPECT_TRUE(shows(flash, field)) << field;
	session.press("exit");

	// The desk host draws the same windows and pictures from the same keys and files.
	support::TempFolder drawn;
	const support::DeskRun desk =
		support::runDesk(receiver.path(), session.keys, {"--pictures", drawn.path()});
	ASSERT_EQ(desk.dump.size(), session.dump.size()) << desk.outcome.err;
	std::vector<std::string> pictures;
	for (const auto &entry : std::filesystem::directory_iterator(drawn.path()))
		pictures.push_back(entry.path());
	std::sort(pictures.begin(), pictures.end());
	ASSERT_EQ(pictures.size(), session.screens.size());
	for (size_t i = 0; i < pictures.size(); ++i) {
		EXPECT_EQ(desk.dump[i], session.dump[i]);
		size_t differing = 0;
		const Picture there = inSixteenBits(pictures[i]);
		for (size_t at = 0; at < there.pixels.size(); ++at)
			differing += there.pixels[at] != session.screens[i].pixels[at];
		EXPECT_EQ(differing, 0u) << pictures[i];
	}
	box->press("exit");
	box->started(); // init restarts the menu
	box->shell("umount /proc/meminfo; umount /usr/bin");
}

TEST_F(OnTheBoard, opens_all_screens_when_nothing_more_fits_into_var_tmp)
{
	box->shell("mount -t tmpfs -o size=64k none /var/tmp; dd if=/dev/zero of=/var/tmp/full 2>/dev/null");
	EXPECT_EQ(box->shell("echo x 2>/dev/null >/var/tmp/x || echo full"), "full\n");
	allScreensOpen("/var/tmp is full");
	box->shell("umount /var/tmp");
}

TEST_F(OnTheBoard, opens_all_screens_on_read_only_flash)
{
	box->shell("mkdir -p /config/var/tmp; echo '0 a log on flash' >/config/var/scaning.log; "
	           "mount --bind /config/var /var; mount -o remount,ro /config");
	EXPECT_EQ(box->shell("echo x 2>/dev/null >/var/x || echo readonly"), "readonly\n");
	allScreensOpen("flash is read-only");
	// The log is on read-only flash, so deleting it fails.
	box->press("down");
	box->press("down");
	EXPECT_TRUE(shows(box->press("ok"), "a log on flash"));
	box->press("red");
	Json screen = box->press("ok");
	EXPECT_EQ(box->shell("cat /var/scaning.log"), "0 a log on flash\n");
	while (window(screen)["class"] != "eVexloMenu")
		screen = box->press("exit");
	box->press("up");
	box->press("up");
	box->shell("umount /var; mount -o remount,rw /config");
}

TEST_F(OnTheBoard, opens_all_screens_when_the_log_was_on_a_mount_that_is_gone)
{
	box->shell("mkdir -p /tmp/stick; mount -t tmpfs none /tmp/stick; echo '0 x' >/tmp/stick/log; "
	           "ln -sf /tmp/stick/log /var/scaning.log; umount -l /tmp/stick");
	allScreensOpen("the log's mount is gone");
	box->shell("rm /var/scaning.log");
}

TEST_F(OnTheBoard, opens_all_screens_without_ps)
{
	box->shell(ownCommands);
	box->shell("rm /usr/bin/ps");
	EXPECT_EQ(box->shell("ps 2>/dev/null || echo none"), "none\n");
	allScreensOpen("there is no ps");
	box->shell("umount /usr/bin");
}

TEST_F(OnTheBoard, is_a_small_box)
{
	EXPECT_LE(std::stoi(box->shell("awk '/^MemTotal:/ { print $2 }' /proc/meminfo")), 64 * 1024);
	allScreensOpen("after all that");
	const std::string resident = "cat /proc/$(pidof deskhost)/smaps_rollup "
								 "/proc/$(pidof deskhost-plugin)/smaps_rollup | "
								 "awk '/^Pss:/ { all += $2 } END { print all }'";
	// After all these tests. ./bench holds the dialogs alone to 16 MiB.
	EXPECT_LE(std::stoi(box->shell(resident)), 17 * 1024);
	EXPECT_LE(std::filesystem::file_size(support::sourcePath("build/receiver/squashfs")), 8u << 20);
	EXPECT_EQ(box->shell("ls /lib | grep SDL"), "");
	EXPECT_EQ(
		box->shell("/opt/menu/deskhost --screen window --as-is 2>&1"),
		"deskhost: this desk host is built without a window; use --screen terminal, framebuffer or none\n");
}

TEST_F(OnTheBoard, runs_another_plugin)
{
	box->shell("sed 's,--screen,--plugin /opt/menu/network.so.0 &,' /usr/sbin/menu >/tmp/network; "
	           "chmod +x /tmp/network; mount --bind /tmp/network /usr/sbin/menu");
	box->press("exit"); // init then starts the other plugin
	const Json network = box->started();
	EXPECT_EQ(window(network)["title"], "Network");
	EXPECT_FALSE(shows(network, "192.168.7.1/24"));
	box->shell("ip addr add 192.168.7.1/24 dev lo");
	EXPECT_TRUE(shows(box->press("green"), "192.168.7.1/24"));
	EXPECT_EQ(window(box->press("red"))["class"], "eMessageBox");
	EXPECT_EQ(window(box->press("ok"))["title"], "Network");
	box->shell("ip addr del 192.168.7.1/24 dev lo; umount /usr/sbin/menu");
	box->press("exit");
	EXPECT_EQ(window(box->started())["class"], "eVexloMenu");
}

TEST_F(OnTheBoard, gives_the_console_back_whatever_ends_the_menu)
{
	box->shell("echo '#!/bin/sh' >/tmp/idle; echo 'exec sleep 1000' >>/tmp/idle; chmod +x /tmp/idle");
	const char print[] = "printf '\\n\\n%30s' text >/dev/tty1"; // prints where screen() looks
	for (const std::string end : {"kill -TERM $(pidof deskhost)", "kill -9 $(pidof deskhost)"}) {
		const Picture menu = box->screen();
		box->shell(print);
		EXPECT_EQ(box->screen(), menu) << "the console draws over the menu";

		// init now starts a program that does not use the console instead of the menu.
		box->shell("mount --bind /tmp/idle /usr/sbin/menu; " + end);
		ASSERT_TRUE(support::eventually([&] { return !(box->screen() == menu); })) << end;
		box->shell("until pidof sleep >/tmp/pid; do usleep 1000; done");
		const Picture text = box->screen();
		box->shell(print);
		ASSERT_TRUE(support::eventually([&] { return !(box->screen() == text); })) << end;
		const Picture more = box->screen();
		box->type("x");
		ASSERT_TRUE(support::eventually([&] { return !(box->screen() == more); }))
			<< end << ": the keyboard does not type";
		box->shell("umount /usr/sbin/menu; kill $(pidof sleep)");
		box->started();
	}
}

TEST_F(OnTheBoard, sleeps_while_no_key_comes)
{
	const std::string time =
		"for p in $(pidof deskhost deskhost-plugin); do cut -d' ' -f14,15 /proc/$p/stat; done";
	const std::string before = box->shell(time);
	box->shell("sleep 1");
	EXPECT_EQ(box->shell(time), before);
}

// Must be last: it ends the box.
TEST_F(OnTheBoard, switches_off_by_the_power_key)
{
	EXPECT_TRUE(box->switchesOff());
}

} // namespace
