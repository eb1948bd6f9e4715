#ifndef DESK_WINDOW_EXCHANGE_H
#define DESK_WINDOW_EXCHANGE_H

#include "canvas.h"
#include "key.h"

#include <array>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <variant>

namespace desk
{

/// A click into the picture, in its pixels.
struct Click
{
	int x, y;
};

using Input = std::variant<Key, Click>;

/// The picture's pixels, 4 bytes each, row by row.
constexpr int frameStride = 4 * screenWidth;
using Frame = std::array<unsigned char, frameStride * screenHeight>;

/// How long a display may take to answer, and what is said of one that takes longer.
constexpr std::chrono::seconds displayPatience(5);
constexpr char displayIsSilent[] =
	"cannot open a window: the display does not answer; set DISPLAY or use --screen "
	"terminal or --screen none";

/// What goes between the thread that runs the plugin and the thread that serves the window: frames one
/// way, keys and clicks the other way, and who has ended.
class Exchange
{
public:
	Exchange();
	~Exchange();
	Exchange(const Exchange &) = delete;
	Exchange &operator=(const Exchange &) = delete;

	// The plugin's thread.

	/// Sleeps until the window is open. False: it cannot be opened or the display does not answer in time, `error`
	/// says which.
	bool waitOpened(std::string &error);
	/// The next frame, all of its pixels; it differs from the last one within `area`. One that the
	/// window has not fetched yet is skipped.
	void show(const unsigned char *pixels, const Rect &area);
	/// The line to show over the picture until the next key; an empty one takes it away.
	void notify(const std::string &line);
	/// Sleeps until there is input. Nothing: the window is closed, or wakePlugin() was called.
	std::optional<Input> waitInput();
	/// Makes the window's thread look again.
	void wakeWindow();
	/// Asks the window to end and sleeps until it has. False: its thread never returns.
	bool finish();

	// Any thread.

	void wakePlugin(); ///< ends the waitInput() that sleeps, or the next one
	bool closed() const;
	/// Why the display has gone; empty: it has not.
	std::string lost() const;

	// The window's thread.

	void opened(const std::string &error);
	void put(Input input);
	void close();
	void lose(const std::string &why);
	void ended();
	/// Brings the frame up to date; what has changed in it, empty: nothing.
	Rect fetch(Frame &into);
	/// What notify() was given last and the window has not fetched.
	std::optional<std::string> fetchNotice();
	bool finishing() const;
	bool finishingWithin(std::chrono::milliseconds time);
	/// Becomes readable when there is something for the window; it is for poll().
	int descriptor() const { return wakeUp; }
	void settle(); ///< what made it readable is being looked at

private:
	mutable std::mutex mutex;
	std::condition_variable changed;
	const int wakeUp; ///< an eventfd
	std::deque<Input> inputs;
	Frame frame = {};
	Rect fresh; ///< what the window has not fetched of it
	std::optional<std::string> notice;
	bool isWoken = false;
	std::optional<std::string> opening; ///< how it went: empty, or why not
	bool isClosed = false, isFinishing = false, hasEnded = false;
	std::string whyLost;
};

} // namespace desk

#endif
