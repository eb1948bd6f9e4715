#include "inside.h"

#include "desk.h"
#include "plugin.h"

#include <gtest/gtest.h>

namespace support
{

Viewer::Viewer(const std::string &keys)
{
	const std::vector<desk::Key> parsed = desk::parseKeyScript(keys);
	script.assign(parsed.begin(), parsed.end());
}

void Viewer::send(const desk::ToViewer &message)
{
	if (const desk::Frame *frame = std::get_if<desk::Frame>(&message); frame && frame->waits)
		onFrame(*frame);
}

std::optional<desk::ToHost> Viewer::receive()
{
	desk::Press press;
	if (!script.empty()) {
		press.key = script.front();
		script.pop_front();
	} else
		press.key = next().value_or(desk::Key::exit);
	return press;
}

int runInside(Viewer &viewer, const std::string &path, bool draws)
{
	const auto plugin = desk::Plugin::load(path);
	desk::Desk &desk = desk::Desk::get();
	desk.setViewer(&viewer, draws);
	desk.beginRun();
	const int result = plugin->exec();
	desk.endRun();
	desk.setViewer(nullptr);
	return result;
}

} // namespace support
