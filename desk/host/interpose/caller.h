#ifndef DESK_INTERPOSE_CALLER_H
#define DESK_INTERPOSE_CALLER_H

#include "trace.h"

namespace desk
{

/// Exists while the plugin runs on this thread. What it calls of the program's functions is then the
/// plugin's call, unless the trace is quiet: the host at work for itself.
class PluginRuns
{
public:
	PluginRuns() { count() += 1; }
	~PluginRuns() { count() -= 1; }
	PluginRuns(const PluginRuns &) = delete;
	PluginRuns &operator=(const PluginRuns &) = delete;

	static bool here() { return count() > 0; }

private:
	static int &count()
	{
		thread_local int runs = 0;
		return runs;
	}
};

/// Whether a call of the program's functions is the plugin's.
inline bool byPlugin()
{
	return PluginRuns::here() && !Trace::get().isQuiet();
}

} // namespace desk

#endif
