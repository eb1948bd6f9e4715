#include "commands.h"

#include "desk.h"
#include "libc.h"
#include "open_in_root.h"
#include "trace.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <set>
#include <sstream>
#include <string_view>
#include <vector>

namespace desk
{

namespace
{

constexpr int notExecutable = 126, notFound = 127; // a shell's exit statuses

using Words = std::vector<std::string_view>;
const Words killing = {"kill", "killall", "killall5", "pkill", "skill"};
const Words deleting = {"rm", "rmdir", "unlink"};

/// Words that may be names of commands.
Words wordsOf(const std::string &text)
{
	const auto inWord = [](unsigned char c) { return std::isalnum(c) || c == '_' || c == '-' || c == '.'; };
	Words words;
	for (auto end = text.begin(); end != text.end();) {
		const auto start = std::find_if(end, text.end(), inWord);
		end = std::find_if_not(start, text.end(), inWord);
		words.emplace_back(text.data() + (start - text.begin()), static_cast<size_t>(end - start));
	}
	return words;
}

/// Whether the text contains one of these names, with or without a path.
bool hasWord(const std::string &text, const Words &words)
{
	const Words all = wordsOf(text);
	return std::find_first_of(all.begin(), all.end(), words.begin(), words.end()) != all.end();
}

/// A script's text; empty if the file is no script.
std::string scriptAt(const std::string &path)
{
	const int file = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
	std::string text(1 << 20, '\0');
	const ssize_t length = read(file, text.data(), text.size());
	::close(file);
	text.resize(static_cast<size_t>(std::max<ssize_t>(length, 0)));
	text.shrink_to_fit();
	return text.rfind("\177ELF", 0) == 0 ? "" : text;
}

void report(const std::string &what)
{
	Desk::get().note(what + " (reported only: with --root nobody is signalled)");
}

/// This process's environment. Without PATH in it, a shell does not export the PATH that the prelude sets, so scripts
/// in the root's bin still find the usual commands.
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

void Commands::takeFrom(const std::string &folder, int uncontained)
{
	rooted = true;
	bin = folder + "/bin";
	root = uncontained;
	prelude = "PATH=" + bin + "; ";
}

void Commands::takeFromBusybox()
{
	std::istringstream folders(std::getenv("PATH") ? std::getenv("PATH") : "");
	for (std::string folder; std::getline(folders, folder, ':');)
		if (access((folder + "/busybox").c_str(), X_OK) == 0) {
			prelude =
				R"(ps() { busybox ps "$@"; }; df() { busybox df "$@"; }; kill() { busybox kill "$@"; }; )";
			return;
		}
	Desk::get().note("deskhost: busybox is not installed: ps, df and kill are this computer's own, "
	                 "and ps may list this terminal's processes only");
}

/// Whether `bin` has a link of this name to a file outside of the root.
bool Commands::leadsOut(const std::string &name) const
{
	struct stat run = {}, meant = {};
	if (::stat((bin + '/' + name).c_str(), &run) != 0 || !S_ISREG(run.st_mode))
		return false; // no command, such as ".." in a script
	const int file = openInRoot(root, ("/bin/" + name).c_str(), O_PATH);
	const bool isMeant =
		file >= 0 && fstat(file, &meant) == 0 && meant.st_dev == run.st_dev && meant.st_ino == run.st_ino;
	if (file >= 0)
		::close(file);
	return !isMeant;
}

/// Whether not to run the command, because of a word in it or in a script of `bin` that it runs.
bool Commands::refuses(const std::string &command) const
{
	if (hasWord(command, deleting) && !Desk::get().permits(command))
		return true;
	std::set<std::string> seen;
	std::vector<std::string> texts = {command};
	while (!texts.empty()) {
		const std::string text = std::move(texts.back());
		texts.pop_back();
		if (hasWord(text, killing)) {
			const bool isPermitted = Desk::get().permits(command);
			if (isPermitted && rooted)
				report(command);
			return rooted || !isPermitted;
		}
		if (root >= 0)
			for (const std::string_view word : wordsOf(text)) {
				const std::string name(word);
				if (!seen.insert(name).second)
					continue;
				if (leadsOut(name)) {
					Desk::get().note("deskhost: not run, because it is no sandbox here and bin/" + name +
					                 " leads out of that folder; make it a relative link: " + command);
					return true;
				}
				texts.push_back(scriptAt(bin + '/' + name));
			}
	}
	return false;
}

pid_t Commands::start(const char *command, int in, int out) const
{
	const int nothing = openat(AT_FDCWD, "/dev/null", O_RDWR | O_CLOEXEC); // not the plugin's open()
	const std::string text = prelude + command;
	const std::vector<char *> variables = environment(!rooted);
	const pid_t process = fork();
	if (process == 0) {
		prctl(PR_SET_PDEATHSIG, SIGKILL); // commands end with the desk host
		dup2(in < 0 ? nothing : in, STDIN_FILENO);
		dup2(out < 0 ? STDERR_FILENO : out, STDOUT_FILENO);
		if (!prelude.empty()) // without a prelude, ps is this computer's and lists its terminal's processes
			setsid();         // keeps a signal to its own group from others, and commands from the terminal
		execle("/bin/sh", "sh", "-c", text.c_str(), static_cast<char *>(nullptr), variables.data());
		_exit(notFound);
	}
	if (process < 0) // explains an empty screen
		Desk::get().note("deskhost: cannot run '" + std::string(command) + "': " + std::strerror(errno));
	::close(nothing);
	return process;
}

int Commands::finish(pid_t process) const
{
	int status = -1;
	while (process > 0 && waitpid(process, &status, 0) < 0 && errno == EINTR) {
	}
	Desk &desk = Desk::get();
	desk.commandEnded();
	if (rooted && WIFEXITED(status) &&
	    (WEXITSTATUS(status) == notFound || WEXITSTATUS(status) == notExecutable))
		desk.note("deskhost: with --root, commands are those in its bin; there this one cannot be run");
	return status;
}

int Commands::run(const char *command)
{
	if (!command)
		return 1; // a shell exists
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
	const pid_t running = start(what, reads ? -1 : theirs, reads ? theirs : -1);
	::close(theirs);
	if (running < 0) {
		::close(ours);
		return nullptr;
	}
	FILE *stream = fdopen(ours, reads ? "r" : "w");
	const std::lock_guard<std::mutex> alone(changing);
	streams[stream] = running;
	return stream;
}

int Commands::close(FILE *stream)
{
	pid_t running = -1;
	{
		const std::lock_guard<std::mutex> alone(changing);
		const auto found = streams.find(stream);
		if (found == streams.end())
			return next<int(FILE *)>("pclose")(stream);
		running = found->second;
		streams.erase(found);
	}
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
