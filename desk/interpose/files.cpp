#include "files.h"

#include "caller.h"
#include "commands.h"
#include "desk.h"
#include "libc.h"
#include "older_meminfo.h"
#include "open_in_root.h"
#include "trace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace desk
{

namespace
{

/// The flags of open() that fopen's `mode` stands for.
int flagsOf(const char *mode)
{
	const bool both = std::strchr(mode, '+') != nullptr;
	int flags = both ? O_RDWR : *mode == 'r' ? O_RDONLY : O_WRONLY;
	if (*mode == 'w')
		flags |= O_CREAT | O_TRUNC;
	if (*mode == 'a')
		flags |= O_CREAT | O_APPEND;
	if (std::strchr(mode, 'x'))
		flags |= O_EXCL;
	return flags;
}

/// After what may have failed.
void closeKeepingErrno(int descriptor)
{
	const int reason = errno;
	if (descriptor >= 0)
		close(descriptor);
	errno = reason;
}

/// Whether a folder has a /var/tmp to write to, which is made where it is missing; false with errno set.
bool hasVarTmp(int root)
{
	constexpr int place = O_PATH | O_DIRECTORY;
	int folder = openInRoot(root, "/var/tmp", place);
	if (folder < 0 && errno == ENOENT && (mkdirat(root, "var", 0777) == 0 || errno == EEXIST)) {
		const int var = openInRoot(root, "/var", place);
		if (var >= 0 && mkdirat(var, "tmp", 0777) == 0)
			folder = openInRoot(root, "/var/tmp", place);
		closeKeepingErrno(var);
	}
	const bool has = folder >= 0 && faccessat(folder, ".", W_OK | X_OK, AT_EACCESS) == 0;
	closeKeepingErrno(folder);
	return has;
}

std::filesystem::path normal(const char *path)
{
	return std::filesystem::path(path).lexically_normal();
}

bool isVarTmp(const std::filesystem::path &plain)
{
	const std::string path = plain;
	return path == "/var/tmp" || path.rfind("/var/tmp/", 0) == 0;
}

int removeInRoot(int root, const std::filesystem::path &path, bool foldersToo)
{
	const int folder = openInRoot(root, path.parent_path().c_str(), O_PATH | O_DIRECTORY);
	if (folder < 0)
		return -1;
	int result = unlinkat(folder, path.filename().c_str(), 0);
	if (result != 0 && errno == EISDIR && foldersToo)
		result = unlinkat(folder, path.filename().c_str(), AT_REMOVEDIR);
	closeKeepingErrno(folder);
	return result;
}

/// /proc/meminfo in its older layout, at its start; null when there is none.
FILE *openOlderMeminfo()
{
	const Trace::Quiet converting;
	const int today = open("/proc/meminfo", O_RDONLY | O_CLOEXEC);
	FILE *meminfo = today < 0 ? nullptr : fdopen(today, "r");
	if (!meminfo)
		return nullptr;
	const std::string text = olderMeminfo(meminfo);
	fclose(meminfo);
	FILE *older = fmemopen(nullptr, text.size() + 1, "w+");
	if (older) {
		fputs(text.c_str(), older);
		rewind(older);
	}
	return older;
}

} // namespace

Files &Files::get()
{
	static Files files;
	return files;
}

bool Files::setRoot(const std::string &folder, std::string &error)
{
	const auto failed = [&](const std::string &why) {
		error = "cannot use '" + folder + "' as the receiver's files: " + why;
		return false;
	};
	const int opened = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
	if (opened < 0)
		return failed(std::strerror(errno) + std::string("; name a readable folder with --root"));
	// Commands inherit it, at a number that shells leave alone.
	if (root >= 0)
		close(root);
	root = fcntl(opened, F_DUPFD, 64);
	close(opened);
	return setVarTmp() || failed(std::string("there is no place for its /var/tmp: ") + std::strerror(errno));
}

Files::~Files()
{
	std::error_code failed;
	if (!temporary.empty())
		std::filesystem::remove_all(temporary, failed);
}

bool Files::setVarTmp()
{
	Desk &desk = Desk::get();
	rootOfVarTmp = root;
	if (!hasVarTmp(root)) {
		desk.note(std::string("deskhost: with --root, /var/tmp is the one in that folder, which is no folder "
		                      "to write to (") +
		          std::strerror(errno) + "); a temporary one takes its place");
		std::error_code failed;
		temporary = std::filesystem::temp_directory_path(failed) / "deskhost-XXXXXX";
		if (!mkdtemp(temporary.data()))
			return false;
		rootOfVarTmp = ::open(temporary.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
		if (!hasVarTmp(rootOfVarTmp))
			return false;
	}
	if (!Commands::get().takeFrom(root, rootOfVarTmp)) {
		desk.note(
			"deskhost: this kernel permits no mount namespace; so /var/tmp is this computer's, with --root "
			"as well, where two desk hosts at a time can get into each other's way");
		rootOfVarTmp = -1;
	}
	return true;
}

void Files::makeReceiver()
{
	older = true;
	Commands::get().takeFromBusybox();
}

bool Files::serve(const std::string &path, std::string &error)
{
	const std::filesystem::path whole(path);
	if (!whole.is_absolute() || !whole.has_filename() || whole != whole.lexically_normal()) {
		error = "cannot serve '" + path + "': name a file by its whole path, such as /etc/hostname";
		return false;
	}
	served.push_back(path);
	return true;
}

/// The folder that a path is served from; -1: it is not.
int Files::rootOf(const char *path) const
{
	if (root < 0 || !path)
		return -1;
	const std::filesystem::path plain = normal(path);
	// What the host writes for itself or the viewer is not to end in there.
	if (isVarTmp(plain))
		return byPlugin() ? rootOfVarTmp : -1;
	return std::find(served.begin(), served.end(), plain) != served.end() ? root : -1;
}

FILE *Files::open(const char *path, const char *mode) const
{
	if (older && path && std::strcmp(path, "/proc/meminfo") == 0 && *mode == 'r')
		return openOlderMeminfo();
	const int from = rootOf(path);
	if (from < 0)
		return next<FILE *(const char *, const char *)>("fopen")(path, mode);
	const int file = openInRoot(from, path, flagsOf(mode));
	if (file >= 0)
		return fdopen(file, mode);
	const int reason = errno;
	if (*mode == 'r' && !isVarTmp(normal(path))) // a screen that stays empty is to be understood
		Desk::get().note("deskhost: with --root, " + std::string(path) +
		                 " is the one in that folder, which cannot be read: " + std::strerror(reason));
	errno = reason;
	return nullptr;
}

int Files::remove(const char *path) const
{
	const int from = rootOf(path);
	return from < 0 ? next<int(const char *)>("remove")(path) : removeInRoot(from, normal(path), true);
}

int Files::unlink(const char *path) const
{
	const int from = rootOf(path);
	return from < 0 ? next<int(const char *)>("unlink")(path) : removeInRoot(from, normal(path), false);
}

} // namespace desk
