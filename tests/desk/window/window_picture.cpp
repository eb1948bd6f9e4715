// window_picture FILE: writes what the display shows, all of it, as a PNG. The display must have 24 bits a pixel.

#include <cairo.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstdio>

int main(int argc, char **argv)
{
	Display *display = argc == 2 ? XOpenDisplay(nullptr) : nullptr;
	if (!display) {
		std::fprintf(stderr, "usage: DISPLAY=:N window_picture FILE\n");
		return 2;
	}
	XWindowAttributes root;
	XGetWindowAttributes(display, DefaultRootWindow(display), &root);
	XImage *image = XGetImage(display, DefaultRootWindow(display), 0, 0, static_cast<unsigned>(root.width),
	                          static_cast<unsigned>(root.height), AllPlanes, ZPixmap);
	if (!image || image->bits_per_pixel != 32) {
		std::fprintf(stderr, "window_picture: the display does not have 24 bits a pixel\n");
		return 1;
	}
	cairo_surface_t *surface = cairo_image_surface_create_for_data(
		reinterpret_cast<unsigned char *>(image->data), CAIRO_FORMAT_RGB24, root.width, root.height,
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
