#ifndef DESK_TEXT_DESK_ERROR_H
#define DESK_TEXT_DESK_ERROR_H

#include <exception>
#include <string>
#include <utility>

namespace desk
{

constexpr int statusNotToItsEnd = 1;
constexpr int statusBadArguments = 2; ///< or output that cannot be written

/// The reason why a program fails. main() catches it, or a caller that can do without the failed part. It must not
/// cross functions called from C or from a plugin.
struct Error : std::exception
{
	explicit Error(std::string text, int exitStatus = statusBadArguments)
		: line(std::move(text)), status(exitStatus)
	{}

	const char *what() const noexcept override { return line.c_str(); }

	std::string line; ///< for the user, any bytes; empty: nothing to print
	int status;       ///< the program's exit status
};

} // namespace desk

#endif
