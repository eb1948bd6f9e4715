#ifndef VEXLO_TESTS_DESK_RUN_H
#define VEXLO_TESTS_DESK_RUN_H

#include "process.h"
#include "temp_folder.h"

#include <nlohmann/json.hpp>

namespace support
{

using Json = nlohmann::ordered_json;

std::string deskhostPath();
/// The desk host's command, with --through in an emulator.
Command deskhost();
std::string pluginHalfPath(); ///< deskhost-plugin
std::string pluginPath();
std::string testPlugin(const std::string &name);   ///< a plugin of tests/desk/plugins, such as "result.so.0"
std::string sourcePath(const std::string &inTree); ///< a file of the source tree
std::string buildPath(const std::string &inTree);  ///< a file of the build tree

/// The records of a dump so far, without one that is still being written.
std::vector<Json> dumpSoFar(const std::string &path);

/// One run of the plugin in the desk host without a screen, fully recorded.
///
/// A test that asks for a missing window or widget fails and ends.
struct DeskRun
{
	Outcome outcome;
	Lines trace;
	std::vector<Json> dump;

	/// The topmost window after key `index` (0: the start).
	const Json &window(size_t index) const;
	/// The `nth` widget of class `type` in that window.
	const Json &widget(size_t index, const std::string &type, size_t nth = 0) const;
	/// The trace from the first line `from` up to the next line `to`.
	Lines traceBetween(const std::string &from, const std::string &to) const;
};

/// An empty `root` means this computer. `options` as on the command line.
DeskRun runDesk(const std::string &root, const std::string &keys, const Lines &options = {},
                const Environment &environment = {});

} // namespace support

#endif
