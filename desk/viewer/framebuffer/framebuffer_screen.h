#ifndef DESK_FRAMEBUFFER_FRAMEBUFFER_SCREEN_H
#define DESK_FRAMEBUFFER_FRAMEBUFFER_SCREEN_H

#include "screen.h"

namespace desk
{

/// What the framebuffer screen is made of. Empty names are looked for in /dev and /dev/input.
struct FramebufferDevices
{
	std::string framebuffer;           ///< such as /dev/fb0
	std::string remote;                ///< such as /dev/input/event0
	std::string console = "/dev/tty0"; ///< the one in front, if standard input is none
};

/// The screen of a Linux console or a receiver, without any window system. Throws an Error when
/// something of it is missing.
std::unique_ptr<Screen> makeFramebufferScreen(const FramebufferDevices &devices);

} // namespace desk

#endif
