#ifndef DESK_APP_H
#define DESK_APP_H

namespace desk
{

/// The whole of deskhost: reads the arguments, loads and runs the plugin, and returns the exit status:
/// 0 the plugin ran to its end, 1 it cannot be loaded, 2 bad arguments.
int runApp(int argc, char **argv);

} // namespace desk

#endif
