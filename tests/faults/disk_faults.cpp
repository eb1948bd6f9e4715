// A disk that fails on demand. To be preloaded into a program.
//
//   DISK_FAULTS_BREAK=A:B:...  reading these paths through a stream fails ...
//   DISK_FAULTS_AFTER=N        ... after their first N bytes

#include "breaking_file.h"
#include "libc.h"

#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

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

FILE *breaking(FILE *file)
{
	const char *after = std::getenv("DISK_FAULTS_AFTER");
	return BreakingFile::open(file, after ? std::strtoul(after, nullptr, 10) : 0, true);
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
