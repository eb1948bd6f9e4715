#ifndef DESK_VIEWER_SIGNALS_H
#define DESK_VIEWER_SIGNALS_H

#include <optional>

namespace desk
{

/// The signals that concern the viewer's half, as something to wait for: HUP, INT, QUIT and TERM, which ask for its end,
/// unless it was started without them; CHLD; and what concerns a terminal: WINCH, CONT and TSTP. One that asks for the
/// end and is not taken within two seconds, because a display or a terminal does not answer, ends the process.
class Signals
{
public:
	Signals();
	~Signals();
	Signals(const Signals &) = delete;
	Signals &operator=(const Signals &) = delete;

	int descriptor() const { return pipe[0]; }
	/// The next one that has come.
	std::optional<int> take();

	static bool isEnd(int signal);

private:
	int pipe[2] = {-1, -1};
};

/// While it exists, a signal that asks for the process's end ends it at once: who is stopped because the terminal is
/// not his waits for nothing else.
class EndsAtOnce
{
public:
	EndsAtOnce();
	~EndsAtOnce();
	EndsAtOnce(const EndsAtOnce &) = delete;
	EndsAtOnce &operator=(const EndsAtOnce &) = delete;
};

/// Ends the children of this process, and with them what their children leave: orphans become children of it.
void endDescendants();

/// The same, and ends this process by that signal.
[[noreturn]] void endBy(int signal);

} // namespace desk

#endif
