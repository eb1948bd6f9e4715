#include "watch.h"

#include "desk_error.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <list>

namespace desk
{

namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds settlingTime(200); // a build may write the file several times
constexpr int mostLinks = 40;                          // as in the kernel

} // namespace

std::unique_ptr<Watch> Watch::start(const std::string &path)
{
	std::error_code failed; // without a current folder, watching fails anyway
	const std::filesystem::path file = std::filesystem::absolute(path, failed);
	const int inotify = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
	std::unique_ptr<Watch> watch(new Watch(file, inotify));
	if (inotify < 0 || inotify_add_watch(inotify, file.parent_path().c_str(), IN_CLOSE_WRITE) < 0)
		throw Error("cannot watch '" + path + "': " + std::strerror(errno) + "; leave out --watch",
		            statusNotToItsEnd);
	watch->follow();
	return watch;
}

Watch::~Watch()
{
	close(inotify);
}

/// Watches each folder on the path, because a linker replaces the file, and folders and links may change.
void Watch::follow()
{
	namespace fs = std::filesystem;
	steps.clear();
	std::list<fs::path> left(file.begin(), file.end());
	fs::path place;
	for (int links = 0; !left.empty() && links < mostLinks;) {
		const fs::path step = left.front();
		left.pop_front();
		if (step.is_absolute() || step == "." || step.empty()) {
			place = step.is_absolute() ? step : place;
			continue;
		}
		if (step == "..") {
			place = place.parent_path();
			continue;
		}
		const int number =
			inotify_add_watch(inotify, place.c_str(), IN_CLOSE_WRITE | IN_CREATE | IN_MOVE | IN_DELETE);
		last = *steps.emplace(number, step).first;
		place /= step;
		std::error_code failed;
		const fs::path target = fs::read_symlink(place, failed);
		if (failed)
			continue;
		++links;
		place = place.parent_path();
		left.insert(left.begin(), target.begin(), target.end());
	}
	struct stat now = {};
	stat(file.c_str(), &now);
	reached = now;
}

void Watch::readEvents()
{
	alignas(inotify_event) char events[4096];
	for (ssize_t length; (length = read(inotify, events, sizeof events)) > 0;)
		for (const char *at = events; at < events + length;) {
			const inotify_event *event = reinterpret_cast<const inotify_event *>(at);
			at += sizeof *event + event->len;
			const Name name(event->wd, event->len > 0 ? event->name : "");
			if (name == last && (event->mask & (IN_CLOSE_WRITE | IN_MOVED_TO)) != 0)
				written = Clock::now();
			if (steps.count(name) == 0 || (event->mask & IN_CLOSE_WRITE) != 0)
				continue;
			const struct stat before = reached;
			follow();
			const bool another = reached.st_dev != before.st_dev || reached.st_ino != before.st_ino;
			// A new file is not written yet, unless it is another link to one.
			if (reached.st_ino != 0 && another && (name != last || reached.st_nlink > 1))
				written = Clock::now();
		}
}

int Watch::patience() const
{
	if (!written)
		return -1;
	const auto left =
		std::chrono::duration_cast<std::chrono::milliseconds>(*written + settlingTime - Clock::now());
	return std::max(0, static_cast<int>(left.count()) + 1);
}

bool Watch::changed()
{
	if (!written || Clock::now() < *written + settlingTime)
		return false;
	written.reset();
	return true;
}

} // namespace desk
