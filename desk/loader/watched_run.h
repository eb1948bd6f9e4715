#ifndef DESK_LOADER_WATCHED_RUN_H
#define DESK_LOADER_WATCHED_RUN_H

#include "key.h"

#include <string>
#include <vector>

namespace desk
{

/// Runs the plugin at `path`, with these keys first, until the viewer leaves it. Whenever its file
/// changes, the run ends, and the new plugin gets the keys again that were pressed so far, up to the
/// first one that killed or deleted something. A new plugin that cannot be loaded is reported; the old
/// picture stays, and the next one is waited for.
///
/// Returns false, with one line in `error`, when the first plugin cannot be loaded or not be watched;
/// else what plugin_exec returned last is in `result`.
bool runWatched(const std::string &path, const std::vector<Key> &keys, int &result, std::string &error);

} // namespace desk

#endif
