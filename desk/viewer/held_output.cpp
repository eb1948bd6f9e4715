#include "held_output.h"

#include <unistd.h>

namespace desk
{

namespace
{

constexpr size_t mostLines = 1000;

void writeLine(int to, std::string text)
{
	text += '\n';
	writeAll(to, text.data(), text.size());
}

} // namespace

void writeAll(int to, const char *bytes, size_t count)
{
	for (size_t done = 0; done < count;) {
		const ssize_t n = ::write(to, bytes + done, count - done);
		if (n <= 0)
			return;
		done += static_cast<size_t>(n);
	}
}

void HeldOutput::add(const std::string &line)
{
	lines.push_back(line);
	if (lines.size() <= mostLines)
		return;
	lines.pop_front();
	++lost;
}

void HeldOutput::release(int to)
{
	if (lost > 0)
		writeLine(to, "deskhost: earlier lines left out: " + std::to_string(lost));
	for (const std::string &each : lines)
		writeLine(to, each);
	lines.clear();
	lost = 0;
}

} // namespace desk
