#ifndef DESK_VIEWER_OPTIONS_H
#define DESK_VIEWER_OPTIONS_H

#include "framebuffer_screen.h"
#include "key.h"

#include <optional>
#include <string>
#include <vector>

namespace desk
{

/// The parsed command line.
struct Options
{
	std::string plugin;
	std::string screen; ///< empty: choose one
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

/// Reads the command line. nullopt: it printed help or the version. Throws an Error for wrong arguments.
std::optional<Options> readArguments(int argc, char **argv);

/// The first of these paths, relative to the program, that exists; else the first.
std::string besideProgram(std::initializer_list<const char *> places);

} // namespace desk

#endif
