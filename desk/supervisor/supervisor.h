#ifndef DESK_SUPERVISOR_SUPERVISOR_H
#define DESK_SUPERVISOR_SUPERVISOR_H

#include <functional>
#include <string>

namespace desk
{

/// Runs `work` in a child process and watches over it. Returns what is to be this process's exit status, or
/// ends it by the signal that the child ended by.
///
/// In the child process this returns what `work` returns, and the caller is to return from main() with it in both.
///
/// - SIGINT, SIGTERM, SIGHUP and SIGQUIT end both, whatever the child is busy with: after a second it is killed.
///   What it has left running is ended as well, and this process ends by that signal.
/// - Other signals that somebody sends to this process go to the child. It is stopped and goes on with the child.
/// - When the child has taken the terminal, it gets its modes back in whatever way the child ends.
///
/// Under a debugger `work` runs in this process, without all that.
int supervise(const std::function<int()> &work);

/// The file descriptors of the terminal, for the process that has taken it.
struct TakenTerminal
{
	int input, output;
};

/// For `work`: takes the terminal on standard input and output over. What is written to standard output and error
/// from now on, by anyone, is kept where these are terminals. When the child has ended, the last 1000 lines
/// of it are shown, made visible. Standard input has nothing more.
TakenTerminal takeTerminal();

/// For `work`: what to write to the terminal, at most 500 bytes, when the child has ended.
void leaveTerminalBy(const std::string &bytes);

} // namespace desk

#endif
