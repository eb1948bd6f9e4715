#ifndef VEXLO_TESTS_DESK_INTERPOSE_REACH_H
#define VEXLO_TESTS_DESK_INTERPOSE_REACH_H

#include "support.h"

/// One run of the plugin that does `how` to `on` (see reaches_out.cpp).
inline support::DeskRun reach(const std::string &how, const std::string &on,
                              std::vector<std::string> options = {})
{
	options.insert(options.begin(), {"--plugin", REACHES_OUT});
	return support::runDesk("", "", options, {{"REACH", how}, {"ON", on}});
}

#endif
