#include "window_screen.h"

#include "pixel_canvas.h"
#include "visible_text.h"

#include <SDL.h>
#include <X11/Xlib.h>
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace desk
{
namespace
{

std::optional<Key> keyOf(const SDL_Keysym &pressed)
{
	// Chords belong to the window manager and its programs.
	if (pressed.mod & (KMOD_CTRL | KMOD_ALT | KMOD_GUI))
		return std::nullopt;
	// By place, not by letter: on some keyboards the digits are shifted.
	switch (pressed.scancode) {
	case SDL_SCANCODE_UP:
		return Key::up;
	case SDL_SCANCODE_DOWN:
		return Key::down;
	case SDL_SCANCODE_LEFT:
		return Key::left;
	case SDL_SCANCODE_RIGHT:
		return Key::right;
	case SDL_SCANCODE_PAGEUP:
		return Key::pageup;
	case SDL_SCANCODE_PAGEDOWN:
		return Key::pagedown;
	case SDL_SCANCODE_HOME:
		return Key::home;
	case SDL_SCANCODE_END:
		return Key::end;
	case SDL_SCANCODE_RETURN:
	case SDL_SCANCODE_KP_ENTER:
		return Key::ok;
	case SDL_SCANCODE_ESCAPE:
		return Key::exit;
	case SDL_SCANCODE_F1:
		return Key::red;
	case SDL_SCANCODE_F2:
		return Key::green;
	case SDL_SCANCODE_F3:
		return Key::yellow;
	case SDL_SCANCODE_F4:
		return Key::blue;
	case SDL_SCANCODE_0:
	case SDL_SCANCODE_KP_0:
		return Key::digit0;
	default:
		break;
	}
	const auto digit = [&](SDL_Scancode one) -> std::optional<Key> {
		if (pressed.scancode < one || pressed.scancode >= one + 9)
			return std::nullopt;
		return static_cast<Key>(static_cast<int>(Key::digit1) + (pressed.scancode - one));
	};
	const auto key = digit(SDL_SCANCODE_1);
	return key ? key : digit(SDL_SCANCODE_KP_1);
}

class WindowScreen : public Screen
{
public:
	explicit WindowScreen(SDL_Window *opened) : window(opened) {}

	~WindowScreen() override
	{
		cairo_surface_destroy(frame);
		SDL_DestroyWindow(window);
		SDL_Quit();
	}

	WindowScreen(const WindowScreen &) = delete;
	WindowScreen &operator=(const WindowScreen &) = delete;

	Canvas *canvas() override { return &painted; }

	void present(const Rect &) override
	{
		// A copy: what is painted later is not to be seen before it is presented.
		const unsigned char *from = painted.pixels();
		unsigned char *to = cairo_image_surface_get_data(frame);
		std::copy(from, from + painted.stride() * screenHeight, to);
		cairo_surface_mark_dirty(frame);
		show();
	}

	std::optional<Key> waitKey() override
	{
		SDL_Event event;
		while (!closed && SDL_WaitEvent(&event)) {
			switch (event.type) {
			case SDL_KEYDOWN:
				if (const auto key = keyOf(event.key.keysym))
					return key;
				break;
			case SDL_WINDOWEVENT:
				if (event.window.event == SDL_WINDOWEVENT_EXPOSED ||
				    event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED)
					show();
				break;
			case SDL_USEREVENT: // wake()
				return std::nullopt;
			case SDL_QUIT: // the window's own button, or a signal that ends programs
				closed = true;
				break;
			default:
				break;
			}
		}
		closed = true;
		return std::nullopt;
	}

	void wake() override
	{
		SDL_Event event = {};
		event.type = SDL_USEREVENT;
		SDL_PushEvent(&event);
	}

private:
	// Puts the frame into the middle of the window, as large as it fits.
	void show()
	{
		SDL_Surface *target = SDL_GetWindowSurface(window);
		if (!target)
			return;
		cairo_surface_t *scaled = cairo_image_surface_create(CAIRO_FORMAT_RGB24, target->w, target->h);
		cairo_t *to = cairo_create(scaled);
		const double scale = std::min(double(target->w) / screenWidth, double(target->h) / screenHeight);
		cairo_translate(to, std::floor((target->w - screenWidth * scale) / 2),
		                std::floor((target->h - screenHeight * scale) / 2));
		cairo_scale(to, scale, scale);
		cairo_set_source_surface(to, frame, 0, 0);
		cairo_pattern_set_filter(cairo_get_source(to), CAIRO_FILTER_GOOD);
		cairo_pattern_set_extend(cairo_get_source(to), CAIRO_EXTEND_PAD); // no dark edge where it is scaled
		cairo_rectangle(to, 0, 0, screenWidth, screenHeight);
		cairo_fill(to);
		cairo_destroy(to);
		cairo_surface_flush(scaled);
		// The display's own pixels may be of any kind: the copy converts them.
		SDL_Surface *source = SDL_CreateRGBSurfaceWithFormatFrom(
			cairo_image_surface_get_data(scaled), target->w, target->h, 32,
			cairo_image_surface_get_stride(scaled), SDL_PIXELFORMAT_RGB888);
		if (source && SDL_BlitSurface(source, nullptr, target, nullptr) == 0)
			SDL_UpdateWindowSurface(window);
		SDL_FreeSurface(source);
		cairo_surface_destroy(scaled);
	}

	SDL_Window *window;
	PixelCanvas painted;
	cairo_surface_t *frame = cairo_image_surface_create(CAIRO_FORMAT_RGB24, screenWidth, screenHeight);
	bool closed = false;
};

} // namespace

std::unique_ptr<Screen> makeWindowScreen(const std::string &title, std::string &error)
{
	const auto failed = [&](const std::string &why) {
		error = visibleText("cannot open a window: " + why +
		                    "; set DISPLAY or use --screen terminal or --screen none");
		SDL_Quit();
		return nullptr;
	};
	const auto value = [](const char *name) {
		const char *set = getenv(name);
		return std::string(set ? set : "");
	};
	const std::string display = value("DISPLAY"), wayland = value("WAYLAND_DISPLAY");
	// Asked without a display, some of SDL's drivers take the machine's console, others complain by
	// themselves. Whoever names a driver gets that one.
	if (value("SDL_VIDEODRIVER").empty()) {
		if (display.empty() && wayland.empty())
			return failed("there is no display");
		SDL_SetHint(SDL_HINT_VIDEODRIVER, wayland.empty()   ? "x11"
		                                  : display.empty() ? "wayland"
		                                                    : "x11,wayland");
	}
	SDL_SetMainReady();
	SDL_SetHint(SDL_HINT_APP_NAME, "deskhost");
	SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
	SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
	// SDL wakes its own wait by a message to the window, on a second connection, and the last one may reach
	// the display after the window is gone. For that Xlib would end the program, were this not set before
	// SDL remembers what was set.
	XSetErrorHandler([](Display *, XErrorEvent *) { return 0; });
	if (SDL_Init(SDL_INIT_VIDEO) != 0)
		return failed("display \"" + (display.empty() ? wayland : display) + "\": " + SDL_GetError());
	// A menu is drawn sooner than a graphics driver is loaded, and without the driver's threads.
	if (strcmp(SDL_GetCurrentVideoDriver(), "x11") == 0)
		SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
	const std::string shown =
		visibleText(title) + " - arrows, Enter, Esc, F1-F4 (red green yellow blue)";
	SDL_Window *window =
		SDL_CreateWindow(shown.c_str(), SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, screenWidth,
	                     screenHeight, SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
	if (!window || !SDL_GetWindowSurface(window))
		return failed(SDL_GetError());
	SDL_SetWindowMinimumSize(window, screenWidth / 2, screenHeight / 2);
	SDL_StopTextInput(); // keys, not letters: no input method is wanted
	return std::make_unique<WindowScreen>(window);
}

} // namespace desk
