#include "commands.h"

#include "desk.h"
#include "libc.h"
#include "open_in_root.h"
#include "trace.h"

#include <fcntl.h>
#include <linux/sched.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <sstream>
#include <string_view>
#include <vector>

namespace desk
{

namespace
{

constexpr int notExecutable = 126, notFound = 127; // a shell's exit statuses

/// Whether the command has one of these as a word, at whatever path.
bool hasWord(const std::string &command, std::initializer_list<std::string_view> words)
{
	const auto inWord = [](unsigned char c) { return std::isalnum(c) || c == '_' || c == '-' || c == '.'; };
	for (size_t end = 0; end < command.size();) {
		const auto from = command.begin() + static_cast<std::ptrdiff_t>(end);
		const auto start = std::find_if(from, command.end(), inWord);
		const auto stop = std::find_if_not(start, command.end(), inWord);
		const std::string_view word(command.data() + (start - command.begin()),
		                            static_cast<size_t>(stop - start));
		if (std::find(words.begin(), words.end(), word) != words.end())
			return true;
		end = static_cast<size_t>(stop - command.begin());
	}
	return false;
}

void report(const std::string &what)
{
	Desk::get().note(what + " (reported only: with --root nobody is signalled)");
}

/// fork() into a process namespace of the child's own. Root needs nothing else for it, others a user
/// namespace, in which they stay who they are; where the kernel permits neither, it is a plain fork().
pid_t forkApart()
{
	const auto same = [](unsigned id) { return std::to_string(id) + ' ' + std::to_string(id) + " 1"; };
	const std::string user = same(geteuid()), group = same(getegid());
	clone_args how = {};
	how.exit_signal = SIGCHLD;
	for (const unsigned namespaces : {0u | CLONE_NEWPID, 0u | CLONE_NEWPID | CLONE_NEWUSER}) {
		how.flags = namespaces;
		const pid_t process = static_cast<pid_t>(syscall(SYS_clone3, &how, sizeof how));
		if (process == 0 && (namespaces & CLONE_NEWUSER)) {
			const auto write = [](const char *path, const std::string &text) {
				const int file = open(path, O_WRONLY | O_CLOEXEC);
				[[maybe_unused]] const ssize_t written = ::write(file, text.data(), text.size());
				close(file);
			};
			write("/proc/self/setgroups", "deny");
			write("/proc/self/uid_map", user);
			write("/proc/self/gid_map", group);
		}
		if (process >= 0)
			return process;
	}
	return fork();
}

/// Mounts the folder /var/tmp of `root` at this computer's, for the calling process and its children only.
bool mountVarTmp(int root)
{
	const int folder = openInRoot(root, "/var/tmp", O_PATH | O_DIRECTORY);
	char path[PATH_MAX] = "";
	struct stat meant = {}, there = {};
	// By its name, because what is open lies in the namespace that is left; so the name is not trusted.
	return folder >= 0 && fstat(folder, &meant) == 0 &&
	       readlink(("/proc/self/fd/" + std::to_string(folder)).c_str(), path, sizeof path - 1) > 0 &&
	       unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
	       mount(path, "/var/tmp", nullptr, MS_BIND | MS_REC, nullptr) == 0 &&
	       stat("/var/tmp", &there) == 0 && meant.st_dev == there.st_dev && meant.st_ino == there.st_ino;
}

/// A file without a name, for reading and writing; -1: there is no room for one.
int scratchFile()
{
	const int inMemory = memfd_create("output", MFD_CLOEXEC);
	if (inMemory >= 0)
		return inMemory;
	const Trace::Quiet closing;
	FILE *file = std::tmpfile(); // a kernel before 3.17
	const int descriptor = file ? fcntl(fileno(file), F_DUPFD_CLOEXEC, 3) : -1;
	if (file)
		fclose(file);
	return descriptor;
}

/// This process's environment. Without a PATH in it, a shell does not export the one that it is given:
/// what the scripts in a root's bin run is then found as ever.
std::vector<char *> environment(bool withPath)
{
	std::vector<char *> variables;
	for (char **variable = environ; *variable; ++variable)
		if (withPath || std::strncmp(*variable, "PATH=", 5) != 0)
			variables.push_back(*variable);
	variables.push_back(nullptr);
	return variables;
}

} // namespace

Commands &Commands::get()
{
	static Commands commands;
	return commands;
}

bool Commands::takeFrom(int root, int rootOfVarTmp)
{
	rooted = true;
	// Through the descriptor, because a PATH cannot name a folder with a colon.
	before = "PATH=/proc/self/fd/" + std::to_string(root) + "/bin; ";
	// Tried out once: then the plugin's own calls and the commands mean the same folder.
	const pid_t attempt = forkApart();
	if (attempt == 0)
		_exit(mountVarTmp(rootOfVarTmp) ? 0 : 1);
	int status = -1;
	while (attempt > 0 && waitpid(attempt, &status, 0) < 0 && errno == EINTR) {
	}
	varTmp = status == 0 ? rootOfVarTmp : -1;
	return status == 0;
}

void Commands::takeFromBusybox()
{
	std::istringstream folders(std::getenv("PATH") ? std::getenv("PATH") : "");
	for (std::string folder; std::getline(folders, folder, ':');)
		if (access((folder + "/busybox").c_str(), X_OK) == 0) {
			before =
				R"(ps() { busybox ps "$@"; }; df() { busybox df "$@"; }; kill() { busybox kill "$@"; }; )";
			return;
		}
	Desk::get().note("deskhost: busybox is not installed: ps, df and kill are this computer's own, "
	                 "and ps may list this terminal's processes only");
}

bool Commands::refuses(const char *command) const
{
	if (hasWord(command, {"rm", "rmdir", "unlink"}) && !Desk::get().permits(command))
		return true;
	if (!hasWord(command, {"kill", "killall", "killall5", "pkill", "skill"}))
		return false;
	if (!Desk::get().permits(command))
		return true;
	if (rooted)
		report(command);
	return rooted;
}

Commands::Running Commands::start(const char *command, int in, int out) const
{
	const int said = scratchFile();
	const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
	const std::string text = before + command;
	const std::vector<char *> variables = environment(!rooted);
	const pid_t process = rooted ? forkApart() : fork();
	if (process == 0) {
		prctl(PR_SET_PDEATHSIG, SIGKILL); // no command outlives the desk host
		dup2(in < 0 ? nothing : in, STDIN_FILENO);
		dup2(out >= 0 ? out : said < 0 ? nothing : said, STDOUT_FILENO);
		dup2(said < 0 ? nothing : said, STDERR_FILENO);
		if (varTmp >= 0 && !mountVarTmp(varTmp)) {
			const char gone[] = "deskhost: the folder of /var/tmp has gone: this command is not run\n";
			[[maybe_unused]] const ssize_t written = write(STDERR_FILENO, gone, sizeof gone - 1);
			_exit(EXIT_FAILURE);
		}
		execle("/bin/sh", "sh", "-c", text.c_str(), static_cast<char *>(nullptr), variables.data());
		_exit(notFound);
	}
	::close(nothing);
	return {process, said};
}

int Commands::finish(const Running &command) const
{
	const Trace::Quiet reading;
	int status = -1;
	while (command.process > 0 && waitpid(command.process, &status, 0) < 0 && errno == EINTR) {
	}
	Desk &desk = Desk::get();
	FILE *said = fdopen(command.said, "r");
	if (!said) // nothing was kept: see scratchFile()
		return status;
	rewind(said);
	char *line = nullptr;
	size_t room = 0;
	for (ssize_t length; (length = getline(&line, &room, said)) > 0;)
		desk.note(std::string(line, static_cast<size_t>(length)));
	free(line);
	fclose(said);
	if (rooted && WIFEXITED(status) &&
	    (WEXITSTATUS(status) == notFound || WEXITSTATUS(status) == notExecutable))
		desk.note("deskhost: with --root, commands are those in its bin; there this one cannot be run");
	return status;
}

int Commands::run(const char *command)
{
	if (!command)
		return 1; // there is a shell
	return refuses(command) ? 0 : finish(start(command, -1, -1));
}

FILE *Commands::open(const char *command, const char *type)
{
	const bool reads = type[0] == 'r';
	int ends[2];
	if (pipe2(ends, O_CLOEXEC) != 0)
		return nullptr;
	const int theirs = ends[reads ? 1 : 0], ours = ends[reads ? 0 : 1];
	const char *what = refuses(command) ? ":" : command;
	const Running running = start(what, reads ? -1 : theirs, reads ? theirs : -1);
	::close(theirs);
	FILE *stream = fdopen(ours, reads ? "r" : "w");
	streams[stream] = running;
	return stream;
}

int Commands::close(FILE *stream)
{
	const auto found = streams.find(stream);
	if (found == streams.end())
		return next<int(FILE *)>("pclose")(stream);
	const Running running = found->second;
	streams.erase(found);
	const Trace::Quiet closing;
	fclose(stream);
	return finish(running);
}

int Commands::signal(pid_t process, int number) const
{
	const std::string what = "kill(" + std::to_string(process) + ", " + std::to_string(number) + ')';
	if (number == 0 || process == getpid())
		return next<int(pid_t, int)>("kill")(process, number);
	if (!Desk::get().permits(what))
		return 0;
	if (!rooted)
		return next<int(pid_t, int)>("kill")(process, number);
	report(what);
	return 0;
}

} // namespace desk
