#include "files.h"

#include "desk.h"
#include "trace.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/wait.h>
#include <unistd.h>

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

bool isKill(const char *command)
{
	while (*command == ' ' || *command == '\t')
		++command;
	return std::strncmp(command, "kill", 4) == 0 && std::strchr(" \t;&|\n", command[4]);
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

void Files::setPlugin(void *handle)
{
	clearPlugin();
	link_map *map = nullptr;
	if (dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0)
		return;
	struct Search
	{
		ElfW(Addr) base;
		Files *files;
	} search{map->l_addr, this};
	dl_iterate_phdr(
	    [](dl_phdr_info *info, size_t, void *data) {
		    const Search &wanted = *static_cast<Search *>(data);
		    if (info->dlpi_addr != wanted.base)
			    return 0;
		    for (int i = 0; i < info->dlpi_phnum; ++i) {
			    const ElfW(Phdr) &segment = info->dlpi_phdr[i];
			    if (segment.p_type != PT_LOAD || !(segment.p_flags & PF_X))
				    continue;
			    const char *first = reinterpret_cast<const char *>(info->dlpi_addr + segment.p_vaddr);
			    wanted.files->begin = first;
			    wanted.files->end = first + segment.p_memsz;
		    }
		    return 1;
	    },
	    &search);
}

void Files::clearPlugin()
{
	begin = end = nullptr;
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
	if (!root.empty() && isKill(command)) {
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

// The return address tells who calls: other libraries in this process open files as well.
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
	if (!Files::get().fromPlugin(__builtin_return_address(0)))
		return real(command);
	Trace &trace = Trace::get();
	if (trace.on())
		trace.line(trace.form("system", command));
	return Files::get().run(command);
}
}
