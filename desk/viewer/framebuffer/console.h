#ifndef DESK_FRAMEBUFFER_CONSOLE_H
#define DESK_FRAMEBUFFER_CONSOLE_H

#include "message.h"

#include <memory>
#include <string>

namespace desk
{

/// The Linux console in graphics mode, in which it draws no text and its keyboard does not type into a shell. The
/// destructor restores both.
class Console
{
public:
	/// Takes the console on standard input, else `device`; null if this computer has none. Throws an Error on
	/// failure.
	static std::unique_ptr<Console> take(const std::string &device);
	~Console();
	Console(const Console &) = delete;
	Console &operator=(const Console &) = delete;

	const ConsoleModes &originalModes() const { return modes; }

private:
	Console() = default;

	int file = -1;
	bool isTaken = false;
	ConsoleModes modes;
};

} // namespace desk

#endif
