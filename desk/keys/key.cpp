#include "key.h"

#include "desk_error.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace desk
{
namespace
{

// In the order of the enum Key.
constexpr const char *names[] = {
	"up",     "down", "left", "right", "pageup", "pagedown", "home", "end", "ok", "exit", "red", "green",
	"yellow", "blue", "0",    "1",     "2",      "3",        "4",    "5",   "6",  "7",    "8",   "9",
};
constexpr size_t keyCount = sizeof names / sizeof *names;
static_assert(keyCount == static_cast<size_t>(Key::digit9) + 1, "every key has its name");

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

// Names may come from a fuzzer: keeps the quotation one short line.
std::string quoted(std::string_view name)
{
	constexpr size_t most = 40;
	std::string out = "'";
	for (const char c : name.substr(0, most))
		out += c > ' ' && c < '\x7f' ? c : '?';
	return out + (name.size() > most ? "...'" : "'");
}

} // namespace

const char *keyName(Key key)
{
	return names[static_cast<size_t>(key)];
}

std::string keyNames()
{
	std::string all;
	for (const char *name : names)
		all.append(all.empty() ? "" : " ").append(name);
	return all;
}

std::optional<Key> keyNamed(std::string_view name)
{
	for (size_t i = 0; i < keyCount; ++i)
		if (name == names[i])
			return static_cast<Key>(i);
	return std::nullopt;
}

std::optional<Key> colourNamed(std::string_view name)
{
	const std::optional<Key> key = keyNamed(name);
	return key && isColour(*key) ? key : std::nullopt;
}

std::optional<Key> keyOfLetter(char letter)
{
	static const struct
	{
		char letter;
		Key key;
	} letters[] = {
		{'k', Key::up},  {'j', Key::down},  {'h', Key::left},   {'l', Key::right}, {'q', Key::exit},
		{'r', Key::red}, {'g', Key::green}, {'y', Key::yellow}, {'b', Key::blue},
	};
	for (const auto &each : letters)
		if (letter == each.letter)
			return each.key;
	return letter >= '0' && letter <= '9' ? keyNamed({&letter, 1}) : std::nullopt;
}

std::vector<Key> parseKeyScript(std::string_view script)
{
	std::vector<Key> keys;
	for (size_t at = script.find_first_not_of(whiteSpace); at != script.npos;
	     at = script.find_first_not_of(whiteSpace, at)) {
		const size_t end = std::min(script.find_first_of(whiteSpace, at), script.size());
		const std::string_view name = script.substr(at, end - at);
		const auto key = keyNamed(name);
		if (!key)
			throw Error("unknown key " + quoted(name) + "; the keys are " + keyNames());
		keys.push_back(*key);
		at = end;
	}
	return keys;
}

} // namespace desk
