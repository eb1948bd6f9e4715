#include "files.h"

#include "desk.h"
#include "trace.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace desk
{

namespace
{

// libc's own, or whatever stands between: a sanitizer's, for example.
template <class Function> Function *next(const char *name)
{
	return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

/// The loaded object that an address lies in, null for none. Unlike dladdr it searches no symbols,
/// which would take longer than most of what the plugin calls.
const void *objectOf(const void *address)
{
	dl_find_object found;
	return _dl_find_object(const_cast<void *>(address), &found) == 0 ? found.dlfo_link_map : nullptr;
}

/// Whether `kill` stands in the command as a word, at whatever path: better a command too few than a
/// process of this computer.
bool kills(const std::string &command)
{
	const auto isWord = [&](size_t at) {
		const unsigned char c = at < command.size() ? static_cast<unsigned char>(command[at]) : 0;
		return std::isalnum(c) || c == '_' || c == '-' || c == '.';
	};
	for (size_t at = command.find("kill"); at != std::string::npos; at = command.find("kill", at + 1)) {
		const bool all = command.compare(at, 7, "killall") == 0;
		const bool starts = at == 0 || !isWord(at - 1) || command[at - 1] == 'p';
		if (starts && (all || !isWord(at + 4)))
			return true;
	}
	return false;
}

/// Runs a command and hands what it prints to the screen's notes, line by line.
int runQuietly(const char *command)
{
	int ends[2];
	if (pipe(ends) != 0)
		return -1;
	const pid_t child = fork();
	if (child == 0) {
		dup2(ends[1], STDOUT_FILENO);
		dup2(ends[1], STDERR_FILENO);
		close(ends[0]);
		close(ends[1]);
		const int none = ::open("/dev/null", O_RDONLY);
		dup2(none, STDIN_FILENO);
		execl("/bin/sh", "sh", "-c", command, static_cast<char *>(nullptr));
		_exit(127);
	}
	close(ends[1]);
	if (child < 0) {
		close(ends[0]);
		return -1;
	}
	std::string line;
	char bytes[4096];
	ssize_t got;
	while ((got = read(ends[0], bytes, sizeof bytes)) > 0 || (got < 0 && errno == EINTR))
		for (ssize_t i = 0; i < got; ++i) {
			if (bytes[i] != '\n')
				line += bytes[i];
			if (bytes[i] == '\n' || line.size() > 1000) {
				Desk::get().screen().note(line);
				line.clear();
			}
		}
	if (!line.empty())
		Desk::get().screen().note(line);
	close(ends[0]);
	int status = -1;
	while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
	}
	return status;
}

} // namespace

Files &Files::get()
{
	static Files files;
	return files;
}

bool Files::setRoot(const std::string &folder, std::string &error)
{
	char path[PATH_MAX];
	if (!realpath(folder.c_str(), path) || access((std::string(path) + "/.").c_str(), R_OK | X_OK) != 0) {
		error = "cannot use '" + folder + "' as the receiver's files: " + std::strerror(errno) +
		        "; name a readable folder with --root";
		return false;
	}
	root = path;
	const char *before = std::getenv("PATH");
	const std::string rest = before ? before : "/usr/bin:/bin";
	setenv("PATH", (root + "/bin:" + rest).c_str(), 1);
	return true;
}

void Files::pluginStarts(void *handle)
{
	plugin = objectOf(dlsym(handle, "plugin_exec"));
	if (!plugin)
		plugin = handle;
}

bool Files::fromPlugin(const void *caller) const
{
	if (!pluginRuns())
		return false;
	static const int inProgram = 0;
	static const void *const program = objectOf(&inProgram);
	const void *from = objectOf(caller);
	return !from || from == plugin || from == program; // code without a home is not a library's
}

std::string Files::resolve(const char *path) const
{
	if (!root.empty())
		for (const char *served : {"/proc/meminfo", "/proc/mtd", "/var/scaning.log"})
			if (std::strcmp(path, served) == 0)
				return root + path;
	return path;
}

int Files::run(const char *command) const
{
	if (!root.empty() && kills(command)) {
		Desk::get().screen().note(std::string(command) + " (reported only: with --root nobody is signalled)");
		return 0;
	}
	if (Desk::get().screen().ownsTerminal())
		return runQuietly(command);
	return next<int(const char *)>("system")(command);
}

} // namespace desk

using desk::Files;
using desk::Trace;

// The return address tells who calls: libraries in this process open files as well.
extern "C" {

__attribute__((visibility("default"))) FILE *fopen(const char *path, const char *mode)
{
	static const auto real = desk::next<FILE *(const char *, const char *)>("fopen");
	if (!Files::get().fromPlugin(__builtin_return_address(0)))
		return real(path, mode);
	FILE *stream = real(Files::get().resolve(path).c_str(), mode);
	Trace &trace = Trace::get();
	if (trace.on())
		trace.line(trace.form("fopen", path, mode) + (stream ? " = stream" : " = null"));
	return stream;
}

// What fopen is called where files may be larger than the machine's long.
__attribute__((visibility("default"), alias("fopen"))) FILE *fopen64(const char *path, const char *mode);

__attribute__((visibility("default"))) int fclose(FILE *stream)
{
	static const auto real = desk::next<int(FILE *)>("fclose");
	if (!Files::get().fromPlugin(__builtin_return_address(0)))
		return real(stream);
	// Closing a stream that never opened is survived, as the receiver's library does.
	FILE *volatile given = stream;
	const int result = given ? real(stream) : EOF;
	Trace &trace = Trace::get();
	if (trace.on())
		trace.line(std::string(given ? "fclose(stream)" : "fclose(null)") + " = " + std::to_string(result));
	return result;
}

__attribute__((visibility("default"))) int remove(const char *path) noexcept
{
	static const auto real = desk::next<int(const char *)>("remove");
	if (!Files::get().fromPlugin(__builtin_return_address(0)))
		return real(path);
	Trace &trace = Trace::get();
	if (trace.on())
		trace.line(trace.form("remove", path));
	return real(Files::get().resolve(path).c_str());
}

__attribute__((visibility("default"))) int system(const char *command)
{
	static const auto real = desk::next<int(const char *)>("system");
	if (!Files::get().pluginRuns()) // nothing else here runs commands
		return real(command);
	Trace &trace = Trace::get();
	if (trace.on())
		trace.line(trace.form("system", command));
	return Files::get().run(command);
}
}
