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

/// Save the picture.
struct SavePicture
{
};

/// A key that the screen handled itself.
struct OwnKey
{
};

/// One input of the person.
struct Input
{
	std::variant<Key, Click, SavePicture, OwnKey> what;
	bool repeat = false; ///< a held key, or the second part of a double click
};

/// Shows frames and supplies input. No screen blocks: one loop waits for all.
class Screen
{
public:
	virtual ~Screen() = default;

	/// The canvas for the next frame; null without a picture.
	virtual Canvas *canvas() { return nullptr; }

	/// Shows the canvas, which differs from the last frame only within `changed` (not empty, within the screen). The
	/// screen keeps the frame to redraw it after exposure or resizing.
	virtual void present(const Rect & /*changed*/) {}

	/// Readable when readInput() has work; -1: never.
	virtual int descriptor() const { return -1; }
	/// Milliseconds until readInput() must be called; 0: now, -1: never.
	virtual int patience() const { return -1; }
	/// Reads pending input, and redraws if needed.
	virtual void readInput() {}

	/// Handles SIGWINCH, SIGCONT or SIGTSTP.
	virtual void handleSignal(int signal)
	{
		if (signal == SIGTSTP)
			raise(SIGSTOP);
	}

	/// The next input, if any.
	virtual std::optional<Input> take() { return std::nullopt; }

	/// Reads all input from before the last frame became visible. Cancels a click that has begun.
	virtual void settle() { readInput(); }

	/// Whether keys can still come.
	virtual bool hasKeys() const { return false; }

	/// True once the viewer closed the screen or it is gone: no more keys are wanted, not even scripted ones.
	virtual bool closed() const { return false; }

	/// The console taken by this screen.
	virtual ConsoleModes console() const { return {}; }

	/// Why a closed screen is gone; empty when the viewer closed it.
	virtual std::string lost() const { return {}; }
};

} // namespace desk

#endif
