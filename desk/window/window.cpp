#include "window.h"

#include "note_log.h"
#include "visible_text.h"
#include "window_keys.h"
#include "window_screen.h"

#include <SDL_syswm.h>
#include <X11/Xlib.h>
#include <cairo.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <future>
#include <optional>
#include <sstream>
#include <thread>
#include <utility>

namespace desk
{
namespace
{

using Clock = std::chrono::steady_clock;

// Between the end of the window and that of the program, when the plugin does not return.
constexpr std::chrono::milliseconds patience(1000);

constexpr int width = screenWidth, height = screenHeight + stripHeight;

[[noreturn]] void endAtOnce(const char *why)
{
	fprintf(stderr, "deskhost: %s while the plugin or a command was busy; ended without waiting for it\n",
	        why);
	_exit(1);
}

Exchange *served = nullptr; // by the one window there is

// Xlib ends the program as soon as this returns. It runs on the window's thread, which stays here: the
// plugin's thread is given time to end in order.
int displayIsGone(Display *)
{
	served->lose("the display has gone: its server has ended or the connection to it broke");
	if (!served->finishingWithin(patience))
		endAtOnce("the display has gone");
	for (;;)
		pause();
}

volatile std::sig_atomic_t signalled = 0;

void onSignal(int)
{
	signalled = 1;
	const int before = errno;
	eventfd_write(served->descriptor(), 1);
	errno = before;
}

// INT and TERM close the window, unless the program was started without them.
void watchSignals(void (*handler)(int))
{
	for (const int number : {SIGINT, SIGTERM}) {
		struct sigaction action = {};
		sigaction(number, nullptr, &action);
		if (action.sa_handler == SIG_IGN)
			continue;
		action.sa_handler = handler;
		action.sa_flags = SA_RESTART; // the plugin's reading knows nothing of signals
		sigaction(number, &action, nullptr);
	}
}

std::string variable(const char *name)
{
	const char *value = getenv(name);
	return value ? value : "";
}

// What lies over the picture: rows of text, within a margin.
constexpr int panelRow = 20, panelMargin = 8;
constexpr int panelRows = (screenHeight - 2 * panelMargin) / panelRow;
constexpr int panelColumns = (screenWidth - 2 * panelMargin) / 8; // of Face::columns in such a row

constexpr Rect panelRowAt(int row)
{
	return {panelMargin, panelMargin + row * panelRow, screenWidth - 2 * panelMargin, panelRow};
}

TextStyle panelText(Face face)
{
	TextStyle style;
	style.color = {238, 243, 247};
	style.face = face;
	return style;
}

// How many pixels of the display a pixel of the picture takes: whole ones where one fits at all, with
// room for what the desktop puts around a window.
double suitableScale()
{
	SDL_Rect room = {0, 0, width, height};
	SDL_GetDisplayUsableBounds(0, &room);
	const double scale = std::min((room.w - 16) / double(width), (room.h - 48) / double(height));
	return scale >= 1 ? std::floor(scale) : std::max(scale, 0.25);
}

} // namespace

Window::~Window()
{
	panel.reset();
	strip.reset();
	picture.reset();
	renderer.reset();
	window.reset();
	SDL_Quit();
	watchSignals(SIG_DFL);
}

namespace
{

// Connects SDL to the display. False on failure, with one line in `error`.
bool startVideo(std::string &error)
{
	const std::string x11 = variable("DISPLAY"), wayland = variable("WAYLAND_DISPLAY");
	const auto failed = [&](const std::string &why) {
		error = visibleText("cannot open a window: " + why +
		                    "; set DISPLAY or use --screen terminal or --screen none");
		return false;
	};
	// Asked without a display, some of SDL's drivers take the machine's console, others complain by
	// themselves. Whoever names a driver gets that one.
	if (variable("SDL_VIDEODRIVER").empty()) {
		if (x11.empty() && wayland.empty())
			return failed("there is no display");
		SDL_SetHint(SDL_HINT_VIDEODRIVER, wayland.empty() ? "x11" : x11.empty() ? "wayland" : "x11,wayland");
	}
	SDL_SetMainReady();
	SDL_SetHint(SDL_HINT_APP_NAME, "deskhost");
	SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1"); // SDL's do not reach a thread that sleeps
	SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
	SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
	SDL_SetHint(SDL_HINT_RENDER_SCALE_QUALITY, "linear");
	SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1"); // the click that gives the focus is one as well
	if (SDL_Init(SDL_INIT_VIDEO) != 0)
		return failed("display \"" + (x11.empty() ? wayland : x11) + "\": " + SDL_GetError());
	return true;
}

} // namespace

bool displayAnswers(std::string &error)
{
	std::promise<std::string> probed;
	std::future<std::string> why = probed.get_future();
	// Asked by a thread that may be left behind, because a display that is there can be silent for ever.
	std::thread([probed = std::move(probed)]() mutable {
		std::string failure;
		startVideo(failure);
		SDL_Quit();
		probed.set_value_at_thread_exit(failure);
	}).detach();
	error = why.wait_for(displayPatience) == std::future_status::ready ? why.get() : displayIsSilent;
	return error.empty();
}

bool Window::open(std::string &error)
{
	served = &exchange;
	XSetIOErrorHandler(displayIsGone);
	if (!startVideo(error))
		return false;
	// A menu is drawn sooner than a graphics driver is loaded, and without the driver's threads.
	if (strcmp(SDL_GetCurrentVideoDriver(), "x11") == 0)
		SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
	if (!create()) {
		error = visibleText(std::string("cannot open a window: ") + SDL_GetError() +
		                    "; use --screen terminal or --screen none");
		return false;
	}
	watchSignals(onSignal);
	return true;
}

bool Window::create()
{
	const double scale = suitableScale();
	const std::string shown =
		visibleText(title) + " - arrows, Enter, Esc, F1-F4 (red green yellow blue), F9 log";
	window.reset(SDL_CreateWindow(shown.c_str(), SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED,
	                              static_cast<int>(width * scale), static_cast<int>(height * scale),
	                              SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI));
	if (!window)
		return false;
	renderer.reset(SDL_CreateRenderer(window.get(), -1, SDL_RENDERER_SOFTWARE));
	if (!renderer || SDL_RenderSetLogicalSize(renderer.get(), width, height) != 0)
		return false;
	picture = texture(screenWidth, screenHeight);
	strip = texture(width, stripHeight);
	if (!picture || !strip)
		return false;
	PixelCanvas drawn(width, stripHeight);
	drawStrip(drawn);
	SDL_UpdateTexture(strip.get(), nullptr, drawn.pixels(), drawn.stride());
	SDL_SetWindowMinimumSize(window.get(), width / 2, height / 2);
	SDL_StopTextInput(); // keys, not letters: no input method is wanted
	SDL_SysWMinfo info;
	SDL_VERSION(&info.version);
	if (SDL_GetWindowWMInfo(window.get(), &info) && info.subsystem == SDL_SYSWM_X11)
		display = info.info.x11.display;
	return true;
}

Window::Handle<SDL_Texture> Window::texture(int w, int h) const
{
	return Handle<SDL_Texture>(
		SDL_CreateTexture(renderer.get(), SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_STREAMING, w, h));
}

void Window::serve()
{
	while (!exchange.finishing()) {
		exchange.settle();
		if (signalled && !closedAt)
			close();
		if (const Rect fresh = exchange.fetch(*frame); !fresh.empty()) {
			const SDL_Rect rows = {0, fresh.y, screenWidth, fresh.h};
			SDL_UpdateTexture(picture.get(), &rows, frame->data() + fresh.y * frameStride, frameStride);
			stale = true;
		}
		if (const auto notice = exchange.fetchNotice(); notice && !showsNotes)
			showNotice(*notice);
		if (stale)
			draw();
		for (SDL_Event event; SDL_PollEvent(&event);)
			handle(event);
		if (!stale && !moreIsQueued())
			sleep();
	}
}

// Events that SDL or Xlib has read already do not end a sleep.
bool Window::moreIsQueued() const
{
	if (SDL_HasEvents(SDL_FIRSTEVENT, SDL_LASTEVENT))
		return true;
	return display && XEventsQueued(static_cast<Display *>(display), QueuedAlready) > 0;
}

void Window::sleep()
{
	// What other display servers send is looked for now and then.
	const int connection = display ? ConnectionNumber(static_cast<Display *>(display)) : -1;
	int most = display ? -1 : 20;
	if (closedAt) {
		const auto left = *closedAt + patience - Clock::now();
		if (left.count() <= 0)
			endAtOnce("the window was closed");
		most = static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(left).count()) + 1;
	}
	pollfd ready[] = {{exchange.descriptor(), POLLIN, 0}, {connection, POLLIN, 0}};
	poll(ready, 2, most);
}

void Window::handle(const SDL_Event &event)
{
	const bool asks =
		event.type == SDL_KEYDOWN || event.type == SDL_MOUSEBUTTONDOWN || event.type == SDL_MOUSEWHEEL;
	if (showsNotes && asks)
		return hidePanel(); // any key goes back, and does nothing else
	switch (event.type) {
	case SDL_KEYDOWN:
		if (const auto action = actionOf(event.key.keysym))
			if (std::holds_alternative<Key>(*action) || !event.key.repeat)
				perform(*action);
		break;
	case SDL_MOUSEBUTTONDOWN:
		handleButton(event.button);
		break;
	case SDL_MOUSEBUTTONUP:
		stale = stale || pressed;
		pressed = nullptr;
		break;
	case SDL_MOUSEWHEEL:
		for (int i = std::abs(event.wheel.y); i > 0; --i)
			perform(event.wheel.y > 0 ? Key::up : Key::down);
		break;
	case SDL_WINDOWEVENT:
		if (event.window.event == SDL_WINDOWEVENT_EXPOSED ||
		    event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED)
			stale = true;
		break;
	case SDL_QUIT:
		close();
		break;
	default:
		break;
	}
}

void Window::handleButton(const SDL_MouseButtonEvent &event)
{
	if (event.button == SDL_BUTTON_RIGHT)
		return perform(Key::exit);
	if (event.button != SDL_BUTTON_LEFT)
		return;
	if (event.y < screenHeight) {
		exchange.put(Click{event.x, event.y});
		return;
	}
	pressed = stripButtonAt(event.x, event.y - screenHeight);
	if (pressed) {
		stale = true;
		perform(pressed->action);
	}
}

void Window::perform(const Action &action)
{
	if (const Key *key = std::get_if<Key>(&action)) {
		hidePanel();
		exchange.put(*key);
		return;
	}
	switch (std::get<Command>(action)) {
	case Command::savePicture:
		savePicture();
		break;
	case Command::fullScreen:
		SDL_SetWindowFullscreen(window.get(), SDL_GetWindowFlags(window.get()) & SDL_WINDOW_FULLSCREEN
		                                          ? 0
		                                          : SDL_WINDOW_FULLSCREEN_DESKTOP);
		stale = true;
		break;
	case Command::showNotes:
		showNotes();
		break;
	}
}

// Into the current folder, under the first name that is free.
void Window::savePicture()
{
	namespace fs = std::filesystem;
	std::error_code failed;
	fs::path path;
	int number = 1;
	do
		path = fs::absolute("deskhost-" + std::to_string(number++) + ".png", failed);
	while (fs::exists(path, failed));
	cairo_surface_t *surface = cairo_image_surface_create_for_data(frame->data(), CAIRO_FORMAT_RGB24,
	                                                               screenWidth, screenHeight, frameStride);
	const cairo_status_t status = cairo_surface_write_to_png(surface, path.c_str());
	cairo_surface_destroy(surface);
	if (status == CAIRO_STATUS_SUCCESS)
		say("Saved " + path.filename().string() + " in " + path.parent_path().string());
	else
		say("Cannot save " + path.filename().string() + " in " + path.parent_path().string() + ": " +
		    cairo_status_to_string(status));
}

// Shows a line to the viewer, over the picture until the next key and on standard error.
void Window::say(const std::string &line)
{
	fputs(("deskhost: " + visibleText(line) + "\n").c_str(), stderr);
	showNotice(line);
}

void Window::showNotice(const std::string &line)
{
	if (line.empty())
		return hidePanel();
	const std::string wrapped = wrapText(line, panelRowAt(0).w, panelRow, false);
	const auto count = static_cast<int>(std::count(wrapped.begin(), wrapped.end(), '\n')) + 1;
	PixelCanvas &canvas = clearPanel(std::min(count, panelRows) * panelRow + 2 * panelMargin);
	std::istringstream rows(wrapped);
	std::string text;
	for (int row = 0; row < panelRows && std::getline(rows, text); ++row)
		canvas.text(panelRowAt(row), text, panelText(Face::prose));
	presentPanel();
}

// The last debug lines and notes, as many as there is room for, over the whole picture.
void Window::showNotes()
{
	constexpr int rows = panelRows - 1;
	const std::vector<std::string> lines = NoteLog::get().lastRows(rows, panelColumns);
	PixelCanvas &canvas = clearPanel(screenHeight);
	int row = 0;
	for (const std::string &line : lines)
		canvas.text(panelRowAt(row++), line, panelText(Face::columns));
	canvas.text(panelRowAt(rows),
	            lines.empty() ? "There are no debug lines yet. Any key goes back."
	                          : "The last debug lines. Any key goes back.",
	            panelText(Face::prose));
	presentPanel();
	showsNotes = true;
}

PixelCanvas &Window::clearPanel(int rows)
{
	if (!panelCanvas) {
		panelCanvas = std::make_unique<PixelCanvas>();
		panel = texture(screenWidth, screenHeight);
		SDL_SetTextureBlendMode(panel.get(), SDL_BLENDMODE_BLEND);
		SDL_SetTextureAlphaMod(panel.get(), 230);
	}
	panelHeight = rows;
	panelCanvas->fill({0, 0, screenWidth, rows}, Fill::plain({12, 18, 25}));
	return *panelCanvas;
}

void Window::presentPanel()
{
	SDL_UpdateTexture(panel.get(), nullptr, panelCanvas->pixels(), panelCanvas->stride());
	stale = true;
}

void Window::hidePanel()
{
	stale = stale || panelHeight > 0;
	panelHeight = 0;
	showsNotes = false;
}

void Window::close()
{
	if (!closedAt)
		closedAt = Clock::now();
	SDL_HideWindow(window.get());
	exchange.close();
}

void Window::draw()
{
	stale = false;
	SDL_Renderer *to = renderer.get();
	SDL_SetRenderDrawColor(to, 0, 0, 0, SDL_ALPHA_OPAQUE);
	SDL_RenderClear(to);
	const SDL_Rect upper = {0, 0, width, screenHeight}, lower = {0, screenHeight, width, stripHeight};
	SDL_RenderCopy(to, picture.get(), nullptr, &upper);
	if (panelHeight > 0) {
		const SDL_Rect from = {0, 0, width, panelHeight};
		const SDL_Rect place = {0, screenHeight - panelHeight, width, panelHeight};
		SDL_RenderCopy(to, panel.get(), &from, &place);
	}
	SDL_RenderCopy(to, strip.get(), nullptr, &lower);
	if (pressed) {
		const Rect &area = pressed->area;
		const SDL_Rect lit = {area.x, screenHeight + area.y, area.w, area.h};
		SDL_SetRenderDrawBlendMode(to, SDL_BLENDMODE_BLEND);
		SDL_SetRenderDrawColor(to, 255, 255, 255, 60);
		SDL_RenderFillRect(to, &lit);
	}
	SDL_RenderPresent(to);
}

} // namespace desk
