// A disk that fails on demand: to be preloaded into a program.
//
//   DISK_FAULTS_BREAK=A:B:...  reading these paths through a stream fails ...
//   DISK_FAULTS_AFTER=N        ... after their first N bytes

#include "libc.h"

#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

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

} // namespace

extern "C" {

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

} // extern "C"
