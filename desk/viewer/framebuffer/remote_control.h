#ifndef DESK_FRAMEBUFFER_REMOTE_CONTROL_H
#define DESK_FRAMEBUFFER_REMOTE_CONTROL_H

#include "key.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>

struct libevdev;

namespace desk
{

/// An input device of the kernel (/dev/input/event0) with keys: a remote control or a keyboard.
class RemoteControl
{
public:
	/// Throws an Error when it cannot be used.
	static std::unique_ptr<RemoteControl> open(const std::string &device);
	~RemoteControl();
	RemoteControl(const RemoteControl &) = delete;
	RemoteControl &operator=(const RemoteControl &) = delete;

	/// Readable when readInput() has work; -1: the device is gone.
	int descriptor() const { return unplugged ? -1 : device; }
	/// Reads all pending events.
	void readInput();

	struct Press
	{
		Key key;
		bool repeat;
	};

	/// The next press or repeat; nullopt: none yet. Repeats since the last call count as one, or as none after the
	/// key was released, so that a slow screen does not lag behind.
	std::optional<Press> take();

	/// The device is gone, and all its keys are taken.
	bool gone() const { return unplugged && waiting.empty(); }

private:
	RemoteControl(int file, libevdev *opened);

	int device;
	libevdev *input;
	bool unplugged = false;
	std::deque<Press> waiting;
};

/// The device in that folder most like a remote control: one with an OK key, else a keyboard. Throws an Error if
/// there is none.
std::string findRemoteControl(const std::string &folder);

} // namespace desk

#endif
