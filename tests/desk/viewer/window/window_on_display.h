// A display of its own for a test, with the window of a program on it.

#ifndef VEXLO_TESTS_WINDOW_ON_DISPLAY_H
#define VEXLO_TESTS_WINDOW_ON_DISPLAY_H

#include "process.h"

#include <gtest/gtest.h>

#include <string>

// Last: its macros are everyday words.
#include <X11/Xlib.h>

/// The test's own environment, without any display but this one; empty: none.
support::Environment onDisplay(const std::string &name);

class WindowOnDisplay : public testing::Test
{
protected:
	void TearDown() override { closeAll(); }

	/// Starts a display such as "1000x800x24".
	void openDisplay(const std::string &geometry);
	/// Starts a program there, whose output is read from this descriptor, and waits for its window.
	void openWindow(const support::Command &command, int output = 1);
	void closeAll();

	/// The colour that can be seen at a place of the window.
	unsigned long pixel(int x, int y) const;
	/// The window's size, its place.
	XWindowAttributes geometry() const;
	/// What the window is called.
	std::string caption() const;

	/// Presses keys of the keyboard, by X's names.
	void press(const support::Command &keys) const;
	/// Presses a button of the mouse at a place of the window; 1 left, 3 right, 4 and 5 the wheel.
	void click(int x, int y, int button = 1) const;
	/// Has xdotool do something else.
	void tool(const support::Command &words) const;
	/// What a window manager sends when its close button is pressed.
	void askToClose() const;

	support::Child server, program;
	std::string name;
	Display *view = nullptr;
	Window window = 0;

private:
	Window find() const;
};

#endif
