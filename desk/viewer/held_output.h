#ifndef DESK_VIEWER_HELD_OUTPUT_H
#define DESK_VIEWER_HELD_OUTPUT_H

#include <cstddef>
#include <deque>
#include <string>

namespace desk
{

/// Writes to a descriptor; drops what it does not accept.
void writeAll(int to, const char *bytes, size_t count);

/// Keeps the last lines of output while the screen is a terminal.
class HeldOutput
{
public:
	void add(const std::string &line);

	/// Writes all lines to a descriptor, and forgets them.
	void release(int to);

private:
	std::deque<std::string> lines;
	size_t lost = 0;
};

} // namespace desk

#endif
