#ifndef DESK_FRAMEBUFFER_CONSOLE_H
#define DESK_FRAMEBUFFER_CONSOLE_H

#include <memory>
#include <string>

#include <sys/types.h>

namespace desk
{

/// The Linux console in graphics mode: it draws no text over the picture, and what is pressed on its
/// keyboard is not typed into a shell as well. Both end with this object, or with the program,
/// whatever ends that: a second process waits for it.
class Console
{
public:
	/// Takes the console that standard input is, or else `device`. On failure leaves one line in
	/// `error`. Null without an error: this computer has no console to take.
	static std::unique_ptr<Console> take(const std::string &device, std::string &error);
	~Console();
	Console(const Console &) = delete;
	Console &operator=(const Console &) = delete;

private:
	Console() = default;

	pid_t watcher = -1;
	int lifeline = -1; ///< the watcher reads the other end: it sees this process's end
};

} // namespace desk

#endif
