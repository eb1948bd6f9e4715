// A disk that fails on demand: to be preloaded into a program and the commands that it starts.
//
//   DISK_FAULTS_VAR_TMP=DIR    what is opened or removed in /var/tmp lies in DIR
//   DISK_FAULTS_BREAK=A:B:...  reading these paths through a stream fails ...
//   DISK_FAULTS_AFTER=N        ... after their first N bytes

#include "libc.h"

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

/// Where a path really lies.
class Place
{
public:
	explicit Place(const char *given) : path(given)
	{
		constexpr char folder[] = "/var/tmp/";
		const char *instead = std::getenv("DISK_FAULTS_VAR_TMP");
		if (!instead || !given || std::strncmp(given, folder, sizeof folder - 1) != 0)
			return;
		std::snprintf(moved, sizeof moved, "%s/%s", instead, given + sizeof folder - 1);
		path = moved;
	}
	Place(const Place &) = delete;
	Place &operator=(const Place &) = delete;

	operator const char *() const { return path; }

private:
	const char *path;
	char moved[4096];
};

bool breaks(const char *path)
{
	const char *list = std::getenv("DISK_FAULTS_BREAK");
	const size_t length = std::strlen(path);
	while (list && *list) {
		const size_t entry = std::strcspn(list, ":");
		if (entry == length && std::strncmp(list, path, length) == 0)
			return true;
		list += entry + (list[entry] == ':');
	}
	return false;
}

struct BreakingFile
{
	FILE *file;
	size_t left;
};

ssize_t readBreaking(void *cookie, char *buffer, size_t size)
{
	BreakingFile &source = *static_cast<BreakingFile *>(cookie);
	if (source.left == 0) {
		errno = EIO;
		return -1;
	}
	const size_t got = std::fread(buffer, 1, size < source.left ? size : source.left, source.file);
	source.left -= got;
	return static_cast<ssize_t>(got);
}

int seekBreaking(void *cookie, off64_t *offset, int whence)
{
	FILE *file = static_cast<BreakingFile *>(cookie)->file;
	if (fseeko(file, *offset, whence) != 0)
		return -1;
	*offset = ftello(file);
	return 0;
}

int closeBreaking(void *cookie)
{
	BreakingFile *source = static_cast<BreakingFile *>(cookie);
	const int result = std::fclose(source->file);
	std::free(source);
	return result;
}

FILE *breaking(FILE *file)
{
	BreakingFile *source = static_cast<BreakingFile *>(std::malloc(sizeof(BreakingFile)));
	const char *after = std::getenv("DISK_FAULTS_AFTER");
	*source = {file, after ? std::strtoul(after, nullptr, 10) : 0};
	cookie_io_functions_t functions = {};
	functions.read = readBreaking;
	functions.seek = seekBreaking;
	functions.close = closeBreaking;
	return fopencookie(source, "r", functions);
}

FILE *openStream(const char *function, const char *path, const char *mode)
{
	FILE *file = next<FILE *(const char *, const char *)>(function)(Place(path), mode);
	return file && breaks(path) ? breaking(file) : file;
}

int openFile(const char *function, const char *path, int flags, mode_t mode)
{
	return next<int(const char *, int, ...)>(function)(Place(path), flags, mode);
}

mode_t modeOf(int flags, va_list arguments)
{
	return flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
}

} // namespace

extern "C" {

FILE *fopen(const char *path, const char *mode)
{
	return openStream("fopen", path, mode);
}

FILE *fopen64(const char *path, const char *mode)
{
	return openStream("fopen64", path, mode);
}

// A host opens what lies in a folder of its own without a name.
FILE *fdopen(int descriptor, const char *mode) noexcept
{
	char link[32], path[4096] = "";
	std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
	if (readlink(link, path, sizeof path - 1) < 0)
		return nullptr;
	FILE *file = next<FILE *(int, const char *)>("fdopen")(descriptor, mode);
	return file && breaks(path) ? breaking(file) : file;
}

int remove(const char *path) noexcept
{
	return next<int(const char *)>("remove")(Place(path));
}

int open(const char *path, int flags, ...)
{
	va_list arguments;
	va_start(arguments, flags);
	const mode_t mode = modeOf(flags, arguments);
	va_end(arguments);
	return openFile("open", path, flags, mode);
}

int open64(const char *path, int flags, ...)
{
	va_list arguments;
	va_start(arguments, flags);
	const mode_t mode = modeOf(flags, arguments);
	va_end(arguments);
	return openFile("open64", path, flags, mode);
}

// What a hardened program calls instead where it gives no mode.
int __open_2(const char *path, int flags)
{
	return openFile("open", path, flags, 0);
}

int __open64_2(const char *path, int flags)
{
	return openFile("open64", path, flags, 0);
}

} // extern "C"
