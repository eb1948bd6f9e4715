#ifndef DESK_TEXT_DESK_ERROR_H
#define DESK_TEXT_DESK_ERROR_H

#include <exception>
#include <string>
#include <utility>

namespace desk
{

constexpr int statusNotToItsEnd = 1;
constexpr int statusBadArguments = 2; ///< or something cannot be written

/// Why a program ends before it has done its work. Each program catches it in one place, unless somebody on the way
/// can go on without what has failed. None crosses functions that are called from C or by a plugin.
struct Error : std::exception
{
	explicit Error(std::string text, int exitStatus = statusBadArguments)
		: line(std::move(text)), status(exitStatus)
	{}

	const char *what() const noexcept override { return line.c_str(); }

	std::string line; ///< for the user, in any bytes; empty: there is no more to say
	int status;       ///< the program's
};

} // namespace desk

#endif
