#ifndef DESK_VIEWER_SIGNALS_H
#define DESK_VIEWER_SIGNALS_H

#include <optional>

namespace desk
{

/// The viewer's half's signals as a descriptor to poll: HUP, INT, QUIT and TERM, which ask for its end, unless
/// ignored at the start; CHLD; WINCH, CONT and TSTP for terminals. A request to end that is not taken within two
/// seconds, because a display or terminal hangs, ends the process.
class Signals
{
public:
	Signals();
	~Signals();
	Signals(const Signals &) = delete;
	Signals &operator=(const Signals &) = delete;

	int descriptor() const { return pipe[0]; }
	/// The next signal, if any.
	std::optional<int> take();

	static bool isEnd(int signal);

private:
	int pipe[2] = {-1, -1};
};

/// While it exists, signals that ask for the end act at once: a process stopped in the background waits for nothing
/// else.
class EndsAtOnce
{
public:
	EndsAtOnce();
	~EndsAtOnce();
	EndsAtOnce(const EndsAtOnce &) = delete;
	EndsAtOnce &operator=(const EndsAtOnce &) = delete;
};

/// Ends all children; their orphans become children and are ended too.
void endDescendants();

/// Ends all children, then this process with that signal.
[[noreturn]] void endBy(int signal);

} // namespace desk

#endif
