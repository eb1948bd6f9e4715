#include "trace.h"

#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstring>

namespace desk
{

Trace &Trace::get()
{
	static Trace trace;
	return trace;
}

bool Trace::open(const std::string &path, std::string &error)
{
	close();
	file = std::fopen(path.c_str(), "w");
	if (!file) {
		error = "cannot write the trace to '" + path + "': " + std::strerror(errno) +
		        "; name another file with --trace";
		return false;
	}
	failed = false;
	lastNumber = 0;
	numbers.clear();
	return true;
}

bool Trace::close()
{
	if (!file)
		return true;
	if (std::fclose(file) != 0)
		failed = true;
	file = nullptr;
	return !failed;
}

std::string Trace::name(const void *object)
{
	if (!object)
		return "null";
	int &number = numbers[object];
	if (number == 0)
		number = ++lastNumber;
	return '#' + std::to_string(number);
}

void Trace::forget(const void *object)
{
	if (file)
		numbers.erase(object);
}

void Trace::line(const std::string &text)
{
	// Flushed line by line: a trace is read above all when the plugin has crashed.
	if (std::fputs(text.c_str(), file) == EOF || std::fputc('\n', file) == EOF || std::fflush(file) != 0)
		failed = true;
}

std::string Trace::quoted(std::string_view text)
{
	return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace desk
