#ifndef DESK_SCREEN_SCREEN_H
#define DESK_SCREEN_SCREEN_H

#include "canvas.h"
#include "key.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace desk
{

/// Where a frame goes and where keys come from. All screens are equal behind this.
class Screen
{
public:
	virtual ~Screen() = default;

	/// What to paint the next frame on, or null when this screen shows nothing.
	virtual Canvas *canvas() = 0;

	/// The height in pixels that a row of text must have here; 0: any.
	virtual int rowHeight() const { return 0; }

	/// Shows what the canvas holds, which differs from the frame before only within `changed` (not empty,
	/// within the screen). The screen keeps that frame and repairs it by itself (exposure, resizing)
	/// while it waits for a key.
	virtual void present(const Rect &changed) = 0;

	/// Sleeps until a key of the remote control is pressed. Nothing: there are no more keys, the
	/// viewer has closed the screen; or wake() was called.
	virtual std::optional<Key> waitKey() = 0;

	/// Makes the waitKey() that sleeps, or the next one, return nothing once. From any thread.
	virtual void wake() {}

	/// True once the viewer has closed the screen or it has gone: no key is wanted any more, not even of
	/// those that were to be pressed without the viewer.
	virtual bool closed() const { return false; }

	/// Why the screen has gone by itself, one line; empty: it has not.
	virtual std::string lost() const { return {}; }

	/// For screens with a pointer: `keys` returns those that do what a click at a place of the screen, in its
	/// pixels, means.
	void onClick(std::function<std::vector<Key>(int x, int y)> keys) { keysOfClick = std::move(keys); }

	/// Shows one line to the person at the desk: debug output, what a command printed, a kill that
	/// was only reported. It goes to standard error, at once or when the screen is given back, and to
	/// the NoteLog.
	virtual void note(const std::string &line);

	/// note() of what the viewer must not miss: where standard error may not be seen, it is shown over the picture
	/// as well, until the next key or the next such line. An empty line only takes it away.
	virtual void notify(const std::string &line);

protected:
	std::function<std::vector<Key>(int x, int y)> keysOfClick;
};

/// A screen that shows nothing and has no keys.
std::unique_ptr<Screen> makeNoScreen();

} // namespace desk

#endif
