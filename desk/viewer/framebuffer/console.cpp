#include "console.h"

#include "desk_error.h"
#include "visible_text.h"

#include <fcntl.h>
#include <linux/kd.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace desk
{
namespace
{

bool isConsole(int file)
{
	int mode = 0;
	return ioctl(file, KDGETMODE, &mode) == 0;
}

bool setModes(int console, long display, long keyboard)
{
	const bool set = ioctl(console, KDSKBMODE, keyboard) == 0;
	return ioctl(console, KDSETMODE, display) == 0 && set;
}

} // namespace

std::unique_ptr<Console> Console::take(const std::string &device)
{
	const auto failure = [&](const std::string &why) {
		return Error(visibleText("cannot take the console '" + device + "': " + why));
	};
	std::unique_ptr<Console> taken(new Console);
	taken->modes.name = device;
	if (isConsole(STDIN_FILENO)) {
		taken->file = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
		if (const char *its = ttyname(STDIN_FILENO))
			taken->modes.name = its;
	} else {
		taken->file = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
		if (taken->file < 0 && (errno == EACCES || errno == EPERM))
			throw failure("Permission denied; start deskhost from the console itself, or as root");
		if (taken->file < 0 || !isConsole(taken->file))
			return nullptr;
	}
	int display = KD_TEXT, keyboard = K_UNICODE;
	ioctl(taken->file, KDGETMODE, &display);
	ioctl(taken->file, KDGKBMODE, &keyboard);
	if (ioctl(taken->file, KDSETMODE, KD_GRAPHICS) != 0)
		throw failure(strerror(errno));
	taken->isTaken = true;
	taken->modes.display = display;
	taken->modes.keyboard = keyboard;
	ioctl(taken->file, KDSKBMODE, K_OFF);
	return taken;
}

Console::~Console()
{
	if (isTaken && !setModes(file, modes.display, modes.keyboard)) {
		// A console hangs up when its session's first process ends, and must be opened again.
		close(file);
		file = ::open(modes.name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
		setModes(file, modes.display, modes.keyboard);
	}
	close(file);
}

} // namespace desk
