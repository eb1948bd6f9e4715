#ifndef DESK_FRAMEBUFFER_DEVICE_FOLDER_H
#define DESK_FRAMEBUFFER_DEVICE_FOLDER_H

#include <string>
#include <vector>

namespace desk
{

/// The paths of `folder`'s entries that are `name` and a number, in the order of their numbers.
std::vector<std::string> numberedDevices(const std::string &folder, const std::string &name);

} // namespace desk

#endif
