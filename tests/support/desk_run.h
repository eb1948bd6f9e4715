#ifndef VEXLO_TESTS_DESK_RUN_H
#define VEXLO_TESTS_DESK_RUN_H

#include "process.h"
#include "temp_folder.h"

#include <nlohmann/json.hpp>

namespace support
{

using Json = nlohmann::ordered_json;

std::string deskhostPath();
/// It, and through what it runs the plugin here.
Command deskhost();
std::string pluginHalfPath(); ///< the half of it that runs the plugin
std::string pluginPath();
std::string testPlugin(const std::string &name);   ///< one of tests/desk/plugins, as "result.so.0"
std::string sourcePath(const std::string &inTree); ///< a file of the source tree
std::string buildPath(const std::string &inTree);  ///< a file of the build tree

/// The default skin with another "fontsize", written into `folder`; 0: without one. Returns its path.
std::string skinWithFontSize(const TempFolder &folder, int fontSize);

/// One run of the plugin in the desk host, with no screen but everything recorded.
///
/// A test that asks for what is not on the screen ends there, with a failure that names it.
struct DeskRun
{
	Outcome outcome;
	Lines trace;            ///< its lines
	std::vector<Json> dump; ///< the dump's lines

	/// The topmost window after the key number `index` (0: the start).
	const Json &window(size_t index) const;
	/// The first widget of that class in that window.
	const Json &widget(size_t index, const std::string &type, size_t nth = 0) const;
	/// The trace's lines from the first one that is `from` up to the first one after it that is `to`.
	Lines traceBetween(const std::string &from, const std::string &to) const;
};

/// `root` empty: this computer. Further options as on the command line.
DeskRun runDesk(const std::string &root, const std::string &keys, const Lines &options = {},
                const Environment &environment = {});

} // namespace support

#endif
