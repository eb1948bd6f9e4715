#ifndef VEXLO_TESTS_BREAKING_FILE_H
#define VEXLO_TESTS_BREAKING_FILE_H

#include <cerrno>
#include <cstdio>
#include <cstdlib>

/// A file that fails in the middle. In C++98 too, for a vendor's environment.
struct BreakingFile
{
	FILE *file;
	size_t left; ///< bytes until it fails

	static ssize_t read(void *cookie, char *buffer, size_t size)
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

	static int seek(void *cookie, off64_t *offset, int whence)
	{
		FILE *file = static_cast<BreakingFile *>(cookie)->file;
		if (fseeko64(file, *offset, whence) != 0)
			return -1;
		*offset = ftello64(file);
		return 0;
	}

	static int close(void *cookie)
	{
		BreakingFile *source = static_cast<BreakingFile *>(cookie);
		const int result = std::fclose(source->file);
		std::free(source);
		return result;
	}

	/// A stream that reads `length` bytes of `file`, and closes it with itself. `seeks`: it can be moved, as on a disk.
	static FILE *open(FILE *file, size_t length, bool seeks)
	{
		BreakingFile *source = static_cast<BreakingFile *>(std::malloc(sizeof(BreakingFile)));
		source->file = file;
		source->left = length;
		const cookie_io_functions_t functions = {read, NULL, seeks ? seek : NULL, close};
		return fopencookie(source, "r", functions);
	}
};

#endif
