#ifndef DESK_VIEWER_WATCH_H
#define DESK_VIEWER_WATCH_H

#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace desk
{

/// Tells when a file is written anew: in its place, by another one that takes its name, by a link to it that leads
/// elsewhere, or in a folder that is made again.
class Watch
{
public:
	/// Throws an Error when it cannot be done.
	static std::unique_ptr<Watch> start(const std::string &path);
	~Watch();
	Watch(const Watch &) = delete;
	Watch &operator=(const Watch &) = delete;

	/// Becomes readable when readEvents() is to be called.
	int descriptor() const { return notices; }
	void readEvents();

	/// Milliseconds after which changed() is to be asked; -1: not before something has come.
	int patience() const;
	/// Whether the file was written and has been left alone for a while since; once for each time.
	bool changed();

private:
	using Name = std::pair<int, std::string>; ///< a watched folder's number, and an entry of it

	Watch(std::filesystem::path watched, int inotify) : file(std::move(watched)), notices(inotify) {}

	void follow();

	const std::filesystem::path file;
	const int notices;
	std::set<Name> steps;     ///< on the way to the file, over all links
	Name last;                ///< the file itself
	struct stat reached = {}; ///< the file that was there
	std::optional<std::chrono::steady_clock::time_point> written;
};

} // namespace desk

#endif
