#include "console.h"

#include "visible_text.h"

#include <fcntl.h>
#include <linux/kd.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
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

/// Gives the console of that name back once nobody holds the other end of `lifeline`. Runs in a process of
/// its own.
[[noreturn]] void watch(int lifeline, int console, const std::string &name, long display, long keyboard)
{
	// What is sent to the program's group is not meant for this one. It stays in the session, to which
	// alone the kernel lends the console, unless the program is root.
	setpgid(0, 0);
	// Whatever else is open is the program's, and closed when the program closes it.
	dup2(lifeline, 0);
	dup2(console, 1);
	closefrom(2);
	sigset_t all;
	sigfillset(&all);
	sigprocmask(SIG_BLOCK, &all, nullptr);
	char ready = 1;
	if (write(0, &ready, 1) != 1)
		_exit(1);
	char nothing;
	while (read(0, &nothing, 1) < 0 && errno == EINTR) {
	}
	// A console hangs up when the process ends that the session began with: then it is opened anew.
	if (!setModes(1, display, keyboard))
		setModes(::open(name.c_str(), O_RDWR | O_NOCTTY), display, keyboard);
	_exit(0);
}

} // namespace

std::unique_ptr<Console> Console::take(const std::string &device, std::string &error)
{
	int console = -1;
	int ends[2] = {-1, -1};
	const auto failed = [&](const std::string &why) {
		error = visibleText("cannot take the console \"" + device + "\": " + why);
		for (const int file : {console, ends[0], ends[1]})
			if (file >= 0)
				close(file);
		return nullptr;
	};
	std::string name = device;
	if (isConsole(STDIN_FILENO)) {
		console = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
		if (const char *its = ttyname(STDIN_FILENO))
			name = its;
	} else {
		console = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
		if (console < 0 && (errno == EACCES || errno == EPERM))
			return failed("Permission denied; start deskhost from the console itself, or as root");
		if (console < 0 || !isConsole(console)) {
			if (console >= 0)
				close(console);
			return nullptr;
		}
	}
	int display = KD_TEXT, keyboard = K_UNICODE;
	ioctl(console, KDGETMODE, &display);
	ioctl(console, KDGKBMODE, &keyboard);
	// The watcher is there before anything is taken.
	if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
		return failed(strerror(errno));
	std::unique_ptr<Console> taken(new Console);
	taken->watcher = fork();
	if (taken->watcher == 0) {
		close(ends[1]);
		watch(ends[0], console, name, display, keyboard);
	}
	if (taken->watcher < 0)
		return failed(strerror(errno));
	taken->lifeline = ends[1];
	close(ends[0]);
	ends[0] = ends[1] = -1;
	char ready = 0;
	while (read(taken->lifeline, &ready, 1) < 0 && errno == EINTR) {
	}
	if (!ready)
		return failed("there is no process to watch over it");
	if (ioctl(console, KDSETMODE, KD_GRAPHICS) != 0)
		return failed(strerror(errno));
	ioctl(console, KDSKBMODE, K_OFF);
	close(console);
	return taken;
}

Console::~Console()
{
	if (lifeline >= 0)
		close(lifeline);
	while (watcher > 0 && waitpid(watcher, nullptr, 0) < 0 && errno == EINTR) {
	}
}

} // namespace desk
