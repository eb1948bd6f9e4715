#ifndef DESK_VIEWER_NOTE_LOG_H
#define DESK_VIEWER_NOTE_LOG_H

#include <cstdio>
#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace desk
{

/// Debug lines and other notes for the person at the desk. They go to standard error, at once or when a terminal is
/// given back; the last ones are kept to look back at, and a file can take them all.
class NoteLog
{
public:
	static constexpr size_t mostLines = 1000;
	static constexpr size_t mostBytes = 4096; ///< of a line that is kept; the file has it whole

	static NoteLog &get();

	/// Writes the lines to `path` as well: those so far, and from now on each at once. Throws an Error when it cannot
	/// be written.
	void open(const std::string &path);

	/// Ends it, and forgets the lines. False when not everything could be written.
	bool close();

	/// Takes any bytes: they are made visible.
	void add(const std::string &line);
	/// The same of what comes in pieces of any size: a line is taken when it has its end, and is cut where it is longer
	/// than the last lines are kept. endLine() takes one that has no end.
	void add(const char *bytes, size_t count);
	void endLine();
	/// The same, but not to standard error.
	void addQuietly(const std::string &line);
	/// Into the file only.
	void addToFile(const std::string &line);

	/// While the screen is a terminal, standard error waits: what belongs there is given to `held`, each line as it is kept. Null: no more.
	void holdBack(std::function<void(const std::string &line)> held) { holding = std::move(held); }

	/// The last lines, as many as `most`, the newest at the end.
	std::vector<std::string> last(size_t most = mostLines) const;

	/// The same in rows of so many columns of a terminal: a longer line goes on in the next row.
	std::vector<std::string> lastRows(size_t most, int columns) const;

private:
	std::deque<std::string> lines;
	std::string begun; ///< a line without its end
	bool cut = false;  ///< it has more
	std::function<void(const std::string &line)> holding;
	FILE *file = nullptr;
	bool whole = true;
};

} // namespace desk

#endif
