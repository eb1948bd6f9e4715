#include "note_log.h"

#include "desk_error.h"
#include "visible_text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace desk
{

NoteLog &NoteLog::get()
{
	static NoteLog log;
	return log;
}

void NoteLog::open(const std::string &path)
{
	file = std::fopen(path.c_str(), "we");
	if (!file)
		throw Error("cannot write debug lines to '" + path + "': " + std::strerror(errno) +
		            "; name a file that can be written");
	std::setvbuf(file, nullptr, _IOLBF, BUFSIZ); // for a person who watches the file
	whole = true;
	for (const std::string &line : lines)
		std::fputs((line + '\n').c_str(), file);
}

bool NoteLog::close()
{
	lines.clear();
	if (!file)
		return true;
	whole = !std::ferror(file) && whole;
	whole = std::fclose(file) == 0 && whole;
	file = nullptr;
	return whole;
}

void NoteLog::addToFile(const std::string &line)
{
	if (file)
		std::fputs((localText(line) + '\n').c_str(), file);
}

void NoteLog::add(const std::string &bytes)
{
	// One write for each line, so that other processes' output does not split it.
	if (!holding)
		std::fputs((localText(bytes) + '\n').c_str(), stderr);
	addQuietly(bytes);
	if (!holding)
		return;
	held.push_back(lines.back().size() < localText(bytes).size() ? lines.back() + " ..." : lines.back());
	if (held.size() > mostLines) {
		held.pop_front();
		++lost;
	}
}

void NoteLog::release()
{
	holding = false;
	if (lost > 0)
		std::fputs(("deskhost: earlier lines left out: " + std::to_string(lost) + '\n').c_str(), stderr);
	for (const std::string &line : held)
		std::fputs((line + '\n').c_str(), stderr);
	held.clear();
	lost = 0;
}

void NoteLog::addQuietly(const std::string &bytes)
{
	addToFile(bytes);
	const std::string line = localText(bytes);
	size_t length = std::min(line.size(), mostBytes);
	while (length < line.size() && length > 0 && (static_cast<unsigned char>(line[length]) & 0xC0) == 0x80)
		--length; // not within a UTF-8 character
	lines.push_back(line.substr(0, length));
	if (lines.size() > mostLines)
		lines.pop_front();
}

void NoteLog::add(const char *bytes, size_t count)
{
	for (const char *at = bytes; at != bytes + count; ++at) {
		if (*at == '\n') {
			add(begun + (cut ? " ..." : ""));
			begun.clear();
			cut = false;
		} else if (begun.size() < mostBytes)
			begun += *at;
		else
			cut = true;
	}
}

void NoteLog::endLine()
{
	if (!begun.empty())
		add("\n", 1);
}

std::vector<std::string> NoteLog::last(size_t most) const
{
	return {lines.end() - static_cast<std::ptrdiff_t>(std::min(most, lines.size())), lines.end()};
}

std::vector<std::string> NoteLog::lastRows(size_t most, int columns) const
{
	std::vector<std::string> rows;
	for (const std::string &line : last(most))
		for (std::string &row : textRows(line, columns))
			rows.push_back(std::move(row));
	if (rows.size() > most)
		rows.erase(rows.begin(), rows.end() - static_cast<std::ptrdiff_t>(most));
	return rows;
}

} // namespace desk
