#include "files.h"

#include "commands.h"
#include "desk.h"
#include "desk_error.h"
#include "libc.h"
#include "older_meminfo.h"
#include "open_in_root.h"
#include "trace.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
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

/// The flags of open() for fopen's `mode`.
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

void closeKeepingErrno(int descriptor)
{
	const int reason = errno;
	if (descriptor >= 0)
		close(descriptor);
	errno = reason;
}

std::filesystem::path normal(const char *path)
{
	return std::filesystem::path(path).lexically_normal();
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

/// Enters a mount namespace, unless as the superuser with a user namespace that keeps the user's id.
bool enterMountNamespace()
{
	const std::string user = std::to_string(geteuid()), group = std::to_string(getegid());
	if (unshare(CLONE_NEWNS) == 0)
		return true;
	if (unshare(CLONE_NEWNS | CLONE_NEWUSER) != 0)
		return false;
	const auto write = [](const char *path, const std::string &text) {
		const int file = open(path, O_WRONLY | O_CLOEXEC);
		const bool written = ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
		close(file);
		return written;
	};
	return write("/proc/self/setgroups", "deny") && write("/proc/self/uid_map", user + ' ' + user + " 1") &&
	       write("/proc/self/gid_map", group + ' ' + group + " 1");
}

/// Mounts the root's /var/tmp, made if missing, over this computer's for this process and its commands. False: they
/// use this computer's.
bool mountVarTmp(int root)
{
	if (mkdirat(root, "var", 0777) != 0 && errno != EEXIST)
		return false;
	if (const int var = openInRoot(root, "/var", O_PATH | O_DIRECTORY); var >= 0) {
		mkdirat(var, "tmp", 0777);
		close(var);
	}
	const int folder = openInRoot(root, "/var/tmp", O_PATH | O_DIRECTORY);
	struct stat meant = {}, there = {};
	// The descriptor belongs to the old namespace, so mount by path, and check that it is the same folder.
	std::error_code failed;
	const std::string path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(folder), failed);
	const bool isMounted = folder >= 0 && fstat(folder, &meant) == 0 && enterMountNamespace() &&
	                       mount("none", "/", "", MS_REC | MS_PRIVATE, nullptr) == 0 &&
	                       stat(path.c_str(), &there) == 0 && meant.st_dev == there.st_dev &&
	                       meant.st_ino == there.st_ino &&
	                       mount(path.c_str(), "/var/tmp", "", MS_BIND | MS_REC, nullptr) == 0;
	closeKeepingErrno(folder);
	return isMounted;
}

/// /proc/meminfo in its older layout as a stream; null without it.
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
		fseek(older, 0, SEEK_SET);
	}
	return older;
}

} // namespace

Files &Files::get()
{
	static Files files;
	return files;
}

void Files::setRoot(const std::string &from, const std::vector<std::string> &files, bool contained)
{
	folder = from;
	served = files;
	if (contained)
		return Commands::get().takeFrom(folder, -1);
	root = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
	if (root < 0)
		throw Error("cannot use '" + folder + "' as the receiver's files: " + std::strerror(errno) +
		            "; name a readable folder with --root");
	if (!mountVarTmp(root))
		Desk::get().note("deskhost: /var/tmp is this computer's, because " + folder +
		                 "/var/tmp cannot be mounted there: two desk hosts at once disturb each other");
	// By descriptor, because a folder with a colon in its name cannot be in PATH.
	Commands::get().takeFrom("/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(root), root);
}

void Files::makeReceiver()
{
	layoutIsOlder = true;
	Commands::get().takeFromBusybox();
}

bool Files::isServed(const char *path) const
{
	return path && !served.empty() && std::find(served.begin(), served.end(), normal(path)) != served.end();
}

std::optional<std::string> Files::ledTo(const char *path) const
{
	if (root < 0 || !isServed(path))
		return std::nullopt;
	return std::filesystem::path(folder) / normal(path).relative_path();
}

/// The root's file that a link stands for, else `path`.
std::string Files::meant(const char *path) const
{
	std::error_code failed;
	const std::string target = std::filesystem::read_symlink(path, failed);
	return target.rfind(folder + '/', 0) == 0 ? target : path;
}

bool Files::isPipe(const char *path) const
{
	struct stat status = {};
	const int file = root < 0 ? openat(AT_FDCWD, path, O_PATH | O_CLOEXEC) : openInRoot(root, path, O_PATH);
	const bool is = fstat(file, &status) == 0 && S_ISFIFO(status.st_mode);
	closeKeepingErrno(file);
	return is;
}

FILE *Files::open(const char *path, const char *mode) const
{
	if (layoutIsOlder && path && std::strcmp(path, "/proc/meminfo") == 0 && *mode == 'r')
		return openOlderMeminfo();
	const bool isOurs = isServed(path);
	FILE *stream = nullptr;
	if (isOurs && isPipe(path)) // would block
		errno = ESPIPE;
	else if (root < 0 || !isOurs)
		stream = next<FILE *(const char *, const char *)>("fopen")(path, mode);
	else if (const int file = openInRoot(root, path, flagsOf(mode)); file >= 0)
		stream = fdopen(file, mode);
	const int reason = errno;
	if (!stream && *mode == 'r' && isOurs) // explains an empty screen
		Desk::get().note("deskhost: with --root, " + std::string(path) +
		                 " is the one in that folder, which cannot be read: " +
		                 (reason == ESPIPE ? "it is a pipe" : std::strerror(reason)));
	errno = reason;
	return stream;
}

int Files::remove(const char *path) const
{
	if (root >= 0 && isServed(path))
		return removeInRoot(root, normal(path), true);
	return next<int(const char *)>("remove")(isServed(path) ? meant(path).c_str() : path);
}

int Files::unlink(const char *path) const
{
	if (root >= 0 && isServed(path))
		return removeInRoot(root, normal(path), false);
	return next<int(const char *)>("unlink")(isServed(path) ? meant(path).c_str() : path);
}

int Files::rename(const char *from, const char *to) const
{
	if (root < 0 || (!isServed(from) && !isServed(to)))
		return next<int(const char *, const char *)>("rename")(from, to);
	if (!isServed(from) || !isServed(to)) {
		errno = EXDEV; // one of the files is this computer's
		return -1;
	}
	const std::filesystem::path old = normal(from), fresh = normal(to);
	const int oldFolder = openInRoot(root, old.parent_path().c_str(), O_PATH | O_DIRECTORY);
	const int newFolder = openInRoot(root, fresh.parent_path().c_str(), O_PATH | O_DIRECTORY);
	const int result = oldFolder < 0 || newFolder < 0
	                       ? -1
	                       : renameat(oldFolder, old.filename().c_str(), newFolder, fresh.filename().c_str());
	closeKeepingErrno(oldFolder);
	closeKeepingErrno(newFolder);
	return result;
}

} // namespace desk
