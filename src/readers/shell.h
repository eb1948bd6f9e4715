#ifndef VEXLO_SHELL_H
#define VEXLO_SHELL_H

#include <cstdlib>

/// Runs a command in the shell and waits for it. Ignores its status: only the files that it leaves count.
inline void runInShell(const char *command)
{
	const int status = system(command);
	static_cast<void>(status);
}

#endif
