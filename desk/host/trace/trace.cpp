#include "trace.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace desk
{

Trace &Trace::get()
{
	static Trace trace;
	return trace;
}

void Trace::start(Reader to, Reader besides)
{
	stop();
	started = true;
	reader = std::move(to);
	asides = std::move(besides);
}

void Trace::startRemembering()
{
	start(nullptr);
}

void Trace::stop()
{
	started = false;
	reader = asides = nullptr;
	objects.clear();
	counts.clear();
	text.clear();
	key.clear();
	event.clear();
}

void Trace::emitted(const std::string &line)
{
	event = key.empty() ? line : key + ", " + line;
	aside(line);
}

std::string Trace::nameOf(const void *object) const
{
	if (!object)
		return "null";
	const auto known = objects.find(object);
	if (known == objects.end())
		return "eListBoxEntry"; // constructed by the plugin's own code
	const Object &its = known->second;
	return its.number ? its.type + ('#' + std::to_string(its.number)) : its.type;
}

void Trace::destroyed(const void *object)
{
	const auto known = objects.find(object);
	if (known == objects.end())
		return;
	if (!known->second.byHost)
		call(object, (std::string("~") + known->second.type).c_str());
	Gone &one = gone[nextGone++ % gone.size()];
	one.object = object;
	one.byHost = known->second.byHost;
	one.name[nameOf(object).copy(one.name, sizeof one.name - 1)] = '\0';
	objects.erase(known);
}

const char *Trace::nameOfGone(uintptr_t address, bool byHost) const
{
	for (const Gone &one : gone)
		if (one.object && reinterpret_cast<uintptr_t>(one.object) == address && one.byHost == byHost &&
		    objects.count(one.object) == 0)
			return one.name;
	return nullptr;
}

void Trace::disposes(const void *object)
{
	if (const auto known = objects.find(object); known != objects.end())
		known->second.byHost = true;
}

void Trace::argument(const void *object)
{
	if (!object)
		return put("null");
	auto known = objects.find(object);
	if (known == objects.end()) {
		const Object entry = {"eListBoxEntry"};
		if (!reader)
			return put(entry.type); // without a number, because there may be millions
		known = objects.emplace(object, entry).first;
	}
	if (known->second.number == 0)
		known->second.number = ++counts[known->second.type];
	put(known->second.type);
	put("#");
	argument(known->second.number);
}

void Trace::argument(std::string_view value)
{
	constexpr size_t most = 200; // bytes, in a line that is only remembered
	if (!reader)
		value = value.substr(0, most);
	const auto isPlain = [](char c) { return c >= ' ' && c < '\x7f' && c != '"' && c != '\\'; };
	if (std::all_of(value.begin(), value.end(), isPlain)) {
		put("\"");
		put(value);
		put("\"");
	} else
		put(nlohmann::json(value).dump(-1, ' ', true, nlohmann::json::error_handler_t::replace));
}

} // namespace desk
