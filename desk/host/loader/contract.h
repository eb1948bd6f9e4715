#ifndef DESK_LOADER_CONTRACT_H
#define DESK_LOADER_CONTRACT_H

#include <string>

namespace desk
{

/// What the contract that the plugin in `file` was built against has other than this host's, in words that
/// follow a colon. Empty when nothing differs, and when the file has no contract or is no plugin at all.
std::string differenceOfContract(const std::string &file);

/// Whether the plugin in `file` has less than its own tables tell of: to use what is missing would be the end. False
/// for what is no plugin for this computer: the loader says so.
bool isCutOff(const std::string &file);

} // namespace desk

#endif
