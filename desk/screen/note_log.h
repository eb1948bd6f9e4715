#ifndef DESK_SCREEN_NOTE_LOG_H
#define DESK_SCREEN_NOTE_LOG_H

#include <cstdio>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace desk
{

/// What Screen::note() was given, to look back at: the window and the terminal show the last lines on F9, and
/// a file can take them all. Any thread may look.
class NoteLog
{
public:
	static constexpr size_t mostLines = 1000;
	static constexpr size_t mostBytes = 4096; ///< of a line that is kept; the file has it whole

	static NoteLog &get();

	/// Writes the lines to `path` as well: those so far, and from now on each at once. On failure returns false and leaves one
	/// line in `error`.
	bool open(const std::string &path, std::string &error);

	/// Ends it, and forgets the lines. False when not everything could be written.
	bool close();

	/// `line` is what visibleText() gives, without a line end.
	void add(const std::string &line);

	/// The last lines, as many as `most`, the newest at the end.
	std::vector<std::string> last(size_t most = mostLines) const;

	/// The same in rows of so many columns of a terminal: a longer line goes on in the next row.
	std::vector<std::string> lastRows(size_t most, int columns) const;

private:
	mutable std::mutex mutex; ///< of `lines`
	std::deque<std::string> lines;
	FILE *file = nullptr;
	bool whole = true;
};

} // namespace desk

#endif
