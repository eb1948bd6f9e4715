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

/// An input device of the kernel (/dev/input/event0) that has keys: a remote control, or a keyboard.
class RemoteControl
{
public:
	/// Throws an Error when it cannot be used.
	static std::unique_ptr<RemoteControl> open(const std::string &device);
	~RemoteControl();
	RemoteControl(const RemoteControl &) = delete;
	RemoteControl &operator=(const RemoteControl &) = delete;

	/// Becomes readable when readInput() is to be called; -1: the device is gone.
	int descriptor() const { return unplugged ? -1 : device; }
	/// Takes all that has come.
	void readInput();

	struct Press
	{
		Key key;
		bool repeat;
	};

	/// The next key that was pressed or repeats itself; nothing: none so far. Repeats that came while nobody
	/// asked count as one, and as none once the key was let go: a slow screen does not run on.
	std::optional<Press> take();

	/// The device is gone, and its last key has been taken.
	bool gone() const { return unplugged && waiting.empty(); }

private:
	RemoteControl(int file, libevdev *opened);

	int device;
	libevdev *input;
	bool unplugged = false;
	std::deque<Press> waiting;
};

/// The device in that folder that is most like a remote control: one with an OK key before a keyboard.
/// Throws an Error when there is none.
std::string findRemoteControl(const std::string &folder);

} // namespace desk

#endif
