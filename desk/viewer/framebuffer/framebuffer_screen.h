#ifndef DESK_FRAMEBUFFER_FRAMEBUFFER_SCREEN_H
#define DESK_FRAMEBUFFER_FRAMEBUFFER_SCREEN_H

#include "screen.h"

namespace desk
{

/// Devices of the framebuffer screen. For empty names it searches /dev and /dev/input.
struct FramebufferDevices
{
	std::string framebuffer;           ///< such as /dev/fb0
	std::string remote;                ///< such as /dev/input/event0
	std::string console = "/dev/tty0"; ///< the active one, unless standard input is a console
};

/// The screen of a Linux console or a receiver, without a window system. Throws an Error when a device is missing.
std::unique_ptr<Screen> makeFramebufferScreen(const FramebufferDevices &devices);

} // namespace desk

#endif
