#ifndef VEXLO_TESTS_DESK_TERMINAL_TMUX_H
#define VEXLO_TESTS_DESK_TERMINAL_TMUX_H

#include "temp_folder.h"

#include <map>
#include <string>
#include <vector>

/// A shell in a terminal: a tmux server of its own, without the user's settings.
class Tmux
{
public:
	/// `terminal` is the value of TERM. Empty variables are not set.
	Tmux(int columns, int rows, const std::string &terminal = "tmux-256color",
	     const std::map<std::string, std::string> &environment = {});
	~Tmux();
	Tmux(const Tmux &) = delete;
	Tmux &operator=(const Tmux &) = delete;

	void type(const std::string &text) const;  ///< without Enter
	void enter(const std::string &line) const; ///< followed by Enter
	void press(const std::string &key) const;  ///< by tmux's name, such as "PageUp"
	void send(const std::vector<unsigned char> &bytes) const;
	void resize(int columns, int rows) const;
	void scribble(const std::string &text) const; ///< writes on the screen without the program's knowledge

	std::string screen() const;
	std::string colouredScreen() const; ///< with escape sequences
	std::string state() const; ///< "alternate screen, cursor shown, keypad in application mode", each 0 or 1

	/// The terminal's modes, as stty prints them. The shell must be waiting for a command.
	std::string modes() const;

	/// Waits until the screen shows `text`, or no longer shows it; false after a minute.
	bool shows(const std::string &text) const;
	bool losesSight(const std::string &text) const;

	/// Starts a command in the shell on a clear screen, and returns its process id. After its end the prompt shows
	/// "status=N".
	int start(const std::string &command) const;

	const std::string &folder() const { return directory.path(); } ///< deleted with this object

private:
	std::string tmux(const std::vector<std::string> &arguments) const;
	bool until(const std::string &text, bool there) const;

	support::TempFolder directory;
};

#endif
