#ifndef DESK_INTERPOSE_COMMANDS_H
#define DESK_INTERPOSE_COMMANDS_H

#include <sys/types.h>

#include <cstdio>
#include <map>
#include <string>

namespace desk
{

/// The receiver's commands and processes, as the plugin sees them.
///
/// What a command prints and does not redirect goes to the screen's notes, line by line, when it has
/// ended; it reads nothing. A child that it leaves behind is not waited for.
class Commands
{
public:
	static Commands &get();

	/// Commands are those of the folder bin in `root`, an open folder, and none else; what kills is
	/// only reported. Where the kernel permits it, each command runs in a process namespace of its
	/// own: it can signal no process of this computer, and what it leaves behind ends with it. Its /var/tmp is that
	/// of `rootOfVarTmp`, another open folder; false: the kernel does not permit that, and it is this computer's.
	bool takeFrom(int root, int rootOfVarTmp);

	/// The commands ps, df and kill are BusyBox's, as on most receivers. Without BusyBox they stay
	/// this computer's, and a note says so.
	void takeFromBusybox();

	/// Runs a command and returns its status, as system() does.
	int run(const char *command);

	/// As popen() and pclose() do.
	FILE *open(const char *command, const char *type);
	int close(FILE *stream);

	/// As kill() does.
	int signal(pid_t process, int number) const;

private:
	struct Running
	{
		pid_t process;
		int said; ///< a file of what it prints
	};

	bool refuses(const char *command) const;
	/// `in` and `out` -1: nothing, and what it prints. On failure the process is -1.
	Running start(const char *command, int in, int out) const;
	int finish(const Running &command) const;

	bool rooted = false;
	int varTmp = -1;    ///< the folder whose /var/tmp commands have; -1: this computer's
	std::string before; ///< what the shell reads before each command
	std::map<FILE *, Running> streams;
};

} // namespace desk

#endif
