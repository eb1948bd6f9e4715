#include "streams.h"

#include "temp_folder.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <utility>

namespace
{

struct Source
{
	std::string bytes;
	std::size_t at = 0;
	bool failsFirst = false;
	bool failsAtEnd = false;
	std::string later = {}; ///< appended after the rest was read
};

ssize_t readSource(void *cookie, char *buffer, size_t size)
{
	Source &source = *static_cast<Source *>(cookie);
	const std::size_t count = std::min(size, source.bytes.size() - source.at);
	if (source.failsFirst || (source.failsAtEnd && count == 0)) {
		source.failsFirst = false;
		errno = EIO;
		return -1;
	}
	source.bytes.copy(buffer, count, source.at);
	source.at += count;
	if (source.at == source.bytes.size())
		source.bytes += std::exchange(source.later, {});
	return static_cast<ssize_t>(count);
}

int seekSource(void *cookie, off64_t *offset, int whence)
{
	Source &source = *static_cast<Source *>(cookie);
	const std::size_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? source.at : source.bytes.size();
	source.at = from + static_cast<std::size_t>(*offset);
	*offset = static_cast<off64_t>(source.at);
	return 0;
}

int closeSource(void *cookie)
{
	delete static_cast<Source *>(cookie);
	return 0;
}

} // namespace

Stream streamOf(const std::string &bytes)
{
	return Stream(fmemopen(const_cast<char *>(bytes.data()), bytes.size(), "r"));
}

Stream failingStream(const std::string &bytes, bool recovers)
{
	cookie_io_functions_t functions = {};
	functions.read = readSource;
	functions.close = closeSource;
	return Stream(fopencookie(new Source{bytes, 0, recovers, !recovers}, "r", functions));
}

Stream growingStream(const std::string &bytes, const std::string &later)
{
	cookie_io_functions_t functions = {};
	functions.read = readSource;
	functions.seek = seekSource;
	functions.close = closeSource;
	return Stream(fopencookie(new Source{bytes, 0, false, false, later}, "r", functions));
}

std::string fixture(const std::string &name)
{
	const std::string path = VEXLO_FIXTURES "/" + name;
	EXPECT_TRUE(support::exists(path)) << name;
	const std::string other = path + ".long32";
	return support::readFile(sizeof(long) == 4 && support::exists(other) ? other : path);
}

std::vector<std::string> fixturesIn(const std::string &folder)
{
	std::vector<std::string> names;
	for (const auto &file : std::filesystem::directory_iterator(VEXLO_FIXTURES "/" + folder)) {
		const std::string type = file.path().extension();
		if (type == ".txt" || type == ".log" || type == ".bin")
			names.push_back(folder + '/' + file.path().filename().string());
	}
	std::sort(names.begin(), names.end());
	return names;
}

std::string shown(const std::string &text)
{
	std::string result;
	for (const char byte : text.substr(0, 4000)) {
		char escape[8];
		snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned char>(byte));
		result += byte >= ' ' && byte <= '~' ? std::string(1, byte) : escape;
	}
	return result;
}
