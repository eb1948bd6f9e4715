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
	/// Adds any bytes; a line may come in pieces.
	void add(const char *bytes, size_t count);
	void addLine(const std::string &line);

	/// Writes all to a descriptor, made visible, and forgets it.
	void release(int to);

private:
	void endLine();

	std::deque<std::string> lines;
	std::string line;
	bool cut = false;
	size_t lost = 0;
};

} // namespace desk

#endif
