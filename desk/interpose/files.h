#ifndef DESK_INTERPOSE_FILES_H
#define DESK_INTERPOSE_FILES_H

#include <string>

namespace desk
{

/// The receiver's files and commands, as the plugin sees them.
///
/// The program exports its own fopen, fclose, remove and system. While the plugin runs, its calls are
/// traced and, with a root folder, led to that folder; the calls of other libraries go to libc untouched.
class Files
{
public:
	static Files &get();

	/// Serves /proc/meminfo, /proc/mtd and /var/scaning.log from `folder`, lets commands find
	/// `folder`/bin first, and only reports commands that kill, wherever in a command the word stands.
	/// On failure returns false and leaves one line in `error`.
	bool setRoot(const std::string &folder, std::string &error);

	/// Around each call of the plugin's entry; `handle` is what dlopen gave.
	void pluginStarts(void *handle);
	void pluginEnds() { plugin = nullptr; }

	bool pluginRuns() const { return plugin != nullptr; }

	/// Whether a call that returns to `caller` is the plugin's. It may return to this program as well: a
	/// slot that ends in the call jumps there, and the program opens no files of its own meanwhile.
	bool fromPlugin(const void *caller) const;

	/// Where the plugin's `path` really lies.
	std::string resolve(const char *path) const;

	/// Runs a command of the plugin's, as the system library's system() does.
	int run(const char *command) const;

private:
	std::string root;             ///< empty: this computer is the receiver
	const void *plugin = nullptr; ///< where it is loaded, while it runs
};

} // namespace desk

#endif
