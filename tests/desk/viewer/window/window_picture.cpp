// window_picture FILE: saves the only window on the display as a PNG. The display must have 24 bits a pixel.

#include <cairo.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstdio>

namespace
{

/// The visible window; 0 without one.
Window visibleWindow(Display *display)
{
	Window root = 0, parent = 0, *children = nullptr, found = 0;
	unsigned count = 0;
	XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count);
	for (unsigned i = 0; i < count; ++i) {
		XWindowAttributes attributes;
		if (XGetWindowAttributes(display, children[i], &attributes) && attributes.map_state == IsViewable)
			found = children[i];
	}
	if (children)
		XFree(children);
	return found;
}

} // namespace

int main(int argc, char **argv)
{
	Display *display = argc == 2 ? XOpenDisplay(nullptr) : nullptr;
	if (!display) {
		std::fprintf(stderr, "usage: DISPLAY=:N window_picture FILE\n");
		return 2;
	}
	const Window window = visibleWindow(display);
	if (!window) {
		std::fprintf(stderr, "window_picture: there is no window\n");
		return 1;
	}
	XWindowAttributes place;
	XGetWindowAttributes(display, window, &place);
	XImage *image = XGetImage(display, window, 0, 0, static_cast<unsigned>(place.width),
	                          static_cast<unsigned>(place.height), AllPlanes, ZPixmap);
	if (!image || image->bits_per_pixel != 32) {
		std::fprintf(stderr, "window_picture: the display does not have 24 bits a pixel\n");
		return 1;
	}
	cairo_surface_t *surface = cairo_image_surface_create_for_data(
		reinterpret_cast<unsigned char *>(image->data), CAIRO_FORMAT_RGB24, place.width, place.height,
		image->bytes_per_line);
	const cairo_status_t status = cairo_surface_write_to_png(surface, argv[1]);
	cairo_surface_destroy(surface);
	XDestroyImage(image);
	XCloseDisplay(display);
	if (status != CAIRO_STATUS_SUCCESS)
		std::fprintf(stderr, "window_picture: cannot write %s: %s\n", argv[1],
		             cairo_status_to_string(status));
	return status == CAIRO_STATUS_SUCCESS ? 0 : 1;
}
