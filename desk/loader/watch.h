#ifndef DESK_LOADER_WATCH_H
#define DESK_LOADER_WATCH_H

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace desk
{

/// Looks, on a thread of its own, whether a file is written anew: in its place, or by another one that
/// takes its name.
class Watch
{
public:
	/// Null when it cannot be done; `error` then says why in one line. `notify` is called on that thread
	/// once the file has not been written for a while.
	static std::unique_ptr<Watch> start(const std::string &path, std::function<void()> notify,
	                                    std::string &error);
	~Watch();
	Watch(const Watch &) = delete;
	Watch &operator=(const Watch &) = delete;

	/// Whether it was written since this was asked last.
	bool changed() { return written.exchange(false); }

private:
	Watch(std::string watched, int notices, std::function<void()> toNotify);
	void look();
	bool concernsFile();

	const std::string name;
	const int inotify;
	const int stop; ///< an eventfd
	const std::function<void()> notify;
	std::atomic<bool> written{false};
	std::thread looking;
};

} // namespace desk

#endif
