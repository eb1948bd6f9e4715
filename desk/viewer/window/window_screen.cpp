#include "window_screen.h"

#include "desk_error.h"
#include "note_log.h"
#include "pixel_canvas.h"
#include "visible_text.h"
#include "window_keys.h"

#include <SDL.h>
#include <SDL_syswm.h>
#include <X11/Xlib.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace desk
{
namespace
{

// Milliseconds to wait for the display's answer, long enough for a busy computer.
constexpr int displayPatience = 15000;

constexpr int width = screenWidth, height = screenHeight + stripHeight;

std::string variable(const char *name)
{
	const char *value = getenv(name);
	return value ? value : "";
}

// Text over the picture: rows with a margin.
constexpr int panelRow = 20, panelMargin = 8;
constexpr int panelRows = (screenHeight - 2 * panelMargin) / panelRow;
constexpr int panelColumns = (screenWidth - 2 * panelMargin) / 8; // of Face::columns

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

// Screen pixels per picture pixel: a whole number where at least 1 fits. Leaves room for the window's frame.
double suitableScale()
{
	SDL_Rect room = {0, 0, width, height};
	SDL_GetDisplayUsableBounds(0, &room);
	const double scale = std::min((room.w - 16) / double(width), (room.h - 48) / double(height));
	return scale >= 1 ? std::floor(scale) : std::max(scale, 0.25);
}

// `remedy`: an alternative to other screens.
Error noWindow(const std::string &why, const std::string &remedy = "")
{
	return Error(visibleText("cannot open a window: " + why + "; " + remedy +
	                         "use --screen terminal or --screen none"));
}
constexpr char setDisplay[] = "set DISPLAY or ";

void startVideo()
{
	const std::string x11 = variable("DISPLAY"), wayland = variable("WAYLAND_DISPLAY");
	// Without a display, some of SDL's drivers take the console, others print errors. SDL_VIDEODRIVER overrides this.
	if (variable("SDL_VIDEODRIVER").empty()) {
		if (x11.empty() && wayland.empty())
			throw noWindow("there is no display", setDisplay);
		const char *drivers = wayland.empty() ? "x11" : x11.empty() ? "wayland" : "x11,wayland";
		// Overrides a variable that is set and empty, for which SDL tries all, also those without a display.
		SDL_SetHintWithPriority(SDL_HINT_VIDEODRIVER, drivers, SDL_HINT_OVERRIDE);
	}
	SDL_SetMainReady();
	SDL_SetHint(SDL_HINT_APP_NAME, "deskhost");
	SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1"); // they do not wake a sleeping thread
	SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
	SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
	SDL_SetHint(SDL_HINT_RENDER_SCALE_QUALITY, "linear");
	SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1"); // a click that gives the focus counts as well
	if (SDL_Init(SDL_INIT_VIDEO) != 0)
		throw noWindow("display '" + (x11.empty() ? wayland : x11) + "': " + SDL_GetError(), setDisplay);
	// Software rendering starts faster than a graphics driver, and without its threads.
	if (strcmp(SDL_GetCurrentVideoDriver(), "x11") == 0)
		SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
}

// Whether SDL can draw in the display's pixel format.
bool takesPictures()
{
	SDL_Window *window = SDL_CreateWindow("", 0, 0, 1, 1, SDL_WINDOW_HIDDEN);
	return window && SDL_CreateRenderer(window, -1, SDL_RENDERER_SOFTWARE);
}

/// The window, in SDL.
class WindowScreen : public Screen
{
public:
	WindowScreen() = default;
	~WindowScreen() override;
	WindowScreen(const WindowScreen &) = delete;
	WindowScreen &operator=(const WindowScreen &) = delete;

	void open(const std::string &title);

	Canvas *canvas() override { return &painted; }
	void present(const Rect &changed) override;
	int descriptor() const override;
	int patience() const override;
	void readInput() override;
	std::optional<Input> take() override;
	void settle() override;
	bool hasKeys() const override { return !closed(); }
	bool closed() const override { return isClosed; }
	std::string lost() const override;

private:
	struct Destroy
	{
		void operator()(SDL_Window *w) const { SDL_DestroyWindow(w); }
		void operator()(SDL_Renderer *r) const { SDL_DestroyRenderer(r); }
		void operator()(SDL_Texture *t) const { SDL_DestroyTexture(t); }
	};
	template <typename T> using Handle = std::unique_ptr<T, Destroy>;

	bool create(const std::string &title);
	Handle<SDL_Texture> texture(int width, int height) const;
	void handle(const SDL_Event &event);
	void handleButton(const SDL_MouseButtonEvent &event);
	void perform(const Action &action, bool repeat = false);
	void showNotes();
	void hideNotes();
	void close();
	void draw();
	bool moreIsQueued() const;

	Display *display = nullptr; ///< X11's; null for other display servers
	XID ownName = 0;            ///< X11's name of the window
	Handle<SDL_Window> window;
	Handle<SDL_Renderer> renderer;
	Handle<SDL_Texture> picture, strip, notes;
	PixelCanvas painted;
	const StripButton *pressed = nullptr; ///< under the pressed mouse button
	std::optional<Input> click;           ///< on the picture, while the button is pressed
	bool showsNotes = false;              ///< over the picture
	bool stale = true;                    ///< the window does not show the current state
	bool isClosed = false;
	std::deque<Input> inputs;
};

pid_t asking = 0; ///< process connected to the display until the window is open

void endAsking()
{
	if (asking <= 0)
		return;
	kill(asking, SIGKILL);
	waitpid(asking, nullptr, 0);
}

bool displayIsGone = false;
bool windowIsGone = false; ///< destroyed by another program, perhaps without the display

WindowScreen::~WindowScreen()
{
	// Leaves the release to the end of the process. SDL would wait for an answer of the display, which may be gone.
	for (Handle<SDL_Texture> *each : {&picture, &strip, &notes})
		static_cast<void>(each->release());
	static_cast<void>(renderer.release());
	static_cast<void>(window.release());
}

void WindowScreen::open(const std::string &title)
{
	awaitDisplay();
	startVideo();
	if (!create(title))
		throw noWindow(SDL_GetError());
	endAsking();
	if (display) {
		// The default handlers end the program.
		XSetIOErrorHandler([](Display *) { return 0; });
		XSetErrorHandler([](Display *, XErrorEvent *) { return 0; }); // the window may be destroyed
		XSetIOErrorExitHandler(
			display, [](Display *, void *) { displayIsGone = true; }, nullptr);
	}
}

bool WindowScreen::create(const std::string &title)
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
	present(wholeScreen);
	SDL_SetWindowMinimumSize(window.get(), width / 2, height / 2);
	SDL_StopTextInput(); // only keys are wanted, no input method
	SDL_SysWMinfo info;
	SDL_VERSION(&info.version);
	if (SDL_GetWindowWMInfo(window.get(), &info) && info.subsystem == SDL_SYSWM_X11) {
		display = info.info.x11.display;
		ownName = info.info.x11.window;
	}
	SDL_EventState(SDL_SYSWMEVENT, SDL_ENABLE); // tells of a destroyed window, which SDL does not
	return true;
}

WindowScreen::Handle<SDL_Texture> WindowScreen::texture(int w, int h) const
{
	return Handle<SDL_Texture>(
		SDL_CreateTexture(renderer.get(), SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_STREAMING, w, h));
}

void WindowScreen::present(const Rect &changed)
{
	const SDL_Rect rows = {0, changed.y, screenWidth, changed.h};
	SDL_UpdateTexture(picture.get(), &rows, painted.pixels() + changed.y * painted.stride(),
	                  painted.stride());
	stale = true;
}

int WindowScreen::descriptor() const
{
	return display && !displayIsGone ? ConnectionNumber(display) : -1;
}

int WindowScreen::patience() const
{
	if (isClosed || displayIsGone)
		return displayIsGone && !isClosed ? 0 : -1;
	if (stale || moreIsQueued())
		return 0;
	return display ? -1 : 20; // polls other display servers
}

void WindowScreen::readInput()
{
	if (isClosed)
		return;
	for (SDL_Event event; !displayIsGone && SDL_PollEvent(&event);)
		handle(event);
	if (stale && !displayIsGone && !isClosed)
		draw();
	isClosed = isClosed || displayIsGone;
}

std::optional<Input> WindowScreen::take()
{
	if (inputs.empty() || isClosed)
		return std::nullopt;
	const Input input = inputs.front();
	inputs.pop_front();
	return input;
}

void WindowScreen::settle()
{
	readInput();
	if (display && !displayIsGone)
		XSync(display, False); // waits until the last frame is visible
	readInput();
	click.reset();
}

std::string WindowScreen::lost() const
{
	if (windowIsGone)
		return "somebody has destroyed the window";
	return displayIsGone ? "the display has gone: its server has ended or the connection to it broke" : "";
}

// poll() does not see events that SDL or Xlib has read already.
bool WindowScreen::moreIsQueued() const
{
	if (SDL_HasEvents(SDL_FIRSTEVENT, SDL_LASTEVENT))
		return true;
	return display && XEventsQueued(display, QueuedAlready) > 0;
}

void WindowScreen::handle(const SDL_Event &event)
{
	const bool asks =
		event.type == SDL_KEYDOWN || event.type == SDL_MOUSEBUTTONDOWN || event.type == SDL_MOUSEWHEEL;
	if (showsNotes && asks)
		return hideNotes(); // any key only closes the notes
	switch (event.type) {
	case SDL_KEYDOWN:
		if (const auto action = actionOf(event.key.keysym))
			if (std::holds_alternative<Key>(*action) || !event.key.repeat)
				perform(*action, event.key.repeat != 0);
		break;
	case SDL_MOUSEBUTTONDOWN:
		handleButton(event.button);
		break;
	case SDL_MOUSEBUTTONUP:
		stale = stale || pressed;
		pressed = nullptr;
		if (event.button.button == SDL_BUTTON_LEFT && click) {
			Click &whole = std::get<Click>(click->what);
			whole.upX = event.button.x;
			whole.upY = event.button.y;
			inputs.push_back(*std::exchange(click, std::nullopt));
		}
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
	case SDL_SYSWMEVENT:
		if (display && event.syswm.msg->msg.x11.event.type == DestroyNotify &&
		    event.syswm.msg->msg.x11.event.xdestroywindow.window == ownName)
			displayIsGone = windowIsGone = true;
		break;
	case SDL_QUIT:
		close();
		break;
	default:
		break;
	}
}

void WindowScreen::handleButton(const SDL_MouseButtonEvent &event)
{
	const bool repeat = event.clicks > 1;
	if (event.button == SDL_BUTTON_RIGHT)
		return perform(Key::exit, repeat);
	if (event.button != SDL_BUTTON_LEFT)
		return;
	if (event.y < screenHeight) {
		click = Input{Click{event.x, event.y}, repeat};
		return;
	}
	pressed = stripButtonAt(event.x, event.y - screenHeight);
	if (pressed) {
		stale = true;
		perform(pressed->action, repeat);
	}
}

void WindowScreen::perform(const Action &action, bool repeat)
{
	if (const Key *key = std::get_if<Key>(&action)) {
		inputs.push_back({*key, repeat});
		return;
	}
	switch (std::get<Command>(action)) {
	case Command::savePicture:
		inputs.push_back({SavePicture()});
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

// Shows the last debug lines and notes that fit over the picture.
void WindowScreen::showNotes()
{
	constexpr int rows = panelRows - 1;
	const std::vector<std::string> lines = NoteLog::get().lastRows(rows, panelColumns);
	PixelCanvas canvas;
	canvas.fill(wholeScreen, Fill::plain({12, 18, 25}));
	int row = 0;
	for (const std::string &line : lines)
		canvas.text(panelRowAt(row++), line, panelText(Face::columns));
	canvas.text(panelRowAt(rows),
	            lines.empty() ? "There are no debug lines yet. Any key goes back."
	                          : "The last debug lines. Any key goes back.",
	            panelText(Face::prose));
	if (!notes) {
		notes = texture(screenWidth, screenHeight);
		SDL_SetTextureBlendMode(notes.get(), SDL_BLENDMODE_BLEND);
		SDL_SetTextureAlphaMod(notes.get(), 230);
	}
	SDL_UpdateTexture(notes.get(), nullptr, canvas.pixels(), canvas.stride());
	showsNotes = stale = true;
}

void WindowScreen::hideNotes()
{
	showsNotes = false;
	stale = true;
}

void WindowScreen::close()
{
	isClosed = true;
	SDL_HideWindow(window.get());
}

void WindowScreen::draw()
{
	stale = false;
	SDL_Renderer *to = renderer.get();
	SDL_SetRenderDrawColor(to, 0, 0, 0, SDL_ALPHA_OPAQUE);
	SDL_RenderClear(to);
	const SDL_Rect upper = {0, 0, width, screenHeight}, lower = {0, screenHeight, width, stripHeight};
	SDL_RenderCopy(to, picture.get(), nullptr, &upper);
	if (showsNotes)
		SDL_RenderCopy(to, notes.get(), nullptr, &upper);
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

} // namespace

void awaitDisplay()
{
	if (asking > 0)
		return;
	// In a child process, because a display may never answer. The process lives until the window is open, because
	// some display servers restart when their last client leaves.
	int ends[2];
	if (pipe2(ends, O_CLOEXEC) != 0)
		return;
	const pid_t parent = getpid();
	asking = fork();
	if (asking == 0) {
		::close(ends[0]);
		prctl(PR_SET_PDEATHSIG, SIGKILL);
		if (getppid() != parent)
			_exit(1);
		std::string line;
		try {
			startVideo();
			if (!takesPictures())
				throw noWindow(SDL_GetError());
		} catch (const Error &error) {
			line = error.line;
		}
		const ssize_t written = write(ends[1], line.data(), line.size());
		if (written < 0 || !line.empty())
			_exit(1);
		::close(ends[1]);
		for (;;)
			pause();
	}
	::close(ends[1]);
	pollfd answer = {ends[0], POLLIN, 0};
	std::string line;
	int ready = -1;
	do
		ready = poll(&answer, 1, displayPatience);
	while (ready < 0 && errno == EINTR);
	if (ready > 0) {
		char text[1000];
		for (ssize_t length; (length = read(ends[0], text, sizeof text)) > 0;)
			line.append(text, static_cast<size_t>(length));
	} else
		line = noWindow("the display does not answer", setDisplay).line;
	::close(ends[0]);
	if (!line.empty()) {
		endAsking();
		throw Error(line);
	}
}

std::unique_ptr<Screen> makeWindowScreen(const std::string &title)
{
	auto screen = std::make_unique<WindowScreen>();
	screen->open(title);
	return screen;
}

} // namespace desk
