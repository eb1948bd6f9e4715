#ifndef DESK_HOST_HALF_H
#define DESK_HOST_HALF_H

#include "peer.h"

namespace desk
{

/// The plugin's half: loads and runs the plugin as the viewer's half asks, until the connection ends. Returns the
/// exit status.
int runHalf(Peer &viewer);

} // namespace desk

#endif
