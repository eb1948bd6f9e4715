#include "screen.h"

#include "visible_text.h"

#include <cstdio>

namespace desk
{

void Screen::note(const std::string &line)
{
	// One write a line: what commands print beside it then falls between lines, not into them.
	fputs((visibleText(line) + "\n").c_str(), stderr);
}

} // namespace desk
