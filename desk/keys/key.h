#ifndef DESK_KEYS_KEY_H
#define DESK_KEYS_KEY_H

#include <optional>
#include <string_view>
#include <vector>

namespace desk
{

/// The keys of the remote control.
enum class Key
{
	up,
	down,
	left,
	right,
	pageup,
	pagedown,
	home,
	end,
	ok,
	exit,
	red,
	green,
	yellow,
	blue,
	digit0,
	digit1,
	digit2,
	digit3,
	digit4,
	digit5,
	digit6,
	digit7,
	digit8,
	digit9,
};

/// The key's name in key scripts, dumps and picture names: "pageup", "7".
const char *keyName(Key key);

/// All names, separated by blanks.
std::string keyNames();

/// The key with that name, if any.
std::optional<Key> keyNamed(std::string_view name);

constexpr bool isColour(Key key)
{
	return key >= Key::red && key <= Key::blue;
}

/// The coloured key with that name, if any.
std::optional<Key> colourNamed(std::string_view name);

/// The key for a letter or a digit of a keyboard, if any.
std::optional<Key> keyOfLetter(char letter);

/// Parses a key script: names separated by white space. Throws an Error that names an unknown key and lists the known
/// ones.
std::vector<Key> parseKeyScript(std::string_view script);

} // namespace desk

#endif
