#include "watch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

namespace desk
{

namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds calm(200); // a build may touch its result more than once

} // namespace

std::unique_ptr<Watch> Watch::start(const std::string &path, std::string &error)
{
	// The folder, because a linker makes a new file under the old name.
	const std::filesystem::path file = std::filesystem::absolute(path);
	const int notices = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
	if (notices < 0 ||
	    inotify_add_watch(notices, file.parent_path().c_str(), IN_CLOSE_WRITE | IN_MOVED_TO) < 0) {
		error = "cannot watch '" + path + "': " + std::strerror(errno) + "; leave out --watch";
		close(notices);
		return nullptr;
	}
	return std::unique_ptr<Watch>(new Watch(file.filename(), notices));
}

Watch::~Watch()
{
	close(notices);
}

void Watch::look()
{
	alignas(inotify_event) char events[4096];
	for (ssize_t length; (length = read(notices, events, sizeof events)) > 0;)
		for (const char *at = events; at < events + length;) {
			const inotify_event *event = reinterpret_cast<const inotify_event *>(at);
			if (event->len > 0 && name == event->name)
				written = Clock::now();
			at += sizeof *event + event->len;
		}
}

int Watch::patience() const
{
	if (!written)
		return -1;
	const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(*written + calm - Clock::now());
	return std::max(0, static_cast<int>(left.count()) + 1);
}

bool Watch::changed()
{
	if (!written || Clock::now() < *written + calm)
		return false;
	written.reset();
	return true;
}

} // namespace desk
