#include "window_on_display.h"

#include <X11/Xutil.h>

using support::Child;
using support::Command;
using support::eventually;

support::Environment onDisplay(const std::string &name)
{
	return {{"DISPLAY", name}, {"WAYLAND_DISPLAY", ""}, {"SDL_VIDEODRIVER", ""}};
}

void WindowOnDisplay::startDisplay(const std::string &geometry, const Command &options)
{
	Command command = {XVFB, "-displayfd", "7", "-screen", "0", geometry, "-nolisten", "tcp"};
	command.insert(command.end(), options.begin(), options.end());
	server.start(command, onDisplay(""), 7);
	const std::string number = server.line();
	ASSERT_NE(number, "(nothing)") << "no virtual display";
	name = ":" + number;
}

void WindowOnDisplay::openDisplay(const std::string &geometry)
{
	startDisplay(geometry);
	view = XOpenDisplay(name.c_str());
	XSetErrorHandler([](Display *, XErrorEvent *) { return 0; }); // pixel() before the window shows
	ASSERT_TRUE(view);
}

void WindowOnDisplay::openWindow(const Command &command, int output)
{
	program.start(command, onDisplay(name), output);
	ASSERT_TRUE(eventually([&] { return (window = find()) != 0; }));
	// No window manager does this here.
	XSetInputFocus(view, window, RevertToParent, CurrentTime);
	XSync(view, False);
}

void WindowOnDisplay::closeAll()
{
	program.end();
	if (view)
		XCloseDisplay(view);
	view = nullptr;
	server.end();
}

Window WindowOnDisplay::find() const
{
	Window root = 0, parent = 0, *children = nullptr;
	unsigned count = 0;
	XQueryTree(view, DefaultRootWindow(view), &root, &parent, &children, &count);
	Window found = 0;
	for (unsigned i = 0; i < count; ++i) {
		XWindowAttributes attributes;
		XTextProperty title = {};
		if (XGetWindowAttributes(view, children[i], &attributes) && attributes.map_state == IsViewable &&
		    XGetWMName(view, children[i], &title) && title.value) {
			const std::string text(reinterpret_cast<const char *>(title.value), title.nitems);
			if (text.find("F1-F4 (red green yellow blue)") != text.npos)
				found = children[i];
			XFree(title.value);
		}
	}
	if (children)
		XFree(children);
	return found;
}

unsigned long WindowOnDisplay::pixel(int x, int y) const
{
	XImage *image = XGetImage(view, window, x, y, 1, 1, AllPlanes, ZPixmap);
	if (!image)
		return 1;
	const unsigned long value = XGetPixel(image, 0, 0) & 0xFFFFFF;
	XDestroyImage(image);
	return value;
}

XWindowAttributes WindowOnDisplay::geometry() const
{
	XWindowAttributes attributes = {};
	XGetWindowAttributes(view, window, &attributes);
	return attributes;
}

void WindowOnDisplay::tool(const Command &words) const
{
	Command command = {XDOTOOL};
	command.insert(command.end(), words.begin(), words.end());
	const support::Outcome outcome = support::run(command, onDisplay(name));
	ASSERT_EQ(outcome.status, 0) << outcome.err;
}

void WindowOnDisplay::press(const Command &keys) const
{
	Command words = {"key"};
	words.insert(words.end(), keys.begin(), keys.end());
	tool(words);
}

void WindowOnDisplay::click(int x, int y, int button) const
{
	const auto text = [](long number) { return std::to_string(number); };
	tool({"mousemove", "--window", text(static_cast<long>(window)), text(x), text(y), "click", text(button)});
}

std::string WindowOnDisplay::caption() const
{
	XTextProperty text;
	if (!XGetWMName(view, window, &text))
		return {};
	const std::string said(reinterpret_cast<const char *>(text.value), text.nitems);
	XFree(text.value);
	return said;
}

void WindowOnDisplay::askToClose() const
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
