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

/// Notices a new version of a file: written in place, renamed over it, reached by a changed link, or in a recreated
/// folder.
class Watch
{
public:
	/// Throws an Error on failure.
	static std::unique_ptr<Watch> start(const std::string &path);
	~Watch();
	Watch(const Watch &) = delete;
	Watch &operator=(const Watch &) = delete;

	/// Readable when readEvents() has work.
	int descriptor() const { return inotify; }
	void readEvents();

	/// Milliseconds until changed() must be called; -1: no need.
	int patience() const;
	/// Whether the file was written, and not again for a while; true once for each change.
	bool changed();

private:
	using Name = std::pair<int, std::string>; ///< a watched folder's number, and an entry's name

	Watch(std::filesystem::path watched, int opened) : file(std::move(watched)), inotify(opened) {}

	void follow();

	const std::filesystem::path file;
	const int inotify;
	std::set<Name> steps;     ///< the entries on the path to the file, through all links
	Name last;                ///< the file's entry
	struct stat reached = {}; ///< the file when last seen
	std::optional<std::chrono::steady_clock::time_point> written;
};

} // namespace desk

#endif
