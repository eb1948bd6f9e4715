#include "open_in_root.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <filesystem>
#include <list>
#include <string>

namespace desk
{

namespace
{

constexpr int mostLinks = 40; ///< as the kernel's own
constexpr int permissions = 0666;

/// The folders from the root down to the one that the way has come to; closes them.
class Way
{
public:
	explicit Way(int start) : root(start) {}
	~Way() { startAgain(); }
	Way(const Way &) = delete;
	Way &operator=(const Way &) = delete;

	int here() const { return below.empty() ? root : below.back(); }
	void down(int folder) { below.push_back(folder); }
	void startAgain()
	{
		while (!below.empty())
			up();
	}
	void up()
	{
		if (below.empty())
			return; // the root is its own parent
		const int reason = errno;
		close(below.back());
		errno = reason;
		below.pop_back();
	}

private:
	int root;
	std::list<int> below;
};

} // namespace

int openInRoot(int root, const char *path, int flags)
{
	open_how how = {};
	how.flags = static_cast<__u64>(flags | O_CLOEXEC);
	how.mode = flags & O_CREAT ? permissions : 0;
	how.resolve = RESOLVE_IN_ROOT;
	const int opened = static_cast<int>(syscall(SYS_openat2, root, path, &how, sizeof how));
	// A container that does not know the call refuses it.
	return opened < 0 && (errno == ENOSYS || errno == EPERM) ? openInRootByNames(root, path, flags) : opened;
}

int openInRootByNames(int root, const char *path, int flags)
{
	if (!*path) {
		errno = ENOENT;
		return -1;
	}
	using Path = std::filesystem::path;
	const Path whole(path);
	std::list<Path> names(whole.begin(), whole.end());
	Way way(root);
	for (int links = 0; !names.empty();) {
		const Path name = names.front();
		names.pop_front();
		if (name.empty() || name == "/" || name == ".")
			continue;
		if (name == "..") {
			way.up();
			continue;
		}
		char target[PATH_MAX];
		const bool last = names.empty();
		const ssize_t length =
			last && (flags & O_EXCL) ? -1 : readlinkat(way.here(), name.c_str(), target, sizeof target);
		if (length >= 0) {
			if (++links > mostLinks) {
				errno = ELOOP;
				return -1;
			}
			const Path next(std::string(target, static_cast<size_t>(length)));
			names.insert(names.begin(), next.begin(), next.end());
			if (next.is_absolute())
				way.startAgain();
			continue;
		}
		const int how = last ? flags : O_PATH | O_DIRECTORY;
		const int opened = openat(way.here(), name.c_str(), how | O_NOFOLLOW | O_CLOEXEC, permissions);
		if (opened < 0 || last)
			return opened;
		way.down(opened);
	}
	return openat(way.here(), ".", flags | O_CLOEXEC, permissions);
}

} // namespace desk
