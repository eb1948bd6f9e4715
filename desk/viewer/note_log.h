#ifndef DESK_VIEWER_NOTE_LOG_H
#define DESK_VIEWER_NOTE_LOG_H

#include <cstdio>
#include <deque>
#include <string>
#include <vector>

namespace desk
{

/// Debug lines and other notes for the person at the desk. They go to standard error, immediately or when a terminal
/// is restored. The last ones are kept for display, and a file can record them all.
class NoteLog
{
public:
	static constexpr size_t mostLines = 1000;
	static constexpr size_t mostBytes = 4096; ///< of a line in memory; the file gets whole lines

	static NoteLog &get();

	/// Also writes the lines to `path`: those so far, and each new one immediately. Throws an Error when it cannot.
	void open(const std::string &path);

	/// Closes the file and forgets the lines. Returns false when a write failed.
	bool close();

	/// Adds a line of any bytes.
	void add(const std::string &line);
	/// Adds output in pieces of any size. A line is added at its line end, cut to mostBytes; endLine() adds one
	/// without line end.
	void add(const char *bytes, size_t count);
	void endLine();
	/// Adds a line, but not to standard error.
	void addQuietly(const std::string &line);
	/// Adds a line to the file only.
	void addToFile(const std::string &line);

	/// Keeps the last lines for standard error until release(), while the screen is a terminal.
	void holdBack() { holding = true; }
	void release();

	/// The last lines, at most `most`, the newest at the end.
	std::vector<std::string> last(size_t most = mostLines) const;

	/// The last lines broken into rows of `columns` columns of a terminal.
	std::vector<std::string> lastRows(size_t most, int columns) const;

private:
	std::deque<std::string> lines;
	std::string begun; ///< the line so far
	bool cut = false;  ///< it was longer
	bool holding = false;
	std::deque<std::string> held; ///< for standard error
	size_t lost = 0;              ///< of these
	FILE *file = nullptr;
	bool whole = true;
};

} // namespace desk

#endif
