#include "watch.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>

namespace desk
{

namespace
{

constexpr int calm = 200; // milliseconds: a build may touch its result more than once

} // namespace

std::unique_ptr<Watch> Watch::start(const std::string &path, std::function<void()> notify, std::string &error)
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
	return std::unique_ptr<Watch>(new Watch(file.filename(), notices, std::move(notify)));
}

Watch::Watch(std::string watched, int notices, std::function<void()> toNotify)
	: name(std::move(watched)), inotify(notices), stop(eventfd(0, EFD_CLOEXEC)), notify(std::move(toNotify))
{
	// Signals are for the thread that waits for keys.
	sigset_t all, before;
	sigfillset(&all);
	pthread_sigmask(SIG_SETMASK, &all, &before);
	looking = std::thread(&Watch::look, this);
	pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

Watch::~Watch()
{
	eventfd_write(stop, 1);
	looking.join();
	close(stop);
	close(inotify);
}

bool Watch::concernsFile()
{
	alignas(inotify_event) char events[4096];
	bool ours = false;
	for (ssize_t length; (length = read(inotify, events, sizeof events)) > 0;)
		for (const char *at = events; at < events + length;) {
			const inotify_event *event = reinterpret_cast<const inotify_event *>(at);
			ours = ours || (event->len > 0 && name == event->name);
			at += sizeof *event + event->len;
		}
	return ours;
}

void Watch::look()
{
	bool pending = false;
	for (;;) {
		pollfd ends[] = {{stop, POLLIN, 0}, {inotify, POLLIN, 0}};
		const int ready = poll(ends, 2, pending ? calm : -1);
		if (ends[0].revents)
			return;
		if (ready > 0)
			pending = concernsFile() || pending;
		else if (pending) {
			pending = false;
			written = true;
			notify();
		}
	}
}

} // namespace desk
