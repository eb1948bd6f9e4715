#ifndef DESK_INTERPOSE_CALLER_H
#define DESK_INTERPOSE_CALLER_H

#include "trace.h"

namespace desk
{

/// Exists while the plugin runs on this thread. Calls of the program's functions then count as the plugin's, unless
/// the trace is quiet because the host works for itself.
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

/// Whether the plugin makes the current call of a program's function.
inline bool byPlugin()
{
	return PluginRuns::here() && !Trace::get().isQuiet();
}

} // namespace desk

#endif
