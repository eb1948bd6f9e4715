#ifndef DESK_INTERPOSE_FILES_H
#define DESK_INTERPOSE_FILES_H

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace desk
{

/// The receiver's files for the plugin: this computer's, or those in a folder.
class Files
{
public:
	static Files &get();

	/// Serves these files from `folder`, and commands from `folder`/bin. `contained`: the sandbox has links to them
	/// at their own paths. Throws an Error when the folder cannot be used.
	void setRoot(const std::string &folder, const std::vector<std::string> &served, bool contained);

	/// Makes this computer a receiver for a plugin that expects an older kernel and BusyBox: meminfo in the older
	/// layout, and BusyBox's ps, df and kill where it is installed.
	void makeReceiver();

	/// Like their namesakes in libc. A served path means the root's file; links lead to places in the root, never
	/// outside.
	FILE *open(const char *path, const char *mode) const;
	int remove(const char *path) const;
	int unlink(const char *path) const;
	int rename(const char *from, const char *to) const;

	/// The place in the root if it replaces `path`.
	std::optional<std::string> ledTo(const char *path) const;

private:
	bool isServed(const char *path) const;
	/// Whether the served file is a pipe.
	bool isPipe(const char *path) const;
	std::string meant(const char *path) const;

	std::string folder;
	std::vector<std::string> served;
	int root = -1; ///< for served paths; -1: they need no redirection
	bool layoutIsOlder = false;
};

} // namespace desk

#endif
