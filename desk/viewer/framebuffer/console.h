#ifndef DESK_FRAMEBUFFER_CONSOLE_H
#define DESK_FRAMEBUFFER_CONSOLE_H

#include "message.h"

#include <memory>
#include <string>

namespace desk
{

/// The Linux console in graphics mode: it draws no text over the picture, and what is pressed on its
/// keyboard is not typed into a shell as well. Both end with this object.
class Console
{
public:
	/// Takes the console that standard input is, or else `device`; throws an Error when it cannot. Null: this
	/// computer has no console to take.
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
