// Replacements of libc's functions, which the program exports. Host and libraries call them as well; only the
// plugin's calls are traced.

#include "libc.h"

#include "caller.h"
#include "commands.h"
#include "desk.h"
#include "files.h"
#include "texts.h"
#include "trace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdarg>
#include <cstdlib>
#include <iterator>
#include <libintl.h>
#include <optional>
#include <string>
#include <string_view>

using desk::byPlugin;
using desk::Commands;
using desk::Files;
using desk::next;
using desk::Texts;
using desk::Trace;

namespace
{

template <class... Args> void trace(const char *what, const Args &...args)
{
	if (byPlugin())
		Trace::get().function(what, args...);
}

/// Adds a debug line for each redirected file, after the line of the call.
template <class... Paths> void tellLeads(const Paths *...paths)
{
	if (!byPlugin())
		return;
	const int reason = errno;
	const std::optional<std::string> places[] = {Files::get().ledTo(paths)...};
	if (std::find(std::begin(places), std::end(places), std::nullopt) == std::end(places))
		for (const std::optional<std::string> &place : places)
			Trace::get().aside("led to " + *place);
	errno = reason;
}

void traceStream(const FILE *stream, const char *what, const char *name, const char *how)
{
	if (byPlugin())
		Trace::get().resultInWords(stream ? "stream" : "null", what, name, how);
}

void traceClosing(const FILE *stream, const char *what, int result)
{
	if (byPlugin())
		Trace::get().line(std::string(what) + (stream ? "(stream) = " : "(null) = ") +
		                  std::to_string(result));
}

/// The mode argument of open(), which exists when open() creates a file. Traces opening for writing.
mode_t modeFor(const char *path, int flags, va_list values)
{
	if ((flags & O_ACCMODE) != O_RDONLY)
		trace("open", path, "w");
	return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(values, mode_t) : 0;
}

/// Whether the caller may delete `path`: always for temporary files.
bool mayDelete(const char *path)
{
	const std::string_view name = path ? path : "";
	if (name.rfind("/var/tmp/", 0) == 0 || name.rfind("/tmp/", 0) == 0)
		return true;
	errno = EPERM;
	return desk::Desk::get().permits("remove " + std::string(name));
}

/// Whether to translate texts of this domain. Libraries look up their own texts, by their domain's name.
bool translates(const char *domain, int category = LC_MESSAGES)
{
	return category == LC_MESSAGES && Texts::get().translates() && (!domain || byPlugin());
}

} // namespace

#pragma GCC visibility push(default)

extern "C" {

FILE *fopen(const char *path, const char *mode)
{
	FILE *stream = Files::get().open(path, mode);
	traceStream(stream, "fopen", path, mode);
	tellLeads(path);
	return stream;
}

// The name of fopen for large files on 32-bit processors.
__attribute__((alias("fopen"))) FILE *fopen64(const char *path, const char *mode);

int fclose(FILE *stream)
{
	static const auto real = next<int(FILE *)>("fclose");
	// A null stream is harmless, as on the receiver. volatile, because the header declares the argument nonnull.
	FILE *volatile given = stream;
	const int result = given ? real(stream) : EOF;
	traceClosing(given, "fclose", result);
	return result;
}

int remove(const char *path) noexcept
{
	trace("remove", path);
	if (!mayDelete(path))
		return -1;
	tellLeads(path);
	return Files::get().remove(path);
}

int unlink(const char *path) noexcept
{
	trace("unlink", path);
	if (!mayDelete(path))
		return -1;
	tellLeads(path);
	return Files::get().unlink(path);
}

int rename(const char *from, const char *to) noexcept
{
	trace("rename", from, to);
	tellLeads(from, to);
	return Files::get().rename(from, to);
}

int mkdir(const char *path, mode_t mode) noexcept
{
	trace("mkdir", path);
	return next<int(const char *, mode_t)>("mkdir")(path, mode);
}

int rmdir(const char *path) noexcept
{
	trace("rmdir", path);
	return mayDelete(path) ? next<int(const char *)>("rmdir")(path) : -1;
}

int open(const char *path, int flags, ...)
{
	static const auto real = next<int(const char *, int, ...)>("open"); // cached for signal handlers
	va_list values;
	va_start(values, flags);
	const mode_t mode = modeFor(path, flags, values);
	va_end(values);
	return real(path, flags, mode);
}

// The name of open for large files on 32-bit processors.
int open64(const char *path, int flags, ...)
{
	static const auto real = next<int(const char *, int, ...)>("open64");
	va_list values;
	va_start(values, flags);
	const mode_t mode = modeFor(path, flags, values);
	va_end(values);
	return real(path, flags, mode);
}

int system(const char *command)
{
	trace("system", command);
	return Commands::get().run(command);
}

FILE *popen(const char *command, const char *type)
{
	FILE *stream = Commands::get().open(command, type);
	traceStream(stream, "popen", command, type);
	return stream;
}

int pclose(FILE *stream)
{
	const int status = Commands::get().close(stream);
	traceClosing(stream, "pclose", status);
	return status;
}

void _exit(int status)
{
	if (byPlugin() && desk::Desk::get().onExit)
		desk::Desk::get().onExit(status);
	next<void(int)>("_exit")(status);
	std::abort(); // not reached
}

__attribute__((alias("_exit"))) void _Exit(int status) noexcept;

int kill(pid_t process, int number) noexcept
{
	trace("kill", process, number);
	return Commands::get().signal(process, number);
}

char *dcgettext(const char *domain, const char *id, int category) noexcept
{
	if (!id || !translates(domain, category))
		return next<char *(const char *, const char *, int)>("dcgettext")(domain, id, category);
	return const_cast<char *>(Texts::get().find(domain, id));
}

char *dgettext(const char *domain, const char *id) noexcept
{
	return dcgettext(domain, id, LC_MESSAGES);
}

char *gettext(const char *id) noexcept
{
	return dcgettext(nullptr, id, LC_MESSAGES);
}

char *dcngettext(const char *domain, const char *id, const char *plural, unsigned long n,
                 int category) noexcept
{
	using Function = char *(const char *, const char *, const char *, unsigned long, int);
	if (!id || !translates(domain, category))
		return next<Function>("dcngettext")(domain, id, plural, n, category);
	return const_cast<char *>(Texts::get().find(domain, id, plural, n));
}

char *dngettext(const char *domain, const char *id, const char *plural, unsigned long n) noexcept
{
	return dcngettext(domain, id, plural, n, LC_MESSAGES);
}

char *ngettext(const char *id, const char *plural, unsigned long n) noexcept
{
	return dcngettext(nullptr, id, plural, n, LC_MESSAGES);
}

char *textdomain(const char *domain) noexcept
{
	if (!byPlugin() || !Texts::get().translates())
		return next<char *(const char *)>("textdomain")(domain);
	return const_cast<char *>(Texts::get().setDomain(domain));
}

char *bindtextdomain(const char *domain, const char *folder) noexcept
{
	if (!byPlugin() || !Texts::get().translates())
		return next<char *(const char *, const char *)>("bindtextdomain")(domain, folder);
	return const_cast<char *>(Texts::get().setFolder(domain, folder));
}
}

#pragma GCC visibility pop
