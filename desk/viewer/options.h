#ifndef DESK_VIEWER_OPTIONS_H
#define DESK_VIEWER_OPTIONS_H

#include "framebuffer_screen.h"
#include "key.h"

#include <optional>
#include <string>
#include <vector>

namespace desk
{

/// What the command line asks for.
struct Options
{
	std::string plugin;
	std::string screen; ///< empty: what is likely
	FramebufferDevices devices;
	std::vector<Key> keys;
	std::string pictures, dump, trace, debug;
	std::string root;
	std::vector<std::string> served;
	bool asIs = false;
	std::string skin;
	std::string lang, catalogue;
	std::string through;
	bool watch = false;
	bool strict = false;
	int plays = 1;
};

/// Reads the command line. Nothing: it asked for help or the version, which has been printed. Throws an Error when it
/// cannot be understood.
std::optional<Options> readArguments(int argc, char **argv);

/// The first of these places, relative to the program, that exists; the first one when none does.
std::string besideProgram(std::initializer_list<const char *> places);

} // namespace desk

#endif
