#ifndef DESK_VIEWER_HELD_OUTPUT_H
#define DESK_VIEWER_HELD_OUTPUT_H

#include <cstddef>
#include <deque>
#include <string>

namespace desk
{

/// Writes to a descriptor; what it does not take is lost.
void writeAll(int to, const char *bytes, size_t count);

/// What is not to be seen while the screen is a terminal: the last lines of it.
class HeldOutput
{
public:
	void add(const std::string &line);

	/// Writes all to a descriptor, and forgets it.
	void release(int to);

private:
	std::deque<std::string> lines;
	size_t lost = 0;
};

} // namespace desk

#endif
