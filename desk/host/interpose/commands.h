#ifndef DESK_INTERPOSE_COMMANDS_H
#define DESK_INTERPOSE_COMMANDS_H

#include <sys/types.h>

#include <cstdio>
#include <map>
#include <mutex>
#include <string>

namespace desk
{

/// The receiver's commands and processes, as the plugin sees them.
///
/// What a command prints and does not redirect goes to standard error; it reads nothing and, but for commands that
/// are left as they are, has a session of its own. A child that it leaves behind is not waited for.
class Commands
{
public:
	static Commands &get();

	/// Commands are those of the folder bin in `folder`, and none else; what kills is only reported. Where nothing else
	/// contains them, its descriptor `uncontained` is not -1: then that goes for scripts in there as well, and links
	/// that lead out of it are not run.
	void takeFrom(const std::string &folder, int uncontained);

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
	bool leadsOut(const std::string &name) const;
	bool refuses(const std::string &command) const;
	/// `in` and `out` -1: nothing, and standard error. Returns the process; -1, with a note: there is none.
	pid_t start(const char *command, int in, int out) const;
	int finish(pid_t process) const;

	bool rooted = false;
	int root = -1; ///< see takeFrom()
	std::string bin;
	std::string prelude; ///< what the shell reads before each command
	std::mutex changing; ///< a plugin may have threads
	std::map<FILE *, pid_t> streams;
};

} // namespace desk

#endif
