#include "fake_platform.h"

#include "libc.h"

#include "debug_line.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <libintl.h>
#include <utility>

namespace
{

FakePlatform *current = nullptr;

std::string quoted(const char *text)
{
	return std::string("\"") + text + '"';
}

} // namespace

FakePlatform::FakePlatform()
{
	if (current)
		abort();
	current = this;
}

FakePlatform::~FakePlatform()
{
	current = nullptr;
}

void FakePlatform::replaceShell(std::function<void()> instead)
{
	shell = std::move(instead);
}

void eDebug(const char *format, ...)
{
	char line[4096];
	va_list arguments;
	va_start(arguments, format);
	vsnprintf(line, sizeof line, format, arguments);
	va_end(arguments);
	if (!current)
		return;
	current->calls.push_back("eDebug(" + quoted(line) + ")");
	current->debugFormats.push_back(format);
}

extern "C" {

FILE *fopen(const char *path, const char *mode)
{
	static const auto real = next<FILE *(const char *, const char *)>("fopen");
	if (!current)
		return real(path, mode);

	current->calls.push_back("fopen(" + quoted(path) + ", " + quoted(mode) + ")");
	const auto answer = current->openings.find(path);
	FILE *const stream = answer == current->openings.end() ? real(path, mode) : answer->second;
	if (stream)
		current->streams.insert(stream);
	return stream;
}

int fclose(FILE *stream)
{
	static const auto real = next<int(FILE *)>("fclose");
	FILE *volatile given = stream; // null as well, whatever the header promises the compiler
	if (current && !given)
		current->calls.push_back("fclose(null)");
	else if (current && current->streams.erase(stream))
		current->calls.push_back("fclose(stream)");
	return given ? real(stream) : EOF;
}

int remove(const char *path) noexcept
{
	static const auto real = next<int(const char *)>("remove");
	if (current)
		current->calls.push_back("remove(" + quoted(path) + ")");
	return real(path);
}

int system(const char *command)
{
	static const auto real = next<int(const char *)>("system");
	if (!current)
		return real(command);

	current->calls.push_back("system(" + quoted(command) + ")");
	if (!current->shell)
		return real(command);
	// A command is another process: what it opens and removes is not the caller's.
	FakePlatform *const platform = std::exchange(current, nullptr);
	platform->shell();
	current = platform;
	return 0;
}

char *dcgettext(const char *domain, const char *id, int category) noexcept
{
	static const auto real = next<char *(const char *, const char *, int)>("dcgettext");
	if (!current)
		return real(domain, id, category);

	current->lookUps.push_back(std::string("dcgettext(") + (domain ? quoted(domain) : "null") + ", " +
	                           quoted(id) + ", " + std::to_string(category) + ")");
	if (current->catalogueIsNull)
		return nullptr;
	const auto entry = current->catalogue.find(id);
	return entry == current->catalogue.end() ? const_cast<char *>(id) : entry->second.data();
}

int sscanf(const char *input, const char *format, ...) noexcept
{
	if (current && !current->unparseable.empty() && strstr(input, current->unparseable.c_str()))
		return 0;
	va_list arguments;
	va_start(arguments, format);
	const int matched = vsscanf(input, format, arguments);
	va_end(arguments);
	return matched;
}

} // extern "C"
