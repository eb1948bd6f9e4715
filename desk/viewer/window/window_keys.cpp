#include "window_keys.h"

namespace desk
{
namespace
{

const struct
{
	SDL_Keycode code;
	Action action;
} keys[] = {
	{SDLK_UP, Key::up},
	{SDLK_DOWN, Key::down},
	{SDLK_LEFT, Key::left},
	{SDLK_RIGHT, Key::right},
	{SDLK_PAGEUP, Key::pageup},
	{SDLK_PAGEDOWN, Key::pagedown},
	{SDLK_HOME, Key::home},
	{SDLK_END, Key::end},
	{SDLK_RETURN, Key::ok},
	{SDLK_KP_ENTER, Key::ok},
	{SDLK_ESCAPE, Key::exit},
	{SDLK_F1, Key::red},
	{SDLK_F2, Key::green},
	{SDLK_F3, Key::yellow},
	{SDLK_F4, Key::blue},
	{SDLK_F9, Command::showNotes},
	{SDLK_F11, Command::fullScreen},
	{SDLK_F12, Command::savePicture},
};

// By scan code, because some keyboards have shifted digits.
std::optional<Key> digitOf(SDL_Scancode pressed)
{
	if (pressed == SDL_SCANCODE_0 || pressed == SDL_SCANCODE_KP_0)
		return Key::digit0;
	for (const SDL_Scancode one : {SDL_SCANCODE_1, SDL_SCANCODE_KP_1})
		if (pressed >= one && pressed < one + 9)
			return static_cast<Key>(static_cast<int>(Key::digit1) + (pressed - one));
	return std::nullopt;
}

} // namespace

std::optional<Action> actionOf(const SDL_Keysym &pressed)
{
	// Key combinations belong to the window manager.
	if (pressed.mod & (KMOD_CTRL | KMOD_ALT | KMOD_GUI))
		return std::nullopt;
	if (const std::optional<Key> digit = digitOf(pressed.scancode))
		return *digit;
	for (const auto &key : keys)
		if (key.code == pressed.sym)
			return key.action;
	if (const std::optional<Key> key =
	        pressed.sym < 0x80 ? keyOfLetter(static_cast<char>(pressed.sym)) : std::nullopt)
		return *key;
	return std::nullopt;
}

} // namespace desk
