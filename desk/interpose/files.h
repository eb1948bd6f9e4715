#ifndef DESK_INTERPOSE_FILES_H
#define DESK_INTERPOSE_FILES_H

#include <cstdio>
#include <string>
#include <vector>

namespace desk
{

/// The receiver's files, as the plugin sees them: this computer's, or those in a folder.
class Files
{
public:
	static Files &get();
	~Files();

	/// Serves /proc/meminfo, /proc/mtd, /var/scaning.log and what is in /var/tmp from `folder`; commands are then
	/// those of `folder`/bin, with the same /var/tmp. It is made where it is missing; where it cannot be used, it
	/// is a temporary folder instead, and where commands cannot have it, it is this computer's: a note says
	/// so. On failure returns false and leaves one line in `error`.
	bool setRoot(const std::string &folder, std::string &error);

	/// Makes a receiver of this computer, for a plugin that expects an older kernel and BusyBox: its
	/// memory in the older layout, and BusyBox's ps, df and kill where BusyBox is installed.
	void makeReceiver();

	/// Serves one more file from the root. On failure returns false and leaves one line in `error`.
	bool serve(const std::string &path, std::string &error);

	/// Like their namesakes in libc. A served path means what lies in the root, where links lead to
	/// places in the root as well: nothing outside is reached.
	FILE *open(const char *path, const char *mode) const;
	int remove(const char *path) const;
	int unlink(const char *path) const;

private:
	bool setVarTmp();
	int rootOf(const char *path) const;

	int root = -1;         ///< the folder; -1: this computer is the receiver
	int rootOfVarTmp = -1; ///< the folder whose /var/tmp is served; -1: that is this computer's
	std::string temporary; ///< the latter, where it is not the root; empty: it is
	bool older = false;
	std::vector<std::string> served = {"/proc/meminfo", "/proc/mtd", "/var/scaning.log"};
};

} // namespace desk

#endif
