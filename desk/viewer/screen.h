#ifndef DESK_VIEWER_SCREEN_H
#define DESK_VIEWER_SCREEN_H

#include "canvas.h"
#include "message.h"

#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace desk
{

/// The picture is to be saved.
struct SavePicture
{
};

/// A key of the screen's own, which it has dealt with.
struct OwnKey
{
};

/// What a person has done at the screen.
struct Input
{
	std::variant<Key, Click, SavePicture, OwnKey> what;
	bool repeat = false; ///< a key that is held, or the rest of a double click
};

/// Where a frame goes and where keys come from. All screens are equal behind this, and none of them sleeps: one loop
/// waits for all.
class Screen
{
public:
	virtual ~Screen() = default;

	/// What to paint the next frame on, or null when this screen shows nothing.
	virtual Canvas *canvas() { return nullptr; }

	/// Shows what the canvas holds, which differs from the frame before only within `changed` (not empty,
	/// within the screen). The screen keeps that frame and repairs it by itself (exposure, resizing).
	virtual void present(const Rect & /*changed*/) {}

	/// Becomes readable when there is something for readInput(); -1: never.
	virtual int descriptor() const { return -1; }
	/// Milliseconds after which readInput() is to be called in any case; 0: there is something already, -1: never.
	virtual int patience() const { return -1; }
	/// Takes in what has come and repairs itself.
	virtual void readInput() {}

	/// One of SIGWINCH, SIGCONT and SIGTSTP has come.
	virtual void handleSignal(int signal)
	{
		if (signal == SIGTSTP)
			raise(SIGSTOP);
	}

	/// The next that the person has done; nothing: nothing so far.
	virtual std::optional<Input> take() { return std::nullopt; }

	/// Takes in all that was done before the frame that was presented last could be seen. A click that has begun
	/// is none.
	virtual void settle() { readInput(); }

	/// Whether keys may still come.
	virtual bool hasKeys() const { return false; }

	/// True once the viewer has closed the screen or it has gone: no key is wanted any more, not even of
	/// those that were to be pressed without the viewer.
	virtual bool closed() const { return false; }

	/// The console that it has taken.
	virtual ConsoleModes console() const { return {}; }

	/// Why a screen that is closed has gone by itself; empty: it has not.
	virtual std::string lost() const { return {}; }
};

} // namespace desk

#endif
