// A disk that fails on demand. To be preloaded into a program.
//
//   DISK_FAULTS_BREAK=A:B:...  reading these paths through a stream fails ...
//   DISK_FAULTS_AFTER=N        ... after their first N bytes

#include "libc.h"

#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

/// Compares device and inode, because the file may be open by another name.
bool breaks(int descriptor)
{
	const char *list = std::getenv("DISK_FAULTS_BREAK");
	struct stat opened = {}, meant = {};
	if (fstat(descriptor, &opened) != 0)
		return false;
	for (char path[4096]; list && *list;) {
		const size_t length = std::strcspn(list, ":");
		std::snprintf(path, sizeof path, "%.*s", static_cast<int>(length), list);
		if (stat(path, &meant) == 0 && meant.st_dev == opened.st_dev && meant.st_ino == opened.st_ino)
			return true;
		list += length + (list[length] == ':');
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

} // namespace

extern "C" {

FILE *fdopen(int descriptor, const char *mode) noexcept
{
	FILE *file = next<FILE *(int, const char *)>("fdopen")(descriptor, mode);
	return file && breaks(descriptor) ? breaking(file) : file;
}

FILE *fopen(const char *path, const char *mode)
{
	FILE *file = next<FILE *(const char *, const char *)>("fopen")(path, mode);
	return file && breaks(fileno(file)) ? breaking(file) : file;
}

} // extern "C"
