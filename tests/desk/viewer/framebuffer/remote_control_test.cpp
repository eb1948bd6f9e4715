// Keys from an input device.

#include "remote_control.h"

#include "error_of.h"
#include "kernel.h"

#include <gtest/gtest.h>
#include <linux/input.h>
#include <poll.h>
#include <sys/resource.h>

#include <chrono>
#include <thread>

using desk::Key;
using desk::RemoteControl;
using support::TempFolder;

namespace remote_control_test
{

const std::vector<unsigned int> keyboard = {KEY_UP, KEY_DOWN, KEY_LEFT, KEY_RIGHT, KEY_ENTER, KEY_ESC};
const std::vector<unsigned int> remoteKeys = {KEY_UP, KEY_DOWN, KEY_OK, KEY_EXIT, KEY_RED};

std::unique_ptr<RemoteControl> opened(const kernel::Remote &remote)
{
	return RemoteControl::open(remote.path);
}

/// The next key; nullopt: the device is gone.
std::optional<Key> wait(RemoteControl &control)
{
	for (;;) {
		if (const auto press = control.take())
			return press->key;
		if (control.gone())
			return std::nullopt;
		pollfd end = {control.descriptor(), POLLIN, 0};
		poll(&end, 1, -1);
	}
}

std::string refusal(const std::string &device)
{
	const std::string error = support::errorOf([&] { RemoteControl::open(device); });
	EXPECT_NE(error.find(device), error.npos) << error;
	return error;
}

TEST(RemoteControl, knows_the_keys_of_remote_controls_and_keyboards)
{
	const std::pair<unsigned int, const char *> known[] = {
		{KEY_UP, "up"},
		{KEY_DOWN, "down"},
		{KEY_LEFT, "left"},
		{KEY_RIGHT, "right"},
		{KEY_PAGEUP, "pageup"},
		{KEY_PAGEDOWN, "pagedown"},
		{KEY_HOME, "home"},
		{KEY_END, "end"},
		{KEY_OK, "ok"},
		{KEY_SELECT, "ok"},
		{KEY_ENTER, "ok"},
		{KEY_KPENTER, "ok"},
		{KEY_EXIT, "exit"},
		{KEY_ESC, "exit"},
		{KEY_BACK, "exit"},
		{KEY_RED, "red"},
		{KEY_GREEN, "green"},
		{KEY_YELLOW, "yellow"},
		{KEY_BLUE, "blue"},
		{KEY_F1, "red"},
		{KEY_F2, "green"},
		{KEY_F3, "yellow"},
		{KEY_F4, "blue"},
		{KEY_0, "0"},
		{KEY_1, "1"},
		{KEY_9, "9"},
		{KEY_NUMERIC_0, "0"},
		{KEY_NUMERIC_7, "7"},
		{KEY_KP3, "3"},
		{KEY_CHANNELUP, "pageup"},
		{KEY_CHANNELDOWN, "pagedown"},
	};
	TempFolder folder;
	std::vector<unsigned int> codes;
	for (const auto &pair : known)
		codes.push_back(pair.first);
	const kernel::Remote remote(folder, codes);
	const auto control = opened(remote);
	ASSERT_TRUE(control);
	for (const auto &[code, name] : known) {
		remote.press(code);
		const auto key = wait(*control);
		ASSERT_TRUE(key);
		EXPECT_STREQ(desk::keyName(*key), name) << code;
	}
}

TEST(RemoteControl, passes_over_what_is_no_key_of_the_menu)
{
	TempFolder folder;
	const kernel::Remote remote(folder, remoteKeys);
	const auto control = opened(remote);
	remote.press(KEY_VOLUMEUP);
	remote.send(EV_MSC, MSC_SCAN, 4711);
	remote.press(KEY_RED);
	EXPECT_EQ(wait(*control), Key::red);
}

TEST(RemoteControl, repeats_a_key_that_is_held)
{
	TempFolder folder;
	const kernel::Remote remote(folder, remoteKeys);
	const auto control = opened(remote);
	remote.key(KEY_DOWN, 1);
	EXPECT_EQ(wait(*control), Key::down);
	for (int i = 0; i < 3; ++i) {
		remote.key(KEY_DOWN, 2);
		EXPECT_EQ(wait(*control), Key::down);
	}
	remote.key(KEY_DOWN, 0);
	remote.press(KEY_OK);
	EXPECT_EQ(wait(*control), Key::ok);
}

TEST(RemoteControl, does_not_run_on_after_a_key_that_was_held)
{
	TempFolder folder;
	const kernel::Remote remote(folder, remoteKeys);
	const auto control = opened(remote);
	remote.key(KEY_DOWN, 1);
	for (int i = 0; i < 20; ++i)
		remote.key(KEY_DOWN, 2);
	EXPECT_EQ(wait(*control), Key::down);
	EXPECT_EQ(wait(*control), Key::down) << "twenty repeats that nobody waited for are one";
	for (int i = 0; i < 20; ++i)
		remote.key(KEY_DOWN, 2);
	remote.key(KEY_DOWN, 0);
	remote.press(KEY_UP);
	EXPECT_EQ(wait(*control), Key::up) << "and none when the key is let go";
}

TEST(RemoteControl, loses_no_press)
{
	TempFolder folder;
	const kernel::Remote remote(folder, remoteKeys);
	const auto control = opened(remote);
	for (const int code : {KEY_DOWN, KEY_DOWN, KEY_OK, KEY_DOWN, KEY_EXIT})
		remote.press(static_cast<unsigned int>(code));
	for (const Key key : {Key::down, Key::down, Key::ok, Key::down, Key::exit})
		EXPECT_EQ(wait(*control), key);
}

TEST(RemoteControl, sleeps_while_no_key_comes)
{
	TempFolder folder;
	const kernel::Remote remote(folder, remoteKeys);
	const auto control = opened(remote);
	rusage before = {}, after = {};
	std::thread later([&] {
		std::this_thread::sleep_for(std::chrono::milliseconds(500));
		remote.press(KEY_OK);
	});
	getrusage(RUSAGE_THREAD, &before);
	EXPECT_EQ(wait(*control), Key::ok);
	getrusage(RUSAGE_THREAD, &after);
	later.join();
	EXPECT_LT(after.ru_nvcsw - before.ru_nvcsw, 10) << "it woke for nothing";
	EXPECT_LT((after.ru_utime.tv_sec - before.ru_utime.tv_sec) * 1000000 + after.ru_utime.tv_usec -
	              before.ru_utime.tv_usec,
	          100000);
}

TEST(RemoteControl, ends_when_it_is_unplugged)
{
	TempFolder folder;
	kernel::Remote remote(folder, remoteKeys);
	const auto control = opened(remote);
	remote.press(KEY_OK);
	remote.unplug();
	EXPECT_EQ(wait(*control), Key::ok) << "what was pressed before counts";
	EXPECT_EQ(wait(*control), std::nullopt);
	EXPECT_EQ(wait(*control), std::nullopt);
}

TEST(RemoteControl, says_what_is_wrong_with_a_device)
{
	TempFolder folder;
	EXPECT_NE(refusal(folder / "event9").find("plugged in"), std::string::npos);
	EXPECT_NE(refusal(folder.write("file", "")).find("no input device"), std::string::npos);
	const kernel::Remote mouse(folder, {BTN_LEFT, BTN_RIGHT});
	EXPECT_NE(refusal(mouse.path).find("lacks the keys"), std::string::npos);
}

TEST(RemoteControl, is_found_before_a_keyboard)
{
	TempFolder folder;
	const auto find = [&] { return desk::findRemoteControl(folder.path()); };
	EXPECT_NE(support::errorOf(find).find("plug one in"), std::string::npos);
	const kernel::Remote mouse(folder, {BTN_LEFT}, "event0");
	EXPECT_NE(support::errorOf(find).find("plug one in"), std::string::npos);
	const kernel::Remote second(folder, keyboard, "event10"), first(folder, keyboard, "event9");
	EXPECT_EQ(find(), first.path);
	const kernel::Remote remote(folder, remoteKeys, "event11");
	EXPECT_EQ(find(), remote.path);
}

} // namespace remote_control_test
