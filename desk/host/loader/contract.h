#ifndef DESK_LOADER_CONTRACT_H
#define DESK_LOADER_CONTRACT_H

#include <string>

namespace desk
{

/// How the contract of the plugin in `file` differs from this host's, as words to follow a colon. Empty when nothing
/// differs, when the file has no contract, and when it is no plugin.
std::string differenceOfContract(const std::string &file);

/// Whether the file is shorter than its own tables say; using a missing part would crash. False for a file that is no
/// plugin for this computer: the loader reports that.
bool isCutOff(const std::string &file);

} // namespace desk

#endif
