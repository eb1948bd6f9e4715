#ifndef DESK_VIEWER_SIGNALS_H
#define DESK_VIEWER_SIGNALS_H

#include <optional>

namespace desk
{

/// The signals that concern the viewer's half, as something to wait for: HUP, INT, QUIT and TERM, which ask for its end,
/// unless it was started without them; CHLD; and what concerns a terminal: WINCH, CONT and TSTP.
class Signals
{
public:
	Signals();
	~Signals();
	Signals(const Signals &) = delete;
	Signals &operator=(const Signals &) = delete;

	int descriptor() const { return file; }
	/// The next one that has come.
	std::optional<int> take();

	static bool isEnd(int signal);

private:
	int file;
};

/// Ends what this process has left running, and this process by that signal.
[[noreturn]] void endBy(int signal);

} // namespace desk

#endif
