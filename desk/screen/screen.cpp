#include "screen.h"

#include "note_log.h"
#include "visible_text.h"

#include <cstdio>

namespace desk
{

void Screen::note(const std::string &line)
{
	const std::string shown = localText(line);
	NoteLog::get().add(shown);
	// One write a line: what commands print beside it then falls between lines, not into them.
	fputs((shown + "\n").c_str(), stderr);
}

void Screen::notify(const std::string &line)
{
	if (!line.empty())
		note(line);
}

} // namespace desk
