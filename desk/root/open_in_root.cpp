#include "open_in_root.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <iterator>

namespace desk
{

namespace
{

constexpr int permissions = 0666;

/// Opens a name in a folder; refuses links and "..".
int openHere(int folder, const std::filesystem::path &name, int flags)
{
	if (name == "..") {
		errno = ELOOP;
		return -1;
	}
	const int opened =
		openat(folder, name.empty() ? "." : name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC, permissions);
	struct stat status;
	if (opened >= 0 && flags & O_PATH && fstat(opened, &status) == 0 && S_ISLNK(status.st_mode)) {
		close(opened);
		errno = ELOOP;
		return -1;
	}
	return opened;
}

} // namespace

int openInRoot(int root, const char *path, int flags)
{
	open_how how = {};
	how.flags = static_cast<__u64>(flags | O_CLOEXEC);
	how.mode = flags & O_CREAT ? permissions : 0;
	how.resolve = RESOLVE_IN_ROOT;
	const int opened = static_cast<int>(syscall(SYS_openat2, root, path, &how, sizeof how));
	// EPERM: a container filters the call.
	return opened < 0 && (errno == ENOSYS || errno == EPERM) ? openWithoutLinks(root, path, flags) : opened;
}

int openWithoutLinks(int root, const char *path, int flags)
{
	const std::filesystem::path names = std::filesystem::path(path).relative_path();
	if (names.empty())
		return openHere(root, ".", flags);
	int here = root;
	for (auto name = names.begin(); here >= 0 && name != names.end(); ++name) {
		const bool isLast = std::next(name) == names.end();
		const int next = openHere(here, *name, isLast ? flags : O_PATH | O_DIRECTORY);
		const int reason = errno;
		if (here != root)
			close(here);
		errno = reason;
		here = next;
	}
	return here;
}

} // namespace desk
