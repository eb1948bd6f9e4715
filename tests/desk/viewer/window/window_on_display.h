// A virtual display for a test, with a program's window on it.

#ifndef VEXLO_TESTS_WINDOW_ON_DISPLAY_H
#define VEXLO_TESTS_WINDOW_ON_DISPLAY_H

#include "process.h"

#include <gtest/gtest.h>

#include <string>

// Last, because its macros are everyday words.
#include <X11/Xlib.h>

/// An environment with only this display; empty: without any.
support::Environment onDisplay(const std::string &name);

class WindowOnDisplay : public testing::Test
{
protected:
	void TearDown() override { closeAll(); }

	/// Starts a display such as "1000x800x24", with other options of Xvfb.
	void startDisplay(const std::string &geometry, const support::Command &options = {});
	/// Starts a display, and opens it for this program.
	void openDisplay(const std::string &geometry);
	/// Starts a program on the display, reads its output from descriptor `output`, and waits for its window.
	void openWindow(const support::Command &command, int output = 1);
	void closeAll();

	/// The colour shown at a point of the window.
	unsigned long pixel(int x, int y) const;
	XWindowAttributes geometry() const;
	std::string caption() const;

	/// Presses keys of the keyboard, by X's names.
	void press(const support::Command &keys) const;
	/// Clicks at a point of the window; 1 left, 3 right, 4 and 5 the wheel.
	void click(int x, int y, int button = 1) const;
	/// Runs xdotool.
	void tool(const support::Command &words) const;
	/// Sends what a window manager sends for its close button.
	void askToClose() const;

	support::Child server, program;
	std::string name;
	Display *view = nullptr;
	Window window = 0;

private:
	Window find() const;
};

#endif
