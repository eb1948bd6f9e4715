#include "remote_control.h"

#include "desk_error.h"
#include "device_folder.h"
#include "visible_text.h"

#include <libevdev/libevdev.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace desk
{
namespace
{

struct Code
{
	unsigned int code;
	Key key;
};

constexpr Code codes[] = {
	{KEY_UP, Key::up},
	{KEY_DOWN, Key::down},
	{KEY_LEFT, Key::left},
	{KEY_RIGHT, Key::right},
	{KEY_PAGEUP, Key::pageup},
	{KEY_CHANNELUP, Key::pageup},
	{KEY_PAGEDOWN, Key::pagedown},
	{KEY_CHANNELDOWN, Key::pagedown},
	{KEY_HOME, Key::home},
	{KEY_FIRST, Key::home},
	{KEY_END, Key::end},
	{KEY_LAST, Key::end},
	{KEY_OK, Key::ok},
	{KEY_SELECT, Key::ok},
	{KEY_ENTER, Key::ok},
	{KEY_KPENTER, Key::ok},
	{KEY_EXIT, Key::exit},
	{KEY_BACK, Key::exit},
	{KEY_ESC, Key::exit},
	{KEY_RED, Key::red},
	{KEY_F1, Key::red},
	{KEY_GREEN, Key::green},
	{KEY_F2, Key::green},
	{KEY_YELLOW, Key::yellow},
	{KEY_F3, Key::yellow},
	{KEY_BLUE, Key::blue},
	{KEY_F4, Key::blue},
	{KEY_0, Key::digit0},
	{KEY_KP0, Key::digit0},
	{KEY_KP1, Key::digit1},
	{KEY_KP2, Key::digit2},
	{KEY_KP3, Key::digit3},
	{KEY_KP4, Key::digit4},
	{KEY_KP5, Key::digit5},
	{KEY_KP6, Key::digit6},
	{KEY_KP7, Key::digit7},
	{KEY_KP8, Key::digit8},
	{KEY_KP9, Key::digit9},
};

std::optional<Key> keyOf(unsigned int code)
{
	for (const Code &known : codes)
		if (known.code == code)
			return known.key;
	if (code >= KEY_1 && code <= KEY_9)
		return static_cast<Key>(static_cast<unsigned int>(Key::digit1) + code - KEY_1);
	if (code >= KEY_NUMERIC_0 && code <= KEY_NUMERIC_9)
		return static_cast<Key>(static_cast<unsigned int>(Key::digit0) + code - KEY_NUMERIC_0);
	return std::nullopt;
}

/// An input device; closes it unless the members are moved out.
struct InputDevice
{
	int file = -1;
	libevdev *device = nullptr;
	int error = 0; ///< an errno

	explicit InputDevice(const std::string &path)
	{
		file = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
		error = file < 0 ? errno : -libevdev_new_from_fd(file, &device);
	}
	~InputDevice()
	{
		libevdev_free(device);
		if (file >= 0)
			close(file);
	}
	InputDevice(const InputDevice &) = delete;
	InputDevice &operator=(const InputDevice &) = delete;

	/// Whether it has the keys to use the menu.
	bool navigates() const
	{
		const auto has = [&](Key key) {
			return std::any_of(std::begin(codes), std::end(codes), [&](const Code &known) {
				return known.key == key && libevdev_has_event_code(device, EV_KEY, known.code);
			});
		};
		return device && has(Key::up) && has(Key::down) && has(Key::ok) && has(Key::exit);
	}
	bool isRemote() const { return navigates() && libevdev_has_event_code(device, EV_KEY, KEY_OK); }
};

constexpr char noRights[] = "Permission denied; join the group 'input', or run deskhost as root";

Error cannotUse(const std::string &path, const std::string &why)
{
	return Error(visibleText("cannot use the remote control '" + path + "': " + why));
}

} // namespace

std::unique_ptr<RemoteControl> RemoteControl::open(const std::string &path)
{
	InputDevice input(path);
	if (input.file < 0 && input.error == EACCES)
		throw cannotUse(path, noRights);
	if (input.file < 0)
		throw cannotUse(path,
		                strerror(input.error) + std::string("; is it plugged in? --remote names its device"));
	if (!input.device)
		throw cannotUse(path, "it is no input device; name one of /dev/input with --remote");
	if (!input.navigates())
		throw cannotUse(path, "it lacks the keys up, down, ok or exit; name another device with --remote");
	std::unique_ptr<RemoteControl> opened(new RemoteControl(input.file, input.device));
	input.file = -1;
	input.device = nullptr;
	return opened;
}

RemoteControl::RemoteControl(int file, libevdev *opened) : device(file), input(opened) {}

RemoteControl::~RemoteControl()
{
	libevdev_free(input);
	close(device);
}

std::optional<RemoteControl::Press> RemoteControl::take()
{
	// A key released by now no longer repeats.
	readInput();
	if (waiting.empty())
		return std::nullopt;
	const Press press = waiting.front();
	waiting.pop_front();
	return press;
}

void RemoteControl::readInput()
{
	if (unplugged)
		return;
	pollfd end = {device, POLLIN, 0};
	const bool hungUp = poll(&end, 1, 0) > 0 && (end.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
	unsigned int flag = LIBEVDEV_READ_FLAG_NORMAL;
	for (;;) {
		input_event event;
		const int status = libevdev_next_event(input, flag, &event);
		if (status == -EAGAIN && flag == LIBEVDEV_READ_FLAG_SYNC) {
			flag = LIBEVDEV_READ_FLAG_NORMAL;
			continue;
		}
		if (status < 0) {
			unplugged = hungUp || (status != -EAGAIN && status != -EINTR);
			return;
		}
		// The kernel lost events; libevdev synthesises the changes.
		if (status == LIBEVDEV_READ_STATUS_SYNC)
			flag = LIBEVDEV_READ_FLAG_SYNC;
		const auto key = event.type == EV_KEY ? keyOf(event.code) : std::nullopt;
		if (!key)
			continue;
		enum
		{
			released,
			pressed,
			repeated
		};
		if (event.value == pressed)
			waiting.push_back({*key, false});
		const auto repeat = std::find_if(waiting.begin(), waiting.end(), [&](const Press &press) {
			return press.repeat && press.key == *key;
		});
		if (event.value == repeated && repeat == waiting.end())
			waiting.push_back({*key, true});
		if (event.value == released && repeat != waiting.end())
			waiting.erase(repeat);
	}
}

std::string findRemoteControl(const std::string &folder)
{
	std::string keyboard, refused;
	for (const std::string &path : numberedDevices(folder, "event")) {
		const InputDevice input(path);
		if (input.error == EACCES)
			refused = path;
		if (input.isRemote())
			return path;
		if (keyboard.empty() && input.navigates())
			keyboard = path;
	}
	if (!keyboard.empty())
		return keyboard;
	if (!refused.empty())
		throw cannotUse(refused, noRights);
	throw Error("there is no remote control and no keyboard in '" + folder +
	            "'; plug one in, or name its device with --remote");
}

} // namespace desk
