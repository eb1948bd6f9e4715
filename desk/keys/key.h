#ifndef DESK_REMOTE_KEY_H
#define DESK_REMOTE_KEY_H

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

/// The key's name as key scripts, dumps and picture names write it: "pageup", "7".
const char *keyName(Key key);

/// The key of that name, nothing when there is none.
std::optional<Key> keyNamed(std::string_view name);

/// Whether it is one of the four coloured keys.
constexpr bool isColour(Key key)
{
	return key >= Key::red && key <= Key::blue;
}

/// The coloured key of that name, nothing when there is none.
std::optional<Key> colourNamed(std::string_view name);

/// The key that a letter or a digit of a keyboard stands for, nothing when there is none.
std::optional<Key> keyOfLetter(char letter);

/// Reads a key script: names separated by blanks (any white space). Throws an Error that names an unknown one and
/// lists the keys there are.
std::vector<Key> parseKeyScript(std::string_view script);

} // namespace desk

#endif
