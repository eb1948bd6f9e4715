#include "files.h"

#include "commands.h"
#include "desk.h"
#include "libc.h"
#include "older_meminfo.h"
#include "open_in_root.h"
#include "trace.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
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
	Commands::get().takeFrom(root);
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

bool Files::serves(const char *path) const
{
	if (root < 0 || !path)
		return false;
	const std::string plain = std::filesystem::path(path).lexically_normal();
	return std::find(served.begin(), served.end(), plain) != served.end();
}

FILE *Files::open(const char *path, const char *mode) const
{
	if (older && path && std::strcmp(path, "/proc/meminfo") == 0 && *mode == 'r')
		return openOlderMeminfo();
	if (!serves(path))
		return next<FILE *(const char *, const char *)>("fopen")(path, mode);
	const int file = openInRoot(root, path, flagsOf(mode));
	if (file >= 0)
		return fdopen(file, mode);
	const int reason = errno;
	if (*mode == 'r') // a screen that stays empty is to be understood
		Desk::get().screen().note(
			"deskhost: with --root, " + std::string(path) +
			" is the one in that folder, which cannot be read: " + std::strerror(reason));
	errno = reason;
	return nullptr;
}

int Files::removeInRoot(const char *path, bool foldersToo) const
{
	const std::filesystem::path plain = std::filesystem::path(path).lexically_normal();
	const int folder = openInRoot(root, plain.parent_path().c_str(), O_PATH | O_DIRECTORY);
	if (folder < 0)
		return -1;
	int result = unlinkat(folder, plain.filename().c_str(), 0);
	if (result != 0 && errno == EISDIR && foldersToo)
		result = unlinkat(folder, plain.filename().c_str(), AT_REMOVEDIR);
	const int reason = errno;
	close(folder);
	errno = reason;
	return result;
}

int Files::remove(const char *path) const
{
	return serves(path) ? removeInRoot(path, true) : next<int(const char *)>("remove")(path);
}

int Files::unlink(const char *path) const
{
	return serves(path) ? removeInRoot(path, false) : next<int(const char *)>("unlink")(path);
}

} // namespace desk
