#ifndef DESK_FRAMEBUFFER_DEVICE_FOLDER_H
#define DESK_FRAMEBUFFER_DEVICE_FOLDER_H

#include <string>
#include <vector>

namespace desk
{

/// The paths of entries in `folder` that are `name` plus a number, in numerical order.
std::vector<std::string> numberedDevices(const std::string &folder, const std::string &name);

} // namespace desk

#endif
