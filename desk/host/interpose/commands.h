#ifndef DESK_INTERPOSE_COMMANDS_H
#define DESK_INTERPOSE_COMMANDS_H

#include <sys/types.h>

#include <cstdio>
#include <map>
#include <mutex>
#include <string>

namespace desk
{

/// The receiver's commands and processes for the plugin.
///
/// A command's output goes to standard error unless it redirects it; its standard input is empty. It has a session of
/// its own, except with --as-is. Children that it leaves behind are not waited for.
class Commands
{
public:
	static Commands &get();

	/// Takes commands only from the folder bin in `folder`, and only reports kills. Without a sandbox, `uncontained`
	/// is a descriptor of the folder, else -1: then the check for kills includes scripts of bin, and links that lead
	/// out of the folder are not run.
	void takeFrom(const std::string &folder, int uncontained);

	/// Takes ps, df and kill from BusyBox, as on most receivers. Without BusyBox this computer's commands remain, and
	/// a note says so.
	void takeFromBusybox();

	/// Like system().
	int run(const char *command);

	/// Like popen() and pclose().
	FILE *open(const char *command, const char *type);
	int close(FILE *stream);

	/// Like kill().
	int signal(pid_t process, int number) const;

private:
	bool leadsOut(const std::string &name) const;
	bool refuses(const std::string &command) const;
	/// `in` -1: /dev/null; `out` -1: standard error. Returns the process, or -1 after a note.
	pid_t start(const char *command, int in, int out) const;
	int finish(pid_t process) const;

	bool rooted = false;
	int root = -1; ///< see takeFrom()
	std::string bin;
	std::string prelude; ///< runs in the shell before each command
	std::mutex changing; ///< a plugin may have threads
	std::map<FILE *, pid_t> streams;
};

} // namespace desk

#endif
