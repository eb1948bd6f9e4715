#ifndef VEXLO_SHELL_H
#define VEXLO_SHELL_H

#include <cstdlib>

/// Runs a command in the shell and waits for it. How it ended is not looked at: what counts is what
/// it has left behind.
inline void runInShell(const char *command)
{
	const int status = system(command);
	static_cast<void>(status);
}

#endif
