#include "process.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

// Last: its macros are everyday words.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace
{

using Strings = std::vector<std::string>;
using support::Child;
using support::Environment;
using support::eventually;

/// The test's own environment, without any display but this one; empty: none.
Environment onDisplay(const std::string &display)
{
	return {{"DISPLAY", display}, {"WAYLAND_DISPLAY", ""}, {"SDL_VIDEODRIVER", ""}};
}

/// A display, the probe's window on it, and a view of both from outside.
class WindowScreen : public testing::Test
{
protected:
	void SetUp() override { open("1000x800x24"); }

	// A display of other pixels shows other values for the same colours.
	void open(const std::string &geometry, unsigned long shownGreen = green)
	{
		server.start({XVFB, "-displayfd", "7", "-screen", "0", geometry, "-nolisten", "tcp"}, onDisplay(""),
		             7);
		const std::string number = server.line();
		ASSERT_NE(number, "(nothing)") << "no virtual display";
		name = ":" + number;
		view = XOpenDisplay(name.c_str());
		XSetErrorHandler([](Display *, XErrorEvent *) { return 0; }); // a place not yet on the screen
		ASSERT_TRUE(view);
		probe.start({WINDOW_PROBE}, onDisplay(name));
		ASSERT_EQ(probe.line(), "ready");
		ASSERT_TRUE(eventually([&] { return (window = find()) != 0; }));
		ASSERT_TRUE(eventually([&] { return pixel(400, 300) == shownGreen; }));
		// There is no window manager that would do this.
		XSetInputFocus(view, window, RevertToParent, CurrentTime);
		XSync(view, False);
	}

	void TearDown() override
	{
		probe.end();
		if (view)
			XCloseDisplay(view);
	}

	void reopen(const std::string &geometry, unsigned long shownGreen = green)
	{
		TearDown();
		server.end();
		open(geometry, shownGreen);
	}

	Window find()
	{
		Window root = 0, parent = 0, *children = nullptr;
		unsigned count = 0;
		XQueryTree(view, DefaultRootWindow(view), &root, &parent, &children, &count);
		Window found = 0;
		for (unsigned i = 0; i < count; ++i) {
			XWindowAttributes attributes;
			char *title = nullptr;
			if (XGetWindowAttributes(view, children[i], &attributes) && attributes.map_state == IsViewable &&
			    XFetchName(view, children[i], &title) && title) {
				if (std::string(title).find("F1-F4 (red green yellow blue)") != std::string::npos)
					found = children[i];
				XFree(title);
			}
		}
		if (children)
			XFree(children);
		return found;
	}

	/// The colour that can be seen at a place of the window.
	unsigned long pixel(int x, int y)
	{
		XImage *image = XGetImage(view, window, x, y, 1, 1, AllPlanes, ZPixmap);
		if (!image)
			return 1;
		const unsigned long value = XGetPixel(image, 0, 0) & 0xFFFFFF;
		XDestroyImage(image);
		return value;
	}

	void press(const Strings &keys)
	{
		Strings words = {XDOTOOL, "key"};
		words.insert(words.end(), keys.begin(), keys.end());
		Child tool;
		tool.start(words, onDisplay(name));
		ASSERT_EQ(tool.exitStatus(), 0);
	}

	void pressAndExpect(const char *keyboard, const char *remote)
	{
		press({keyboard});
		EXPECT_EQ(probe.line(), remote) << keyboard;
	}

	/// What a window manager sends when its close button is pressed.
	void askToClose()
	{
		XEvent event = {};
		event.xclient.type = ClientMessage;
		event.xclient.window = window;
		event.xclient.message_type = XInternAtom(view, "WM_PROTOCOLS", False);
		event.xclient.format = 32;
		event.xclient.data.l[0] = static_cast<long>(XInternAtom(view, "WM_DELETE_WINDOW", False));
		XSendEvent(view, window, False, NoEventMask, &event);
		XSync(view, False);
	}

	static constexpr unsigned long green = 0x00FF00, red = 0xFF0000, blue = 0x0000FF, black = 0;

	Child server, probe;
	std::string name;
	Display *view = nullptr;
	Window window = 0;
};

TEST_F(WindowScreen, TurnsTheKeyboardIntoTheRemoteControl)
{
	const char *const keys[][2] = {
		{"Up", "up"},         {"Down", "down"}, {"Left", "left"}, {"Right", "right"}, {"Prior", "pageup"},
		{"Next", "pagedown"}, {"Home", "home"}, {"End", "end"},   {"Return", "ok"},   {"KP_Enter", "ok"},
		{"Escape", "exit"},   {"F1", "red"},    {"F2", "green"},  {"F3", "yellow"},   {"F4", "blue"},
		{"0", "0"},           {"1", "1"},       {"2", "2"},       {"3", "3"},         {"4", "4"},
		{"5", "5"},           {"6", "6"},       {"7", "7"},       {"8", "8"},         {"9", "9"},
		{"KP_0", "0"},        {"KP_1", "1"},    {"KP_5", "5"},    {"KP_9", "9"},
	};
	for (const auto &key : keys)
		pressAndExpect(key[0], key[1]);
}

TEST_F(WindowScreen, LeavesOtherKeysAlone)
{
	press({"a", "space", "Tab", "F5", "F12", "ctrl+c", "ctrl+1", "alt+F4", "shift"});
	pressAndExpect("Down", "down");
}

TEST_F(WindowScreen, KeepsTheOrderOfFastKeys)
{
	Strings keys;
	for (int i = 0; i < 20; ++i)
		keys.insert(keys.end(), {"1", "2", "Down"});
	press(keys);
	for (int i = 0; i < 20; ++i) {
		EXPECT_EQ(probe.line(), "1");
		EXPECT_EQ(probe.line(), "2");
		EXPECT_EQ(probe.line(), "down");
	}
}

TEST_F(WindowScreen, ShowsWhatIsPresentedAndOnlyThat)
{
	EXPECT_EQ(pixel(50, 50), red);
	EXPECT_EQ(pixel(99, 99), red);
	EXPECT_EQ(pixel(100, 100), green);
	EXPECT_EQ(pixel(719, 575), green);
	pressAndExpect("F1", "red"); // has painted, not presented
	XResizeWindow(view, window, 720, 600);
	EXPECT_TRUE(eventually([&] { return pixel(360, 2) == black && pixel(360, 300) == green; }));
	XResizeWindow(view, window, 720, 576);
	pressAndExpect("F2", "green");
	EXPECT_TRUE(eventually([&] { return pixel(400, 300) == blue; }));
}

TEST_F(WindowScreen, ScalesItsFrameIntoTheMiddle)
{
	XResizeWindow(view, window, 360, 500); // half the size: 360 x 288, 106 rows free above
	EXPECT_TRUE(eventually([&] { return pixel(180, 50) == black && pixel(180, 250) == green; }));
	EXPECT_EQ(pixel(180, 104), black);
	EXPECT_EQ(pixel(180, 108), green);
	EXPECT_EQ(pixel(20, 120), red);
	EXPECT_EQ(pixel(60, 120), green);
	EXPECT_EQ(pixel(180, 392), green);
	EXPECT_EQ(pixel(180, 396), black);
	XResizeWindow(view, window, 800, 576); // 40 columns free on both sides
	EXPECT_TRUE(eventually([&] { return pixel(20, 300) == black && pixel(400, 300) == green; }));
	EXPECT_EQ(pixel(38, 300), black);
	EXPECT_EQ(pixel(42, 300), green);
	EXPECT_EQ(pixel(779, 300), black);
}

TEST_F(WindowScreen, RepairsItselfWhenItIsUncovered)
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

TEST_F(WindowScreen, UsesNoCpuWhileItIsIdle)
{
	// Until what the opening brings has passed.
	std::this_thread::sleep_for(std::chrono::seconds(1));
	const long before = probe.cpu();
	std::this_thread::sleep_for(std::chrono::seconds(3));
	EXPECT_LE(probe.cpu() - before, 0);
	pressAndExpect("Down", "down");
}

TEST_F(WindowScreen, HasNoMoreKeysOnceItIsClosed)
{
	// More than once: ending at once after a wait has its races.
	for (int i = 0; i < 10; ++i) {
		askToClose();
		EXPECT_EQ(probe.line(), "closed");
		ASSERT_EQ(probe.exitStatus(), 0);
		reopen("1000x800x24");
	}
}

TEST_F(WindowScreen, HasNoMoreKeysOnceASignalEndsIt)
{
	probe.signal(SIGTERM);
	EXPECT_EQ(probe.line(), "closed");
	EXPECT_EQ(probe.exitStatus(), 0);
	reopen("1000x800x24");
	probe.signal(SIGINT);
	EXPECT_EQ(probe.line(), "closed");
	EXPECT_EQ(probe.exitStatus(), 0);
}

TEST_F(WindowScreen, WorksOnADisplayOf16BitsAPixel)
{
	reopen("1000x800x16", 0x07E0);
	EXPECT_EQ(pixel(50, 50), 0xF800u);
}

TEST(WindowScreenWithoutADisplay, SaysSoInOneLine)
{
	for (const char *display : {"-uDISPLAY", "DISPLAY=", "DISPLAY=:63999", "DISPLAY=nonsense"}) {
		SCOPED_TRACE(display);
		Child probe;
		probe.start({"env", display, WINDOW_PROBE}, onDisplay(""), STDERR_FILENO);
		const std::string line = probe.line();
		EXPECT_EQ(line.find("cannot open a window: "), 0u) << line;
		EXPECT_NE(line.find("; set DISPLAY or use --screen terminal or --screen none"), line.npos) << line;
		EXPECT_EQ(probe.line(), "(nothing)");
		EXPECT_EQ(probe.exitStatus(), 1);
	}
}

} // namespace
