#ifndef DESK_VIEWER_WATCH_H
#define DESK_VIEWER_WATCH_H

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace desk
{

/// Tells when a file is written anew: in its place, or by another one that takes its name.
class Watch
{
public:
	/// Null when it cannot be done; `error` then says why in one line.
	static std::unique_ptr<Watch> start(const std::string &path, std::string &error);
	~Watch();
	Watch(const Watch &) = delete;
	Watch &operator=(const Watch &) = delete;

	/// Becomes readable when look() is to be called.
	int descriptor() const { return notices; }
	void look();

	/// Milliseconds after which changed() is to be asked; -1: not before something has come.
	int patience() const;
	/// Whether the file was written and has been left alone for a while since; once for each time.
	bool changed();

private:
	Watch(std::string watched, int inotify) : name(std::move(watched)), notices(inotify) {}

	const std::string name;
	const int notices;
	std::optional<std::chrono::steady_clock::time_point> written;
};

} // namespace desk

#endif
