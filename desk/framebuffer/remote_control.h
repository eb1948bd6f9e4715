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
	/// On failure returns null and leaves one line in `error`.
	static std::unique_ptr<RemoteControl> open(const std::string &device, std::string &error);
	~RemoteControl();
	RemoteControl(const RemoteControl &) = delete;
	RemoteControl &operator=(const RemoteControl &) = delete;

	/// Sleeps until a key is pressed or repeats itself. Repeats that came while nobody waited count
	/// as one, and as none once the key was let go: a slow screen does not run on.
	/// Nothing: the device is gone, or wake() was called.
	std::optional<Key> waitKey();
	bool gone() const { return unplugged; }

	/// Ends the wait that sleeps, or the next one. From any thread.
	void wake();

private:
	RemoteControl(int file, libevdev *opened);

	void read();

	struct Press
	{
		Key key;
		bool repeat;
	};

	int device;
	libevdev *input;
	int wakeUp; ///< an eventfd
	bool unplugged = false;
	std::deque<Press> waiting;
};

/// The device in that folder that is most like a remote control: one with an OK key before a keyboard.
/// Empty when there is none; `error` then says so in one line.
std::string findRemoteControl(const std::string &folder, std::string &error);

} // namespace desk

#endif
