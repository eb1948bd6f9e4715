#ifndef DESK_WINDOW_WINDOW_H
#define DESK_WINDOW_WINDOW_H

#include "exchange.h"
#include "pixel_canvas.h"
#include "remote_strip.h"

#include <SDL.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace desk
{

/// The window itself: all of SDL, on one thread that does nothing else, so that a plugin or a command that
/// is busy stops neither drawing nor closing.
class Window
{
public:
	Window(Exchange &with, const std::string &name) : exchange(with), title(name) {}
	~Window();
	Window(const Window &) = delete;
	Window &operator=(const Window &) = delete;

	/// False on failure, with one line in `error`.
	bool open(std::string &error);

	/// Serves the viewer until the exchange finishes.
	void serve();

private:
	struct Destroy
	{
		void operator()(SDL_Window *w) const { SDL_DestroyWindow(w); }
		void operator()(SDL_Renderer *r) const { SDL_DestroyRenderer(r); }
		void operator()(SDL_Texture *t) const { SDL_DestroyTexture(t); }
	};
	template <typename T> using Handle = std::unique_ptr<T, Destroy>;

	bool create();
	Handle<SDL_Texture> texture(int width, int height) const;
	void handle(const SDL_Event &event);
	void handleButton(const SDL_MouseButtonEvent &event);
	void perform(const Action &action);
	void savePicture();
	void say(const std::string &line);
	void showNotice(const std::string &line);
	void showNotes();
	PixelCanvas &clearPanel(int rows);
	void presentPanel();
	void hidePanel();
	void close();
	void draw();
	void sleep();
	bool moreIsQueued() const;

	Exchange &exchange;
	const std::string title;
	void *display = nullptr; ///< X11's; null with another display server
	Handle<SDL_Window> window;
	Handle<SDL_Renderer> renderer;
	Handle<SDL_Texture> picture, strip, panel;
	const std::unique_ptr<Frame> frame = std::make_unique<Frame>(); ///< as the picture shows it
	const StripButton *pressed = nullptr;                           ///< under the mouse
	std::unique_ptr<PixelCanvas> panelCanvas; ///< what lies over the lower part of the picture
	int panelHeight = 0;                      ///< 0: nothing does
	bool showsNotes = false;                  ///< the panel does
	bool stale = true;                        ///< what the window shows
	std::optional<std::chrono::steady_clock::time_point> closedAt;
};

} // namespace desk

#endif
