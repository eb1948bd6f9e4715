#include "window_screen.h"

#include "exchange.h"
#include "pixel_canvas.h"
#include "window.h"

#include <deque>
#include <memory>
#include <thread>

namespace desk
{
namespace
{

class WindowScreen : public Screen
{
public:
	WindowScreen(const std::string &title, std::string &error) : exchange(std::make_shared<Exchange>())
	{
		// What the thread uses is the thread's as well: when the display goes, it never returns.
		thread = std::thread([exchange = exchange, title] {
			{
				Window window(*exchange, title);
				std::string why;
				const bool open = window.open(why);
				exchange->opened(why);
				if (open)
					window.serve();
			}
			exchange->ended();
		});
		exchange->waitOpened(error);
	}

	~WindowScreen() override
	{
		if (exchange->finish())
			thread.join();
		else
			thread.detach();
	}

	WindowScreen(const WindowScreen &) = delete;
	WindowScreen &operator=(const WindowScreen &) = delete;

	Canvas *canvas() override { return &painted; }

	void present(const Rect &changed) override { exchange->show(painted.pixels(), changed); }

	std::optional<Key> waitKey() override
	{
		while (pending.empty() || closed()) {
			const std::optional<Input> input = exchange->waitInput();
			if (!input)
				return std::nullopt;
			if (const Key *key = std::get_if<Key>(&*input))
				return *key;
			const Click &click = std::get<Click>(*input);
			if (keysOfClick)
				for (const Key key : keysOfClick(click.x, click.y))
					pending.push_back(key);
		}
		const Key next = pending.front();
		pending.pop_front();
		return next;
	}

	void notify(const std::string &line) override
	{
		Screen::notify(line);
		exchange->notify(line);
	}

	void wake() override { exchange->wakePlugin(); }
	bool closed() const override { return exchange->closed(); }
	std::string lost() const override { return exchange->lost(); }

private:
	std::shared_ptr<Exchange> exchange;
	std::thread thread;
	PixelCanvas painted;
	std::deque<Key> pending; ///< what the last click has come to
};

} // namespace

std::unique_ptr<Screen> makeWindowScreen(const std::string &title, std::string &error)
{
	auto screen = std::make_unique<WindowScreen>(title, error);
	if (!error.empty())
		return nullptr;
	return screen;
}

} // namespace desk
