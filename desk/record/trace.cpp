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
	objects.clear();
	counts.clear();
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
	Object &known = objects.try_emplace(object, Object{"eListBoxEntry"}).first->second;
	if (known.number == 0)
		known.number = ++counts[known.type];
	return known.type + ('#' + std::to_string(known.number));
}

void Trace::destroyed(const void *object)
{
	const auto known = objects.find(object);
	if (known == objects.end())
		return;
	if (!known->second.hosts)
		call(object, (std::string("~") + known->second.type).c_str());
	objects.erase(known);
}

void Trace::disposes(const void *object)
{
	if (const auto known = objects.find(object); known != objects.end())
		known->second.hosts = true;
}

void Trace::line(const std::string &text)
{
	// Flushed line by line: a trace is read above all when the plugin has crashed.
	if (std::fputs(text.c_str(), file) == EOF || std::fputc('\n', file) == EOF || std::fflush(file) != 0)
		failed = true;
}

std::string Trace::argument(std::string_view text)
{
	return nlohmann::json(text).dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
}

} // namespace desk
