#ifndef DESK_TERMINAL_TERMINAL_HOLD_H
#define DESK_TERMINAL_TERMINAL_HOLD_H

#include <string>

namespace desk
{

/// The terminal, taken over for a full screen and given back on whatever way the program ends: by
/// this object's end, by exit(), by a signal, or by a crash. In the last two the program still ends by
/// that signal. Stopping (Ctrl-Z) gives the terminal back until the program goes on.
///
/// There is one terminal, so there may be one of these at a time.
class TerminalHold
{
public:
	/// What wakes a wait.
	enum class Wake
	{
		input,     ///< something can be read
		resized,   ///< the terminal may have another size
		continued, ///< the program was stopped; what was on the screen is gone
		closed,    ///< the terminal is gone
		woken,     ///< wake() was called
	};

	/// Remembers the terminal's state and watches the signals. What `leave` holds is written when the
	/// terminal is given back, `enter` when the program goes on after a stop. Both are bounded to
	/// 1000 bytes.
	TerminalHold(const std::string &enter, const std::string &leave);
	~TerminalHold();
	TerminalHold(const TerminalHold &) = delete;
	TerminalHold &operator=(const TerminalHold &) = delete;

	/// To be called once the terminal's mode has been set: it is the mode to come back to after a stop.
	void modeIsSet();
	void setLeave(const std::string &leave);

	/// Keeps a line, without its line end, until the terminal is given back; then it goes to standard
	/// error. The last 1000 lines are kept, or as many as fit into 256 KiB, and the number of those lost.
	void keep(const std::string &line);

	/// Sleeps until standard input or a signal asks for something.
	Wake wait();

	/// Ends the wait that sleeps, or the next one. From any thread.
	void wake();

private:
	int wakeUp; ///< an eventfd
};

} // namespace desk

#endif
