#ifndef DESK_RECEIVER_FILES_H
#define DESK_RECEIVER_FILES_H

#include <string>

namespace desk
{

/// The receiver's files and commands, as the plugin sees them.
///
/// The program exports its own fopen, fclose, remove and system. A call from the plugin is traced
/// and, with a root folder, led to that folder; a call from anywhere else goes to libc untouched.
class Files
{
public:
	static Files &get();

	/// Serves /proc/meminfo, /proc/mtd and /var/scaning.log from `folder`, lets commands find
	/// `folder`/bin first, and only reports kills. On failure returns false and leaves one line in `error`.
	bool setRoot(const std::string &folder, std::string &error);

	/// Tells which code is the plugin's: the addresses that the loaded object `handle` spans.
	void setPlugin(void *handle);

	/// No plugin is loaded.
	void clearPlugin();

	bool fromPlugin(const void *caller) const { return caller >= begin && caller < end; }

	/// Where the plugin's `path` really lies.
	std::string resolve(const char *path) const;

	/// Runs a command of the plugin's, as the system library's system() does.
	int run(const char *command) const;

private:
	std::string root; ///< empty: this computer is the receiver
	const void *begin = nullptr;
	const void *end = nullptr;
};

} // namespace desk

#endif
