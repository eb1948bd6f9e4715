#include "inside.h"

#include "desk.h"
#include "desk_run.h"
#include "plugin.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace support
{

int runInside(const std::string &keys)
{
	std::string error;
	const auto script = desk::parseKeyScript(keys, error);
	const auto plugin = desk::Plugin::load(pluginPath(), error);
	if (!script || !plugin)
		throw std::runtime_error(error);
	desk::Desk &desk = desk::Desk::get();
	desk.press(*script);
	desk.beginRun();
	const int result = plugin->exec();
	desk.endRun();
	return result;
}

} // namespace support
