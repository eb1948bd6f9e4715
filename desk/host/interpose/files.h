#ifndef DESK_INTERPOSE_FILES_H
#define DESK_INTERPOSE_FILES_H

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace desk
{

/// The receiver's files, as the plugin sees them: this computer's, or those in a folder.
class Files
{
public:
	static Files &get();

	/// Serves these files from `folder`; commands are then those of `folder`/bin. `contained`: they stand at their own
	/// paths by links into it. Throws an Error when it cannot be used.
	void setRoot(const std::string &folder, const std::vector<std::string> &served, bool contained);

	/// Makes a receiver of this computer, for a plugin that expects an older kernel and BusyBox: its
	/// memory in the older layout, and BusyBox's ps, df and kill where BusyBox is installed.
	void makeReceiver();

	/// Like their namesakes in libc. A served path means what lies in the root, where links lead to
	/// places in the root as well: nothing outside is reached.
	FILE *open(const char *path, const char *mode) const;
	int remove(const char *path) const;
	int unlink(const char *path) const;
	int rename(const char *from, const char *to) const;

	/// Whether a call for that path is led to the root, and where that is.
	std::optional<std::string> ledTo(const char *path) const;

private:
	bool isServed(const char *path) const;
	/// Of a served file.
	bool isPipe(const char *path) const;
	std::string meant(const char *path) const;

	std::string folder;
	std::vector<std::string> served;
	int root = -1; ///< to lead served paths to; -1: they stand where they are expected
	bool layoutIsOlder = false;
};

} // namespace desk

#endif
