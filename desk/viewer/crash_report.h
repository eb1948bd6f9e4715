#ifndef DESK_VIEWER_CRASH_REPORT_H
#define DESK_VIEWER_CRASH_REPORT_H

#include "message.h"

#include <optional>
#include <string>
#include <vector>

namespace desk
{

/// What there is to say about the end of the plugin's half in the middle.
struct CrashReport
{
	std::vector<std::string> lines; ///< for a person
	std::vector<std::string> stack; ///< where it was and who had called, the innermost first
};

/// `crash`: its last words, if it had any; `status`: as waitpid() gives it; `plugin`: the plugin's path, whose debug
/// information is looked into.
CrashReport reportOf(const std::optional<Crash> &crash, int status, const std::string &plugin);

} // namespace desk

#endif
