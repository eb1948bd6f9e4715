#ifndef DESK_VIEWER_CRASH_REPORT_H
#define DESK_VIEWER_CRASH_REPORT_H

#include "message.h"

#include <optional>
#include <string>
#include <vector>

namespace desk
{

/// Why the plugin's half ended during a run.
struct CrashReport
{
	std::vector<std::string> lines;
	std::vector<std::string> stack; ///< innermost call first
};

/// `crash`: the half's Crash message, if any; `status`: from waitpid(); `plugin`: its path, for debug information.
CrashReport reportOf(const std::optional<Crash> &crash, int status, const std::string &plugin);

} // namespace desk

#endif
