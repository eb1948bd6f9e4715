#include "png.h"
#include "support.h"
#include "window_on_display.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <utility>

namespace window_screen_test
{

using support::Child;
using support::Command;
using support::eventually;
using Strings = support::Command;

/// The desk host's window with the probe in place of the plugin's half.
class WindowScreen : public WindowOnDisplay
{
protected:
	void SetUp() override { open("1000x800x24"); }

	// Other pixel formats show slightly different values of green.
	void open(const std::string &geometry, unsigned long shownGreen = green, bool busy = false)
	{
		closeAll();
		openDisplay(geometry);
		openWindow({"env", "-C", folder.path(), support::deskhostPath(), "--screen", "window", "--through",
		            std::string(WINDOW_PROBE) + (busy ? " busy" : "")},
		           STDERR_FILENO);
		ASSERT_EQ(nextLine(), "ready");
		const XWindowAttributes place = this->geometry();
		ASSERT_TRUE(eventually([&] { return pixel(place.width / 2, place.height / 2) == shownGreen; }));
	}

	/// The probe's next line.
	std::string nextLine()
	{
		std::string line;
		do
			line = program.line();
		while (line.find(" note") != line.npos || line.find("deskhost: saved") == 0);
		return line;
	}

	void pressAndExpect(const char *keyboard, const char *remote)
	{
		press({keyboard});
		EXPECT_EQ(nextLine(), remote) << keyboard;
	}

	void openBusy() { open("1000x800x24", green, true); }

	void clickAndExpect(int x, int y, int button, const char *remote)
	{
		click(x, y, button);
		EXPECT_EQ(nextLine(), remote) << "button " << button << " at " << x << ", " << y;
	}

	static constexpr unsigned long green = 0x00FF00, red = 0xFF0000, blue = 0x0000FF, black = 0;

	support::TempFolder folder; // the probe's working folder
};

TEST_F(WindowScreen, turns_the_keyboard_into_the_remote_control)
{
	const char *const keys[][2] = {
		{"Up", "up"},         {"Down", "down"}, {"Left", "left"}, {"Right", "right"}, {"Prior", "pageup"},
		{"Next", "pagedown"}, {"Home", "home"}, {"End", "end"},   {"Return", "ok"},   {"KP_Enter", "ok"},
		{"Escape", "exit"},   {"F1", "red"},    {"F2", "green"},  {"F3", "yellow"},   {"F4", "blue"},
		{"0", "0"},           {"1", "1"},       {"2", "2"},       {"3", "3"},         {"4", "4"},
		{"5", "5"},           {"6", "6"},       {"7", "7"},       {"8", "8"},         {"9", "9"},
		{"KP_0", "0"},        {"KP_1", "1"},    {"KP_5", "5"},    {"KP_9", "9"},      {"k", "up"},
		{"j", "down"},        {"h", "left"},    {"l", "right"},   {"q", "exit"},      {"r", "red"},
		{"g", "green"},       {"y", "yellow"},  {"b", "blue"},
	};
	for (const auto &key : keys)
		pressAndExpect(key[0], key[1]);
}

TEST_F(WindowScreen, leaves_other_keys_alone)
{
	press({"a", "space", "Tab", "F5", "ctrl+c", "ctrl+j", "ctrl+1", "alt+F4", "shift"});
	pressAndExpect("Down", "down");
}

TEST_F(WindowScreen, keeps_the_order_of_fast_keys)
{
	Strings keys;
	for (int i = 0; i < 20; ++i)
		keys.insert(keys.end(), {"1", "2", "Down"});
	press(keys);
	for (int i = 0; i < 20; ++i) {
		EXPECT_EQ(nextLine(), "1");
		EXPECT_EQ(nextLine(), "2");
		EXPECT_EQ(nextLine(), "down");
	}
}

TEST_F(WindowScreen, shows_what_is_presented_and_only_that)
{
	EXPECT_EQ(pixel(50, 50), red);
	EXPECT_EQ(pixel(99, 99), red);
	EXPECT_EQ(pixel(100, 100), green);
	EXPECT_EQ(pixel(719, 575), green);
	pressAndExpect("F1", "red"); // painted, not yet shown
	XResizeWindow(view, window, 720, 700);
	EXPECT_TRUE(eventually([&] { return pixel(360, 2) == black && pixel(360, 300) == green; }));
	XResizeWindow(view, window, 720, 672);
	pressAndExpect("F2", "green");
	EXPECT_TRUE(eventually([&] { return pixel(400, 300) == blue; }));
}

TEST_F(WindowScreen, scales_its_frame_into_the_middle)
{
	XResizeWindow(view, window, 360, 500); // half the size: 360 x 336 with the keys, 82 free rows above
	EXPECT_TRUE(eventually([&] { return pixel(180, 50) == black && pixel(180, 250) == green; }));
	EXPECT_EQ(pixel(180, 80), black);
	EXPECT_EQ(pixel(180, 84), green);
	EXPECT_EQ(pixel(20, 100), red);
	EXPECT_EQ(pixel(60, 100), green);
	EXPECT_EQ(pixel(180, 367), green);
	EXPECT_NE(pixel(180, 372), green);
	EXPECT_NE(pixel(180, 372), black);
	EXPECT_EQ(pixel(180, 420), black);
	clickAndExpect(100, 82 + 50, 1, "click 200 100");
	XResizeWindow(view, window, 800, 672); // 40 columns free on both sides
	EXPECT_TRUE(eventually([&] { return pixel(20, 300) == black && pixel(400, 300) == green; }));
	EXPECT_EQ(pixel(38, 300), black);
	EXPECT_EQ(pixel(42, 300), green);
	EXPECT_EQ(pixel(779, 300), black);
}

TEST_F(WindowScreen, opens_at_a_size_that_suits_the_display)
{
	const struct
	{
		const char *display;
		int width, height;
	} sizes[] = {
		{"1280x800x24", 720, 672},
		{"640x480x24", 462, 432}, // scaled so that the whole window and a title bar fit
		{"3840x2160x24", 3 * 720, 3 * 672},
	};
	for (const auto &size : sizes) {
		open(size.display);
		EXPECT_EQ(geometry().width, size.width) << size.display;
		EXPECT_EQ(geometry().height, size.height) << size.display;
	}
}

TEST_F(WindowScreen, asks_the_window_manager_to_fill_the_display)
{
	const auto listen = [&] {
		XSelectInput(view, DefaultRootWindow(view), SubstructureNotifyMask);
		XSync(view, True);
	};
	const auto asked = [&] {
		XEvent event;
		while (XCheckTypedEvent(view, ClientMessage, &event))
			if (event.xclient.message_type == XInternAtom(view, "_NET_WM_STATE", False) &&
			    event.xclient.data.l[1] ==
			        static_cast<long>(XInternAtom(view, "_NET_WM_STATE_FULLSCREEN", False)))
				return true;
		return false;
	};
	listen();
	press({"F11"});
	EXPECT_TRUE(eventually(asked));
	open("1000x800x24");
	listen();
	click(660, 576 + 27); // "Full screen"
	EXPECT_TRUE(eventually(asked));
}

TEST_F(WindowScreen, turns_a_click_into_the_keys_that_it_means)
{
	clickAndExpect(300, 200, 1, "click 300 200");
	EXPECT_EQ(nextLine(), "up"); // the keys that the probe gives for a click
	EXPECT_EQ(nextLine(), "ok");
	clickAndExpect(719, 575, 1, "click 719 575");
}

TEST_F(WindowScreen, turns_the_wheel_into_up_and_down_and_the_right_button_into_exit)
{
	clickAndExpect(300, 200, 4, "up");
	clickAndExpect(300, 200, 5, "down");
	clickAndExpect(300, 200, 3, "exit");
	click(300, 200, 2); // the middle button has no function
	pressAndExpect("Down", "down");
}

TEST_F(WindowScreen, has_a_remote_control_to_click)
{
	clickAndExpect(33, 576 + 27, 1, "left");
	clickAndExpect(85, 576 + 27, 1, "up");
	clickAndExpect(137, 576 + 27, 1, "down");
	clickAndExpect(189, 576 + 27, 1, "right");
	clickAndExpect(262, 576 + 27, 1, "ok");
	clickAndExpect(336, 576 + 27, 1, "exit");
	clickAndExpect(412, 576 + 27, 1, "red");
	clickAndExpect(470, 576 + 27, 1, "green");
	clickAndExpect(586, 576 + 27, 1, "blue");
	clickAndExpect(33, 576 + 68, 1, "home");
	clickAndExpect(85, 576 + 68, 1, "pageup");
	clickAndExpect(137, 576 + 68, 1, "pagedown");
	clickAndExpect(189, 576 + 68, 1, "end");
	clickAndExpect(244, 576 + 68, 1, "1");
	clickAndExpect(595, 576 + 68, 1, "0");
	click(215, 576 + 48); // between the buttons
	pressAndExpect("Down", "down");
}

TEST_F(WindowScreen, saves_the_picture_under_the_next_free_name)
{
	press({"F12"});
	const auto saved = [&](const char *file) { return support::exists(folder / file); };
	EXPECT_TRUE(eventually([&] { return saved("deskhost-1.png"); }));
	// The file's name lies over the picture until the next key.
	EXPECT_TRUE(eventually([&] { return pixel(700, 560) != green; }));
	pressAndExpect("Down", "down");
	EXPECT_TRUE(eventually([&] { return pixel(700, 560) == green; }));
	click(660, 576 + 68);
	EXPECT_TRUE(eventually([&] { return saved("deskhost-2.png"); }));
	pressAndExpect("Down", "down"); // the file is complete

	const support::Png picture(folder / "deskhost-2.png");
	EXPECT_EQ(picture.width(), 720);
	EXPECT_EQ(picture.height(), 576);
	EXPECT_EQ(picture.pixel(50, 50), red);
	EXPECT_EQ(picture.pixel(700, 560), green); // without the file's name over it
}

TEST_F(WindowScreen, shows_the_last_notes_until_any_key)
{
	const auto hasText = [&](int row) {
		for (int x = 10; x < 110; ++x)
			if ((pixel(x, 8 + 20 * row + 10) & 0xFF) > 0xA0)
				return true;
		return false;
	};
	const auto lies = [&] { return pixel(400, 300) != green; };
	const auto hasNotes = [&] { // four rows of one note, one of the other, one printed line
		for (int row = 0; row < 6; ++row)
			if (!hasText(row))
				return false;
		return !hasText(6);
	};
	for (const char *back : {"F9", "Escape", "x", "F12"}) {
		press({"F9"});
		EXPECT_TRUE(eventually([&] { return lies() && hasNotes(); })) << back;
		EXPECT_TRUE(hasText(27)) << "what goes back";
		press({back});
		EXPECT_TRUE(eventually([&] { return !lies() && pixel(50, 50) == red; })) << back;
	}
	press({"F9"});
	EXPECT_TRUE(eventually(lies));
	click(300, 200);
	EXPECT_TRUE(eventually([&] { return !lies(); }));
	pressAndExpect("Down", "down"); // nothing above sent a key or a click
	EXPECT_FALSE(support::exists(folder / "deskhost-1.png"));
}

TEST_F(WindowScreen, shows_its_notes_while_its_program_is_busy)
{
	openBusy();
	press({"F9"});
	EXPECT_TRUE(eventually([&] { return pixel(400, 300) != green; }));
}

TEST_F(WindowScreen, ends_when_it_is_closed_whatever_its_program_does)
{
	openBusy();
	askToClose();
	EXPECT_EQ(program.exitStatus(), 1);

	openBusy();
	program.signal(SIGTERM);
	EXPECT_EQ(program.exitStatus(), 128 + SIGTERM);
}

TEST_F(WindowScreen, repairs_itself_while_its_program_is_busy)
{
	openBusy();
	XResizeWindow(view, window, 720, 700);
	EXPECT_TRUE(eventually([&] { return pixel(360, 2) == black && pixel(360, 300) == green; }));
}

TEST_F(WindowScreen, ends_in_order_when_its_display_goes)
{
	// Repeated, because the program may be drawing, asking or sleeping.
	for (int i = 0; i < 6; ++i) {
		XCloseDisplay(std::exchange(view, nullptr));
		server.signal(SIGKILL);
		EXPECT_EQ(nextLine(), "exit");
		EXPECT_EQ(nextLine(), "exit");
		EXPECT_EQ(nextLine(),
		          "deskhost: the display has gone: its server has ended or the connection to it broke");
		ASSERT_EQ(program.exitStatus(), 1);
		open("1000x800x24");
	}
}

TEST_F(WindowScreen, repairs_itself_when_it_is_uncovered)
{
	XSetWindowAttributes attributes = {};
	attributes.override_redirect = True;
	attributes.background_pixel = 0x123456;
	const Window cover = XCreateWindow(view, DefaultRootWindow(view), 0, 0, 1000, 800, 0, CopyFromParent,
	                                   InputOutput, nullptr, CWOverrideRedirect | CWBackPixel, &attributes);
	XMapRaised(view, cover);
	XSync(view, False);
	XDestroyWindow(view, cover);
	EXPECT_TRUE(eventually([&] { return pixel(400, 300) == green && pixel(50, 50) == red; }));
}

TEST_F(WindowScreen, uses_no_cpu_while_it_is_idle)
{
	// Until the opening is complete.
	std::this_thread::sleep_for(std::chrono::seconds(1));
	const long before = program.cpu();
	std::this_thread::sleep_for(std::chrono::seconds(3));
	EXPECT_LE(program.cpu() - before, 0);
	pressAndExpect("Down", "down");
}

TEST_F(WindowScreen, has_no_more_keys_once_it_is_closed)
{
	// Repeated to find races.
	for (int i = 0; i < 10; ++i) {
		askToClose();
		EXPECT_EQ(nextLine(), "exit");
		EXPECT_EQ(nextLine(), "exit");
		ASSERT_EQ(program.exitStatus(), 0);
		open("1000x800x24");
	}
}

TEST_F(WindowScreen, ends_by_a_signal)
{
	program.signal(SIGTERM);
	EXPECT_EQ(program.exitStatus(), 128 + SIGTERM);
	open("1000x800x24");
	program.signal(SIGINT);
	EXPECT_EQ(program.exitStatus(), 128 + SIGINT);
}

TEST_F(WindowScreen, works_on_a_display_of_16_bits_a_pixel)
{
	open("1000x800x16", 0x07E0);
	EXPECT_EQ(pixel(50, 50), 0xF800u);
}

TEST(WindowScreenWithoutADisplay, says_so_in_one_line)
{
	for (const char *display : {"-uDISPLAY", "DISPLAY=", "DISPLAY=:63999", "DISPLAY=nonsense"}) {
		SCOPED_TRACE(display);
		Child probe;
		probe.start({"env", display, support::deskhostPath(), "--screen", "window"}, onDisplay(""),
		            STDERR_FILENO);
		const std::string line = probe.line();
		EXPECT_EQ(line.find("deskhost: cannot open a window: "), 0u) << line;
		EXPECT_NE(line.find("; set DISPLAY or use --screen terminal or --screen none"), line.npos) << line;
		EXPECT_EQ(probe.line(), "(nothing)");
		EXPECT_EQ(probe.exitStatus(), 2);
	}
}

} // namespace window_screen_test
