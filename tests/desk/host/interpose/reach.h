#ifndef VEXLO_TESTS_DESK_INTERPOSE_REACH_H
#define VEXLO_TESTS_DESK_INTERPOSE_REACH_H

#include "support.h"

/// Runs the plugin once with REACH=`how` and ON=`on` (reaches_out.cpp).
inline support::DeskRun reach(const std::string &how, const std::string &on,
                              std::vector<std::string> options = {})
{
	options.insert(options.begin(), {"--plugin", REACHES_OUT});
	return support::runDesk("", "", options, {{"REACH", how}, {"ON", on}});
}

inline bool has(const std::string &text, const std::string &part)
{
	return text.find(part) != std::string::npos;
}

#endif
