#include "held_output.h"

#include "visible_text.h"

#include <unistd.h>

namespace desk
{

namespace
{

constexpr size_t mostLines = 1000;
constexpr size_t mostLineBytes = 4096;

void write(int to, std::string text)
{
	text += '\n';
	for (size_t done = 0; done < text.size();) {
		const ssize_t n = ::write(to, text.data() + done, text.size() - done);
		if (n <= 0)
			return;
		done += static_cast<size_t>(n);
	}
}

} // namespace

void HeldOutput::add(const char *bytes, size_t count)
{
	for (const char *at = bytes; at != bytes + count; ++at) {
		if (*at == '\n')
			endLine();
		else if (line.size() < mostLineBytes)
			line += *at;
		else
			cut = true;
	}
}

void HeldOutput::addLine(const std::string &whole)
{
	if (!line.empty())
		endLine();
	add(whole.data(), whole.size());
	endLine();
}

void HeldOutput::endLine()
{
	lines.push_back(line + (cut ? " ..." : ""));
	line.clear();
	cut = false;
	if (lines.size() <= mostLines)
		return;
	lines.pop_front();
	++lost;
}

void HeldOutput::release(int to)
{
	if (!line.empty())
		endLine();
	if (lost > 0)
		write(to, "deskhost: earlier lines left out: " + std::to_string(lost));
	for (const std::string &each : lines)
		write(to, localText(each));
	lines.clear();
	lost = 0;
}

} // namespace desk
