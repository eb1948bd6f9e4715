#include "desk_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace support
{

std::string deskhostPath()
{
	return TEST_DESKHOST;
}

Command deskhost()
{
#ifdef TEST_THROUGH // in an emulator, the computer itself starts other programs
	return {deskhostPath(), "--through", TEST_THROUGH};
#else
	return {deskhostPath()};
#endif
}

std::string pluginHalfPath()
{
	return TEST_PLUGIN_HALF;
}

std::string pluginPath()
{
	return TEST_PLUGIN;
}

std::string testPlugin(const std::string &name)
{
	return buildPath("tests/desk/plugins/" + name);
}

std::string sourcePath(const std::string &inTree)
{
	return TEST_SOURCE_DIR "/" + inTree;
}

std::string buildPath(const std::string &inTree)
{
	return TEST_BINARY_DIR "/" + inTree;
}

std::vector<Json> dumpSoFar(const std::string &path)
{
	const std::string text = readFile(path);
	std::vector<Json> records;
	for (const std::string &line : lines(text.substr(0, text.rfind('\n') + 1)))
		records.push_back(Json::parse(line));
	return records;
}

const Json &DeskRun::window(size_t index) const
{
	const std::string when = "after key number " + std::to_string(index);
	if (index >= dump.size())
		throw std::out_of_range("nothing was recorded " + when + ", but " + std::to_string(dump.size()) +
		                        " screens\n" + outcome.err);
	const Json &windows = dump[index].at("windows");
	if (windows.empty())
		throw std::out_of_range("no window is open " + when);
	return windows.back();
}

const Json &DeskRun::widget(size_t index, const std::string &type, size_t nth) const
{
	const Json &top = window(index);
	size_t left = nth;
	for (const Json &widget : top.at("widgets"))
		if (widget.at("class") == type && left-- == 0)
			return widget;
	throw std::out_of_range("no " + type + " number " + std::to_string(nth) + " after key number " +
	                        std::to_string(index) + " in " + top.dump());
}

Lines DeskRun::traceBetween(const std::string &from, const std::string &to) const
{
	const auto first = std::find(trace.begin(), trace.end(), from);
	if (first == trace.end()) {
		ADD_FAILURE() << "the trace has no line " << from << "\n" << ::testing::PrintToString(trace);
		return {};
	}
	const auto last = std::find(first + 1, trace.end(), to);
	if (last == trace.end()) {
		ADD_FAILURE() << "the trace has no line " << to << "\n" << ::testing::PrintToString(trace);
		return {};
	}
	return Lines(first, last + 1);
}

DeskRun runDesk(const std::string &root, const std::string &keys, const Lines &options,
                const Environment &environment)
{
	TempFolder folder;
	Command command = deskhost();
	command.insert(command.end(), {"--screen", "none", "--keys", keys, "--dump", folder / "dump", "--trace",
	                               folder / "trace"});
	if (!root.empty())
		command.insert(command.end(), {"--root", root});
	command.insert(command.end(), options.begin(), options.end());

	DeskRun result;
	result.outcome = run(command, environment);
#ifdef TEST_THROUGH // the first line says that --root is no sandbox
	if (!root.empty())
		result.outcome.err.erase(0, result.outcome.err.find('\n') + 1);
#endif
	result.trace = lines(readFile(folder / "trace"));
	for (const std::string &line : lines(readFile(folder / "dump")))
		result.dump.push_back(Json::parse(line));
	return result;
}

} // namespace support
